#!/usr/bin/env bash
# clang-tidy over sources, as errors: tidy.sh BUILD FILE... Needs the compile_commands.json of BUILD. A file that was found
# clean is not looked at again while nothing that it includes, its flags and the checks are the same. What is known is kept
# in $XDG_CACHE_HOME/quiverionseries/tidy, whatever the checkout is called.
set -euo pipefail
build=$1
shift
cache=${XDG_CACHE_HOME:-$HOME/.cache}/quiverionseries/tidy
mkdir -p "$cache"

# One line per source: its key, a blank, the path. The key is that of the text that the compiler sees, comments included.
keys() {
  python3 - "$build" "$PWD" "$@" <<'PYTHON'
import concurrent.futures, hashlib, json, os, shlex, subprocess, sys
build, root, wanted = sys.argv[1], sys.argv[2], set(sys.argv[3:])
checks = open(os.path.join(root, ".clang-tidy"), "rb").read()
version = subprocess.check_output(["clang-tidy", "--version"])
def key(entry):
    words = [w for w in shlex.split(entry["command"]) if "ccache" not in w]
    flags = [w for w in words[1:] if not w.endswith((".o", ".d"))]
    for option in ("-o", "-c", "-MD", "-MT", "-MF"):
        flags = [w for w in flags if w != option]
    text = subprocess.run([words[0], *flags, "-E", "-C"], cwd=entry["directory"], stdout=subprocess.PIPE, check=True).stdout
    text = text.replace(root.encode(), b"").replace(build.encode(), b"")
    flags = " ".join(flags).replace(root, "").replace(build, "")
    return hashlib.sha256(b"\0".join([version, checks, flags.encode(), text])).hexdigest()
entries = {os.path.relpath(e["file"], root): e for e in json.load(open(os.path.join(build, "compile_commands.json")))}
missing = wanted - set(entries)
if missing: sys.exit("not compiled in " + build + ": " + " ".join(sorted(missing)))
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    for path, found in zip(sorted(wanted), pool.map(lambda p: key(entries[p]), sorted(wanted))): print(found, path)
PYTHON
}

check() {
  local key=$1 file=$2
  clang-tidy --quiet -p "$build" --header-filter="^$PWD/src/" "$file" 2>/dev/null || return 1
  touch "$cache/$key"
}
export -f check
export build cache

list=$(keys "$@")
todo=$(while read -r key file; do [ -e "$cache/$key" ] || echo "$key $file"; done <<<"$list")
[ -n "$todo" ] || exit 0
xargs -P "$(nproc)" -L 1 bash -c 'check "$0" "$1"' <<<"$todo"
# What was last clean two months ago belongs to sources that are gone.
find "$cache" -type f -mtime +60 -delete
