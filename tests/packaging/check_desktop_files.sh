#!/usr/bin/env bash
# What an installed tree brings for a desktop, held to the desktop's own validators; and the manual
# pages, held to what the programs say of themselves.
# usage: check_desktop_files.sh BUILD_TREE
set -euo pipefail

tree=$(mktemp -d)
trap 'rm -r "$tree"' EXIT
cmake --install "$1" --prefix "$tree" > /dev/null
id=org.halvenor.Halvenor
failed=0
fail() {
  echo "$*" >&2
  failed=1
}

desktop-file-validate "$tree/share/applications/$id.desktop" || fail "the menu entry is invalid"
appstreamcli validate --no-net --no-color "$tree/share/metainfo/$id.metainfo.xml" ||
  fail "the description for software centers is invalid"
icon=$tree/share/icons/hicolor/scalable/apps/$id.svg
[[ $(file --brief --mime-type "$icon") == image/svg+xml ]] || fail "$icon is no SVG"

for program in halvenor halvenor-render; do
  page=$tree/share/man/man1/$program.1
  warnings=$(LC_ALL=C MANROFFSEQ='' man --warnings -E UTF-8 -l -Tutf8 "$page" 2>&1 > /dev/null)
  [[ -z $warnings ]] || fail "$page: $warnings"
  # "--" at the beginning of a word: options, wherever the help names them.
  options=$("$tree/bin/$program" --help | grep -oE '(^|[ ,])--[a-z][a-z-]+' | tr -d ' ,' | sort -u)
  [[ -n $options ]] || fail "$program --help names no option"
  text=$(sed 's/\\-/-/g' "$page")
  for option in $options; do
    grep -qE -- "$option($|[^a-z-])" <<< "$text" || fail "$page does not tell of $option"
  done
done
exit "$failed"
