#!/usr/bin/env bash
# Renders src/dialogs/widgets/icons/*.svg to the .ico files of the programs, and the picture of the installer. Needs
# librsvg2-bin, icoutils and imagemagick.
set -euo pipefail
cd "$(dirname "$0")/../src/dialogs/widgets/icons"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for drawing in *.svg; do
  name=${drawing%.svg}
  pictures=()
  for size in 16 20 24 32 48; do
    rsvg-convert -w $size -h $size "$drawing" -o "$work/$size.png"
    pictures+=("$work/$size.png")
  done
  if [ "$name" = program ] || [ "$name" = viewer ]; then  # Windows shows it large; only for this size is PNG supported everywhere
    rsvg-convert -w 256 -h 256 "$drawing" -o "$work/256.png"
    pictures+=("--raw=$work/256.png")
  else
    pictures=("${pictures[@]/#/--raw=}")
  fi
  icotool -c -o "$name.ico" "${pictures[@]}"
done
rsvg-convert -w 120 -h 120 program.svg -o "$work/large.png"
convert -size 164x314 xc:'#17375e' "$work/large.png" -gravity north -geometry +0+40 -composite -colors 64 -compress RLE \
  BMP3:../../../../packaging/windows/installer.bmp
