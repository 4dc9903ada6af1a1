#!/usr/bin/env bash
# Runs the sample series and its macro on Linux and in wine (with the WINEPREFIX of the environment): compare_systems.sh
# MACRO PROGRAMS WINDOWS_PROGRAMS DIRECTORY. Every file must have the same bytes, except for the time of day and, in the
# log and the collection, the path of the series. Each system must read what the other one wrote.
set -euo pipefail
macro=$(realpath "$1") posix=$(realpath "$2") windows=$(realpath "$3") directory=$4
rm -rf "$directory" && mkdir -p "$directory"/{posix,windows}
cd "$directory"

# on SYSTEM PROGRAM ARGUMENT...: runs the program on that system, in its directory.
on() {
  local system=$1 program=$2
  shift 2
  if [ "$system" = posix ]; then
    (cd posix && "$posix/$program" "$@")
  else
    (cd windows && wine "$windows/$program.exe" "$@") | tr -d '\r'
  fi
}

job() {
  local kind
  mkdir -p "$1/build/sample"
  cp "$macro" "$1/macro.json"
  on "$1" make_sample_series series >/dev/null
  on "$1" quiverionseries-cli macro import macro.json macro.mak
  on "$1" quiverionseries-cli run --macro macro.mak --log Log.rtf series >"$1/run.txt"
  for kind in mean stddev squares product turbulence dissipation; do
    on "$1" quiverionseries-cli statistics "$kind" build/sample/Serie.col "$kind.vas" --viscosity 15E-6
  done
}

# Everything that the program prints about the files in the directory.
tell() {
  local file
  on "$1" quiverionseries-cli macro export macro.mak
  on "$1" quiverionseries-cli collection list build/sample/Serie.col
  (cd "$1" && find . -name '*.vas' | sort) | while read -r file; do
    on "$1" quiverionseries-cli info --json "$file"
  done
  on "$1" quiverionseries-cli statistics mean build/sample/Serie.col again.vas
}

# A file without times, and with paths in a uniform notation and without the blanks after them.
plain() {
  local here=${PWD//\//[\\\\/]+}
  PLAIN_PATHS=$([[ $1 =~ \.(rtf|txt|col)$ ]] && echo yes) HERE=$here perl -pe '
    s/\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d/TIME/g;
    s{(?:der Kollektion: |"filePath": ")[^\r\n"]*}{$& =~ tr|\\/|/|sr}ge;  # the path as given
    next unless $ENV{PLAIN_PATHS};
    s/Dauer: [\d.]+/DURATION/;
    s{(?:Z:)?(?:$ENV{HERE})[\\/]+(?:posix|windows)([^\x27 ]*) *|(?<=\x27)([^\x27 ]*)(?=\x27)}{
      my $path = defined $1 ? "HERE$1" : $2; $path =~ s{[\\/]+}{/}g; $path}ge' "$1"
}

compare() {
  local file files
  files=$(cd posix && find . -type f | sort)
  if [ "$files" != "$(cd windows && find . -type f | sort)" ]; then
    echo "Not the same files" >&2
    exit 1
  fi
  for file in $files; do
    plain "posix/$file" >posix.plain
    plain "windows/$file" >windows.plain
    if ! cmp posix.plain windows.plain; then
      echo "Not the same bytes: $file" >&2
      exit 1
    fi
  done
  echo "$(wc -l <<<"$files") files of the same bytes: $1"
}

# Dates in the format of the other system.
wine reg add 'HKCU\Control Panel\International' /v sShortDate /d dd.MM.yyyy /f >/dev/null
wine reg add 'HKCU\Control Panel\International' /v sTimeFormat /d HH:mm:ss /f >/dev/null
job posix
job windows
compare "written"
mv posix other && mv windows posix && mv other windows
for system in posix windows; do tell $system >$system.told; done
mv posix.told posix/told.txt && mv windows.told windows/told.txt
compare "and read by the other system"
