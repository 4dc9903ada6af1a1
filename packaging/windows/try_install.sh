#!/usr/bin/env bash
# Installs the programs in a fresh wine, for one user and for all, uses them, and removes them; then the ZIP. It is an
# error if a removal leaves anything behind or removes anything else: try_install.sh BUILD_DIRECTORY
set -euo pipefail
build=$(realpath "$1") macro=$(realpath samples/macros/sample.json)
root=$build/try_install user=$(id -un)
setup=$(echo "$build"/QuiverionSeries-*-Setup.exe) zip=$(echo "$build"/QuiverionSeries-*[0-9].zip)
uninstall='Software\Microsoft\Windows\CurrentVersion\Uninstall\QuiverionSeries'
export WINEDEBUG=-all WINEPREFIX=$root/wine WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe=' LC_ALL=C.UTF-8
rm -rf "$root" && mkdir -p "$root" && cd "$root"
trap 'wineserver -k || true; kill $(jobs -p) 2>/dev/null || true' EXIT

fail() { echo "FEHLER: $*" >&2; exit 1; }
expect() { [ "$2" = "$3" ] || fail "$1: »$2« statt »$3«"; }
run() { timeout 120 wine "$@" </dev/null | tr -d '\r'; }
installer() { timeout 120 wine "$@" </dev/null; }
value() { run reg query "$1" "${@:2}" | sed -nE 's/^    .*    REG_[A-Z_]+    //p'; }
# The type and the bytes of the search path below the key.
path_of() { run reg query "$1" /v Path | grep REG_; }
# The current files and registry, except for times, what wine itself writes, and the copy of the uninstaller that
# Windows deletes at its next start.
snapshot() {
  wineserver -w
  (cd wine && find drive_c -not -path '*/Temp/~nsu*' | sort && sed -E 's/^(\[.*\]) [0-9]+$/\1/' system.reg user.reg |
    grep -vE '^(#time|"DriverDateData"|@=hex\(ffff1003\)|"PendingFileRenameOperations")') >"$1"
}
# Runs the command line $1 over a series, and starts the window with the remaining arguments as the command.
use() {
  rm -rf series && run "$build/bin/make_sample_series.exe" series --count 3 >/dev/null
  sed "s|build/sample/|series/|" "$macro" | timeout 60 wine "$1" macro import - sample.mak
  run "$1" run --macro sample.mak series >run.log || { cat run.log; fail "$1 run"; }
  timeout 60 wine "${@:2}" >/dev/null &
  disown
  local window width  # of the main window, not of a message
  for _ in {1..60}; do
    for window in $(xdotool search --onlyvisible --name "$title" 2>/dev/null); do
      width=$(xdotool getwindowgeometry --shell "$window" 2>/dev/null | sed -n 's/^WIDTH=//p') || continue
      [ "${width:-0}" -le 600 ] || return 0
    done
    sleep 0.5
  done
  fail "${*:2} zeigt nicht das Fenster $title"
}
close_window() {
  run taskkill /f /im QuiverionSeries.exe >/dev/null 2>&1 || true
  run taskkill /f /im QuiverionView.exe >/dev/null 2>&1 || true
  wineserver -w
}

echo "== A fresh Windows 10"
Xvfb -displayfd 3 -screen 0 1280x960x24 3>display >/dev/null 2>&1 &
run wineboot -i >/dev/null 2>&1
run winecfg -v win10
run reg add "HKCU\\${uninstall%\\*}" /f >/dev/null  # exists on every Windows in use
mkdir -p "wine/drive_c/users/$user/AppData/Local/Programs"
DISPLAY=:$(cat display)
export DISPLAY
unzip -q "$zip" && mv QuiverionSeries-* zip
[ "$(stat -c %s "$setup")" -lt 15000000 ] || fail "$setup ist zu groß"
[ "$(stat -c %s zip/Quiverion.hlp)" -gt 100000 ] || fail "das Handbuch fehlt"
for file in $(grep -oE '[A-Za-z0-9.+_-]+[.](txt|dll)' zip/Lizenzen/LIZENZEN.txt); do
  [ -s "zip/Lizenzen/$file" ] || [ -s "zip/$file" ] || fail "LIZENZEN.txt nennt $file, das fehlt"
