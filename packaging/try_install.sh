#!/usr/bin/env bash
# Installs the package on a minimal fresh Debian, uses all programs, and removes it: try_install.sh DEB DIRECTORY
set -euo pipefail
package=$1 root=$2
mirror=$(apt-get indextargets --format '$(SITE) $(RELEASE)' "Created-By: Packages" | sort -u | awk '$2 !~ /-/ {print $1; exit}')
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
rm -rf "$root" && mkdir -p "$root"
echo "== A fresh $release"
debootstrap --variant=minbase "$release" "$root" "$mirror" >"$root.log" 2>&1 || { tail -20 "$root.log"; exit 1; }
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$root"' EXIT
mount -t proc proc "$root/proc"
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root DEBIAN_FRONTEND=noninteractive "$@"; }
cp "$package" "$root/tmp/"
echo "== Installing"
inside apt-get -qq install -y --no-install-recommends "/tmp/$(basename "$package")" shared-mime-info desktop-file-utils libglib2.0-bin >>"$root.log" 2>&1 ||
  { tail -20 "$root.log"; exit 1; }
echo "== The command line"
inside quiverionseries-cli --version
inside quiverionseries-cli commands >/dev/null
inside mkdir -m 700 /tmp/runtime
for program in QuiverionSeries QuiverionView; do
  echo "== $program: still there after five seconds, without a word; its manual is next to it"
  code=0
  inside env QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=/tmp/runtime timeout 5 "$program" >"$root.out" 2>&1 || code=$?
  if [ "$code" != 124 ] || grep -v propagateSizeHints "$root.out"; then
    echo "ended with $code"
    exit 1
  fi
  inside sh -c "test \"\$(stat -c %s \"\$(dirname \"\$(readlink -f /usr/bin/$program)\")/Quiverion.hlp\")\" -gt 100000"
done
echo "== The viewer: pictures without a display"
build/bin/make_sample_series "$root/tmp/serie" --count 3 >/dev/null
printf '%s\n' 'Date' >"$root/tmp/other.dat"
for field in run01.vas run02.dat run03.vec; do
  inside QuiverionView --picture /tmp/field.png "/tmp/serie/$field"
  inside grep -qa PNG /tmp/field.png
  rm "$root/tmp/field.png"
done
code=0
inside QuiverionView --picture /tmp/field.png /tmp/other.dat >"$root.out" 2>&1 || code=$?
[ "$code" = 1 ] && [ ! -e "$root/tmp/field.png" ] || { cat "$root.out"; exit 1; }
echo "== File types: what a double-click opens"
while read -r file type program; do
  inside gio info -a standard::content-type "/tmp/$file" | grep -qx "  standard::content-type: $type"
  [ -z "$program" ] || inside gio mime "$type" | grep "^Default" | grep -q "org.quiverion.$program.desktop"
done <<'TYPES'
serie/run01.vas application/x-quiverion-vector-field QuiverionView
serie/run02.dat application/x-korvo-vector-field QuiverionView
serie/run03.vec application/x-davis-vector-field QuiverionView
other.dat text/plain
TYPES
for type in macro collection; do
  inside gio mime "application/x-quiverion-$type" | grep "^Default" | grep -q org.quiverion.QuiverionSeries.desktop
done
grep -q x-quiverion-macro "$root/usr/share/mime/globs"
echo "== Removing"
inside apt-get -qq purge -y quiverionseries >>"$root.log" 2>&1
if find "$root/usr" "$root/etc" | grep -i quiverion; then
  echo "left behind"
  exit 1
fi
echo "== Done"
rm -f "$root.log" "$root.out"
