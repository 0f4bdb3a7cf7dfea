#!/usr/bin/env bash
# Makes resources/Halvenor.tga from halvenor-logo.svg: 24 bits, run-length encoded, bottom row first.
# Needs the Debian packages librsvg2-bin and imagemagick; the result is kept, so that building needs neither.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
rsvg-convert --width 512 --height 384 "$here/halvenor-logo.svg" |
  convert png:- -background black -alpha remove -alpha off -flip -orient bottom-left \
    -type TrueColor -depth 8 -compress RLE "tga:$here/../Halvenor.tga"
