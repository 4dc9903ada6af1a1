#!/usr/bin/env bash
# Cross-builds Qt for Windows from Debian's source packages into the given directory, which must be outside the tree.
# Takes half an hour on two cores, once. The tools of the host (moc, rcc, uic) must have the same version.
set -euo pipefail
prefix=$(realpath -m "$1")
[ ! -f "$prefix/complete" ] || exit 0

work=$prefix.build
log=$work/build.log
rm -rf "$prefix" "$work"
mkdir -p "$work/apt/parts" "$work/apt/lists/partial" "$work/source"
trap '[ $? = 0 ] || { tail -n 40 "$log" >&2; echo "Qt für Windows ließ sich nicht bauen: $log" >&2; }' EXIT
exec 3>&1 >"$log" 2>&1

# The configured package sources, for source packages, in separate lists.
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
  [ -f "$list" ] || continue
  sed -E 's/^Types:.*/Types: deb-src/; s/^deb /deb-src /' "$list" >"$work/apt/parts/${list##*/}"
done
cd "$work/source"
apt_source() {
  apt-get -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$work/apt/parts" -o Dir::State::Lists="$work/apt/lists" \
    -o APT::Sandbox::User="$(id -un)" "$@"
}
apt_source -qq update
version=$(dpkg-query -W -f='${Version}' qt6-base-dev)
apt_source -qq source "qt6-base=$version"

host_cmake=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake
# FEATURE_tabletevent: Debian's source lacks a header it needs.
cmake -S "$(echo qt6-base-*/)" -B "$work/base" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$2" -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_INSTALL_PREFIX="$prefix" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$host_cmake" -DBUILD_SHARED_LIBS=ON \
  -DQT_BUILD_TESTS=OFF -DQT_BUILD_EXAMPLES=OFF -DINPUT_opengl=no -DFEATURE_vulkan=OFF -DFEATURE_pkg_config=OFF \
  -DFEATURE_sql=OFF -DFEATURE_dbus=OFF -DFEATURE_network=OFF -DFEATURE_concurrent=OFF -DFEATURE_tabletevent=OFF
cmake --build "$work/base"
cmake --install "$work/base"

mkdir -p "$prefix/licences"
cp qt6-base-*/debian/copyright "$prefix/licences/qt6-base.txt"
cp -r qt6-base-*/LICENSES "$prefix/licences/texts"
touch "$prefix/complete"
cd /
mv "$log" "$prefix/build.log"
rm -rf "$work"