done
for file in zip/*.dll; do
  grep -q "$(basename "$file")" zip/Lizenzen/LIZENZEN.txt || fail "$file fehlt in LIZENZEN.txt"
done

try_scope() {
  local title=^QuiverionSeries
  [[ $8 != *.vas ]] || title='QuiverionView$'
  local scope=$1 hive=$2 environment=$3 directory=$4 menu=$5 entries=$6 cli=$7 start=$8
  local place=wine/drive_c/${directory#*:\\} key code old
  place=${place//\\//}
  echo "== $scope: a search path of $entries entries, and another program that opens .mak"
  old="C:\\windows\\system32;C:\\windows;%SystemRoot%\\system32\\wbem;$(printf 'C:\\Werkzeuge\\%04d;' $(seq "$entries"))"
  run reg add "$environment" /v Path /t REG_EXPAND_SZ /d "$old" /f >/dev/null
  run reg add "$hive\\Software\\Classes\\.mak" /ve /d Fremd.Makro /f >/dev/null
  snapshot before

  echo "== $scope: installing"
  installer "$setup" /S "/$scope" /AddToPath || fail "installation: $?"
  expect "directory" "$(value "$hive\\$uninstall" /v InstallLocation)" "$directory"
  expect "version" "$(value "$hive\\$uninstall" /v DisplayVersion)" "$(basename "$setup" -Setup.exe | cut -d- -f2)"
  expect "files" "$(diff -rq zip "$place")" "Only in $place: Entfernen.exe"
  expect "search path" "$(path_of "$environment")" "    Path    REG_EXPAND_SZ    $old;$directory\\cli"
  for name in QuiverionSeries QuiverionView; do
    [ -f "wine/drive_c/$menu/$name.lnk" ] || fail "im Startmenü fehlt $name"
  done
  expect "foreign type" "$(value "$hive\\Software\\Classes\\.mak" /ve)" Fremd.Makro
  for type in mak:Makro vas:Vektorfeld col:Kollektion; do
    key=$hive\\Software\\Classes\\QuiverionSeries.${type#*:} program=QuiverionSeries.exe
    [ "$type" != vas:Vektorfeld ] || program=QuiverionView.exe
    expect "$type" "$(value "$key\\shell\\open\\command" /ve)" "\"$directory\\$program\" \"%1\""
    expect "$type" "$(value "$key\\DefaultIcon" /ve)" "$directory\\$program,0"
    run reg query "$hive\\Software\\Classes\\.${type%:*}\\OpenWithProgids" | grep -q "QuiverionSeries.${type#*:}" || fail "$type"
  done
  expect "own type" "$(value "$hive\\Software\\Classes\\.vas" /ve)" QuiverionSeries.Vektorfeld

  echo "== $scope: the programs, started by ${start##*/}"
  use "$cli" start /unix "$root/$start"
  code=0 && installer "$setup" /S "/$scope" || code=$?
  expect "installing over a running program" "$code" 2
  # "_?=" makes the uninstaller stay where it is, so that its exit code is returned; it must not be quoted.
  printf '@"%s\\Entfernen.exe" /S _?=%s\r\n' "$directory" "$directory" >remove.bat
  code=0 && installer cmd /c remove.bat || code=$?
  expect "removing a running program" "$code" 2
  expect "files" "$(diff -rq zip "$place")" "Only in $place: Entfernen.exe"
  close_window

  echo "== $scope: installing once more, then removing"
  installer "$setup" /S || fail "second installation: $?"
  expect "search path" "$(path_of "$environment")" "    Path    REG_EXPAND_SZ    $old;$directory\\cli"
  echo "meins" >"$place/cli/eigene Datei.txt"
  installer "$directory\\Entfernen.exe" /S
  wineserver -w
  expect "a file of the user" "$(cd "$place" && find . -type f)" "./cli/eigene Datei.txt"
  rm -r "$place"
  snapshot after
  diff before after || fail "the removal has left or taken something"
}
home=users/$user/AppData
try_scope CurrentUser HKCU 'HKCU\Environment' "C:\\${home//\//\\}\\Local\\Programs\\QuiverionSeries" \
  "$home/Roaming/Microsoft/Windows/Start Menu/Programs" 250 \
  "C:\\${home//\//\\}\\Local\\Programs\\QuiverionSeries\\cli\\quiverionseries-cli.exe" \
  "wine/drive_c/$home/Roaming/Microsoft/Windows/Start Menu/Programs/QuiverionSeries.lnk"
# Uses the search path and the file types themselves, which wine does not allow for a single user: it accepts no search
# path longer than 1000 characters, and only the file types of the machine.
try_scope AllUsers HKLM 'HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment' 'C:\Program Files\QuiverionSeries' \
  'ProgramData/Microsoft/Windows/Start Menu/Programs' 3 quiverionseries-cli.exe series/run01.vas

echo "== The ZIP"
title=^QuiverionSeries
use zip/cli/quiverionseries-cli.exe zip/QuiverionSeries.exe
close_window
for field in run01.vas run02.dat run03.vec; do
  for kind in png svg pdf; do
    run zip/QuiverionView.exe --picture "picture.$kind" --background vorticity "series/$field"
    head -c 100 "picture.$kind" | grep -qai "$kind" || fail "QuiverionView zeichnet $field nicht als $kind"
    rm "picture.$kind"
  done
done
code=0 && timeout 60 wine zip/QuiverionView.exe --picture x.png nix.vas 2>nix.txt || code=$?
expect "an unreadable field" "$code $(grep -c FEHLER nix.txt)" "1 1"
wineserver -w  # it writes to the directory until it ends
echo "== Done"
cd / && rm -rf "$root"
