#!/usr/bin/env bash
# Checks the include rules: which folder of src/ may include which others, and no Qt in the core.
#   check_includes.sh SRC        prints every include that breaks the rules; exit code 1 if there are any
#   check_includes.sh --self-test
set -euo pipefail

# One line per folder or subfolder. A folder in a list includes its subfolders, except those of one system, which must
# be listed themselves.
core="messages platform log field"
declare -A allowed=(
  [messages]=""
  [platform/text]="messages platform/numeric"
  [platform/numeric]="messages"
  [platform/process]=""
  [platform/files]="platform/text messages"
  [platform/posix]="platform messages"
  [platform/windows]="platform messages"
  [log]="platform messages"
  [field]="log platform messages"
  [field/formats]="$core"
  [operations/kernels]="$core"
  [operations/commands]="operations/kernels $core"
  [picture]="operations $core"
  [exchange]="$core zlib.h"
  [export]="operations $core"
  [statistics]="operations $core"
  [macro]="statistics export exchange operations $core"
  [preview]="macro picture statistics export exchange operations $core"
  [json]="macro statistics export exchange operations $core nlohmann"
  [cli]="json macro statistics export exchange operations $core version.h nlohmann CLI"
  [dialogs/widgets]="macro statistics export exchange operations $core Qt"
  [dialogs/exchange]="dialogs/widgets macro exchange $core Qt"
  [dialogs/help]="dialogs/widgets $core Qt"
  [dialogs/parameters]="dialogs/widgets macro statistics export exchange operations $core Qt"
  [dialogs/posix]="dialogs/widgets $core Qt"
  [dialogs/windows]="dialogs/widgets platform/windows $core Qt"
  [dialogs]="dialogs macro statistics export exchange operations $core Qt"
  [view/preview]="view preview picture dialogs macro statistics export exchange operations $core Qt"
  [view]="picture dialogs macro statistics export exchange operations $core Qt"
  [viewer]="view cli picture dialogs macro statistics export exchange operations $core version.h CLI Qt"
  [app/posix]="app dialogs $core Qt"
  [app/windows]="app dialogs $core Qt"
  [app]="json view preview picture dialogs macro statistics export exchange operations $core Qt"
)

# Whether a file of the folder `room` may include the file `target` in the folder `home`.
may_include() {
  local room=$1 target=$2 home=$3 entry
  for entry in ${allowed[$room]}; do
    [ "$target" = "$entry" ] || [ "$home" = "$entry" ] && return 0
    case $home in
      */posix | */windows) ;;
      "$entry"/*) return 0 ;;
    esac
  done
  return 1
}

check() {
  local src=$1 broken=0 file line room target home
  while IFS=: read -r file line; do
    room=$(dirname "$file")
    if [ -z "${allowed[$room]+known}" ]; then
      echo "$file: the folder '$room' is not in the list of $(basename "$0")"
      broken=1
      continue
    fi
    target=${line#*[\"<]}
    target=${target%%[\">]*}
    home=${target%/*}
    # "Qt" means its headers and the headers generated from forms.
    if [[ " ${allowed[$room]} " == *" Qt "* && $target =~ ^(Q[A-Za-z]+|ui_[A-Za-z]+\.h)$ ]]; then continue; fi
    case $line in
      *'"'*) [ "$home" = "$room" ] && continue ;;
      # Angle brackets: the standard library and the system's own headers (only platform has any of those).
      *)
        [[ $target =~ ^[a-z_0-9]+$ ]] && continue
        [[ $room == platform/* && $target =~ ^(sys/)?[a-z]+\.h$ ]] && continue
        ;;
    esac
    if ! may_include "$room" "$target" "$home"; then
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
  mkdir -p "$dir/field/formats" "$dir/platform/files" "$dir/app"
  printf '#include <QDialog>\n#include "ui_frmMain.h"\n#include "dialogs/a.h"\n' >"$dir/app/good.cpp"
  printf '#include <vector>\n#include "field/a.h"\n#include "log/b.h"\n' >"$dir/field/good.cpp"
  check "$dir" >/dev/null || { echo "a good file was refused"; exit 1; }
  printf '#include "platform/files/a.h"\n#include "field/b.h"\n' >"$dir/field/formats/good.cpp"
  check "$dir" >/dev/null || { echo "a good room was refused"; exit 1; }
  for bad in '"macro/session.h"' '"field/formats/a.h"' '"platform/posix/paths.h"' '<QString>' '<QtWidgets/QLabel>' '<unistd.h>' '<nlohmann/json.hpp>'; do
    echo "#include $bad" >"$dir/field/bad.cpp"
    if check "$dir" >/dev/null; then echo "$bad was let through in field"; exit 1; fi
  done
}

if [ "$1" = --self-test ]; then self_test; else check "$1"; fi
