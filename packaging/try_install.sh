#!/usr/bin/env bash
# Installs the package on a minimal fresh Debian, uses both programs, and removes it: try_install.sh DEB DIRECTORY
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
