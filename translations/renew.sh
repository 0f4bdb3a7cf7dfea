#!/usr/bin/env bash
# renew.sh LUPDATE FILE.ts...: brings the files up to the texts of the sources. New texts come in
# unfinished, those that are gone are dropped. Nothing in the files tells of lines, so that they
# change only when a text does.
set -euo pipefail

lupdate=$1
shift
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
exec "$lupdate" -silent -locations none -no-obsolete -source-language en_US \
  -tr-function-alias translate+=Translated,QT_TRANSLATE_NOOP+=HALVENOR_TEXT \
  -I . -recursive files protocol audio presets config_window desktop -ts "$@"
