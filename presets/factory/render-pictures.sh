#!/usr/bin/env bash
# Renders the pictures of the factory presets. See --help.
set -euo pipefail

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")

usage() {
  cat << 'END'
usage: presets/factory/render-pictures.sh BUILD [PRESET...]

Renders the small picture of every factory preset, or of the PRESETs named (ID or ID.preset), with
the halvenor-render and the demo tune of the build folder BUILD. All are made by the same command,
from the same seconds of the tune: PRESET.png beside PRESET.preset, 240 by 135 pixels, without any
text in it. Then puts all of them with their names on one sheet, docs/pictures/presets.png (needs
ImageMagick and the DejaVu fonts). They are kept in the repository; run this after a preset or the
picture has changed.
END
}

case ${1-} in
  -h | --help)
    usage
    exit 0
    ;;
  '' | -*)
    usage >&2
    exit 2
    ;;
esac

build=$1
shift
renderer=$build/bin/halvenor-render
tune=$build/share/halvenor/halvenor-demo.opus
for needed in "$renderer" "$tune"; do
  if [[ ! -f $needed ]]; then
    echo "render-pictures.sh: $needed is missing: build halvenor-render in $build first" >&2
    exit 1
  fi
done

presets=("$here"/*.preset)
if (($# > 0)); then
  presets=()
  for name in "$@"; do
    name=${name##*/}
    presets+=("$here/${name%.preset}.preset")
  done
fi

for preset in "${presets[@]}"; do
  "$renderer" --quiet --preset "$preset" \
    --set showFrameRate=off --set numFrequencyLabels=0 --set trackTextDuration=0 \
    --size 240x135 --fps 60 --start 41 --duration 3 --output "${preset%.preset}.png" "$tune"
done

labeled=()
for picture in "$here"/*.png; do
  labeled+=(-label "$(sed -n 's/^name=//p' "${picture%.png}.preset")" "$picture")
done
montage "${labeled[@]}" -background '#1c1c1e' -fill '#e8e8e8' -font DejaVu-Sans -pointsize 12 \
  -geometry 176x99+5+4 -tile 4x miff:- |
  convert miff:- -strip +dither -posterize 64 -depth 8 "$here/../../docs/pictures/presets.png"
