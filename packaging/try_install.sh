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
inside apt-get -qq install -y --no-install-recommends "/tmp/$(basename "$package")" shared-mime-info desktop-file-utils >>"$root.log" 2>&1 ||
  { tail -20 "$root.log"; exit 1; }
echo "== The command line"
inside quiverionseries-cli --version
inside quiverionseries-cli commands >/dev/null
echo "== The desktop program: still there after five seconds, without a word"
code=0
inside mkdir -m 700 /tmp/runtime
inside env QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=/tmp/runtime timeout 5 QuiverionSeries >"$root.out" 2>&1 || code=$?
if [ "$code" != 124 ] || grep -v propagateSizeHints "$root.out"; then
  echo "ended with $code"
  exit 1
fi
inside sh -c 'test "$(stat -c %s "$(dirname "$(readlink -f /usr/bin/QuiverionSeries)")/Quiverion.hlp")" -gt 100000'
echo "== The viewer: a picture without a display"
printf '%s\n' '"Korvo"' >"$root/tmp/kein.dat"
code=0
inside QuiverionView --picture /tmp/a.png /tmp/kein.dat >"$root.out" 2>&1 || code=$?
[ "$code" = 1 ] && [ ! -e "$root/tmp/a.png" ] || { cat "$root.out"; exit 1; }
build/bin/make_sample_series "$root/tmp/serie" --count 1 >/dev/null
inside QuiverionView --picture /tmp/a.png /tmp/serie/run01.vas
[ "$(head -c 4 "$root/tmp/a.png" | tail -c 3)" = PNG ]
grep -q 'x-quiverion-vector-field=org.quiverion.QuiverionView.desktop' "$root/usr/share/applications/mimeinfo.cache"
grep -q x-quiverion-macro "$root/usr/share/mime/globs"
grep -q x-quiverion-collection "$root/usr/share/applications/mimeinfo.cache"
echo "== Removing"
inside apt-get -qq purge -y quiverionseries >>"$root.log" 2>&1
if find "$root/usr" "$root/etc" | grep -i quiverion; then
  echo "left behind"
  exit 1
fi
echo "== Done"
rm -f "$root.log" "$root.out"
