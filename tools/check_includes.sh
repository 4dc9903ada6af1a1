#!/usr/bin/env bash
# Holds the include rule of the house: which folder of src/ may include which other, and no Qt in the core.
#   check_includes.sh SRC        prints every include that breaks the rule; exit code 1 where there is one
#   check_includes.sh --self-test
set -euo pipefail

declare -A allowed=(
  [platform]=""
  [log]="platform"
  [field]="log platform"
  [operations]="field log platform"
  [export]="operations field log platform"
  [statistics]="operations field log platform"
  [macro]="statistics export operations field log platform"
  [cli]="macro statistics export operations field log platform version.h nlohmann CLI"
  [dialogs]="macro statistics export operations field log platform Qt"
  [app]="dialogs macro statistics export operations field log platform Qt"
)

check() {
  local src=$1 broken=0 file line folder target top
  while IFS=: read -r file line; do
    folder=${file%%/*}
    if [ -z "${allowed[$folder]+known}" ]; then
      echo "$file: the folder '$folder' is not in the list of $(basename "$0")"
      broken=1
      continue
    fi
    target=${line#*[\"<]}
    target=${target%%[\">]*}
    top=${target%%/*}
    # "Qt" stands for its headers and for what its compiler makes of a form.
    if [[ " ${allowed[$folder]} " == *" Qt "* && $target =~ ^(Q[A-Za-z]+|ui_[A-Za-z]+\.h)$ ]]; then continue; fi
    case $line in
      *'"'*) [ "$top" = "$folder" ] && continue ;;
      # Angle brackets: the standard library and the system's own headers (only platform has any of those).
      *)
        [[ $target =~ ^[a-z_0-9]+$ ]] && continue
        [ "$folder" = platform ] && [[ $target =~ ^(sys/)?[a-z]+\.h$ ]] && continue
        ;;
    esac
    if [[ " ${allowed[$folder]} " != *" $top "* ]]; then
      echo "$file: must not include $target"
      broken=1
    fi
  done < <(cd "$src" && grep -rE --include='*.h' --include='*.cpp' '^[[:space:]]*#[[:space:]]*include' -- */ | sort)
  return $broken
}

self_test() {
  local bad
  dir=$(mktemp -d)
  trap 'rm -rf "$dir"' EXIT
  mkdir "$dir/field" "$dir/platform" "$dir/app"
  printf '#include <QDialog>\n#include "ui_frmMain.h"\n#include "dialogs/a.h"\n' >"$dir/app/good.cpp"
  printf '#include <vector>\n#include "field/a.h"\n#include "log/b.h"\n' >"$dir/field/good.cpp"
  check "$dir" >/dev/null || { echo "a good file was refused"; exit 1; }
  for bad in '"macro/session.h"' '<QString>' '<QtWidgets/QLabel>' '<unistd.h>' '<nlohmann/json.hpp>'; do
    echo "#include $bad" >"$dir/field/bad.cpp"
    if check "$dir" >/dev/null; then echo "$bad was let through in field"; exit 1; fi
  done
}

if [ "$1" = --self-test ]; then self_test; else check "$1"; fi
