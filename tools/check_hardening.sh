#!/usr/bin/env bash
# No shell, no unbounded copies, no format strings in the sources; programs are built with hardening.
#   check_hardening.sh sources SRC       prints calls that this program must not make; exit code 1 if there are any
#   check_hardening.sh programs FILE...  prints what a program lacks of PIE, full RELRO, stack protector, fortified calls
#   check_hardening.sh --self-test
set -euo pipefail

# Shells and other programs; functions with format strings; unbounded copies; guessable temporary names.
forbidden='\b(system|popen|exec[lv]+[pe]*|posix_spawnp?|v?[fs]?n?printf|v?asprintf|dprintf|syslog|strcpy|strcat|gets|alloca|mktemp|tmpnam|tempnam|tmpfile)[[:space:]]*\(|QProcess'

check_sources() {
  ! grep -rnE --include='*.h' --include='*.cpp' "$forbidden" "$1"
}

# The unresolved dynamic symbols show whether the compiler's checks are enabled.
check_program() {
  local file=$1 broken=0
  lacks() { echo "$file: $1"; broken=1; }
  readelf -hW "$file" | grep "Type:.*DYN" >/dev/null || lacks "no position-independent executable"
  readelf -lW "$file" | grep GNU_RELRO >/dev/null || lacks "no RELRO"
  readelf -dW "$file" | grep -E 'BIND_NOW|Flags:.*NOW' >/dev/null || lacks "symbols are not bound at the start: RELRO is partial"
  readelf -lW "$file" | grep -E 'GNU_STACK.*RWE' >/dev/null && lacks "an executable stack"
  readelf --dyn-syms -W "$file" | grep __stack_chk_fail >/dev/null || lacks "no stack protector"
  return $broken
}

check_programs() {
  local file broken=0 fortified=0
  for file in "$@"; do
    check_program "$file" || broken=1
    # A program may have no call that can be fortified, but one of those built together has.
    if readelf --dyn-syms -W "$file" | grep -E '__(mem|str|read|fd|vs?n?printf|pread)[a-z]*_chk' >/dev/null; then fortified=1; fi
  done
  [ $fortified = 1 ] || { echo "$*: no fortified calls"; broken=1; }
  return $broken
}

self_test() {
  dir=$(mktemp -d)
  trap 'rm -rf "$dir"' EXIT
  local call
  for call in 'std::system("x");' 'printf(text);' '::execvp(name, words);' 'std::snprintf(a, 3, b);' 'QProcess p;'; do
    mkdir -p "$dir/src"
    echo "$call" >"$dir/src/bad.cpp"
    if check_sources "$dir/src" >/dev/null; then echo "$call was let through"; exit 1; fi
  done
  echo 'FileSystem(1); MySystem(2); reprintf(3);' >"$dir/src/bad.cpp"
  check_sources "$dir/src" || { echo "a good call was refused"; exit 1; }
  echo 'int main() {}' >"$dir/plain.cpp"
  c++ -O2 -no-pie -Wl,-z,norelro -fno-stack-protector "$dir/plain.cpp" -o "$dir/plain"
  if check_programs "$dir/plain" >"$dir/found"; then echo "a plain program was let through"; exit 1; fi
  [ "$(wc -l <"$dir/found")" -ge 4 ] || { echo "not all that a plain program lacks was found"; exit 1; }
}

case ${1:-} in
  sources) check_sources "$2" ;;
  programs) shift; check_programs "$@" ;;
  --self-test) self_test ;;
  *) sed -n 2,5p "$0"; exit 2 ;;
esac
