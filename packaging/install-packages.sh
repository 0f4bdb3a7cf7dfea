#!/usr/bin/env bash
# Installs the Debian packages that the named lists (packaging/packages/LIST.txt) hold and this
# machine lacks. Says what and why first; does nothing, quickly, when all are there.
set -euo pipefail

lists=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/packages
if (($# == 0)); then
  echo "usage: install-packages.sh LIST...   (a name from $lists, without .txt)" >&2
  exit 2
fi

declare -a missing=()
declare -a reasons=()

# The packages of a list; a comment runs to the end of its line.
packages_of() {
  sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$1"
}

find_missing() {
  local list file package purpose
  local -A present=()
  while read -r package; do
    present[$package]=1
  done < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' | sed -n 's/ installed$//p')

  for list in "$@"; do
    file=$lists/$list.txt
    if [[ ! -r $file ]]; then
      echo "There is no package list $file." >&2
      exit 2
    fi
    purpose=$(sed -n 's/^# purpose: //p' "$file")
    local -a absent=()
    while read -r package; do
      if [[ -z ${present[$package]-} ]]; then
        present[$package]=1
        absent+=("$package")
      fi
    done < <(packages_of "$file")
    if ((${#absent[@]})); then
      missing+=("${absent[@]}")
      reasons+=("$purpose: ${absent[*]}")
    fi
  done
}

if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
  echo "Halvenor's scripts install what they need with Debian's apt-get, which is not here." >&2
  echo "On another system, install the counterparts of these packages and use CMake directly:" >&2
  for list in "$@"; do packages_of "$lists/$list.txt"; done | tr '\n' ' ' | fold -s -w 96 >&2
  echo >&2
  exit 1
fi

find_missing "$@"
((${#missing[@]})) || exit 0

echo "Halvenor needs Debian packages that are not installed here:"
for reason in "${reasons[@]}"; do
  fold -s -w 92 <<< "$reason" | sed -e '1s/^/  /' -e '2,$s/^/    /'
done

# Says what an administrator has to run, and gives up.
ask_for_root() {
  echo "$1 Please have this run as root, then start again:" >&2
  echo "  apt-get update && apt-get install -y --no-install-recommends ${missing[*]}" >&2
  exit 1
}

declare -a as_root=(env)
if ((EUID != 0)); then
  command -v sudo > /dev/null || ask_for_root "You are not root, and there is no sudo."
  sudo -v || ask_for_root "You are not root, and sudo refuses."
  as_root=(sudo env)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# apt-get as root, without questions. On a terminal its output is shown as it comes; otherwise it
# is kept back and shown only when it fails.
run_apt_get() {
  local -a command=("${as_root[@]}" DEBIAN_FRONTEND=noninteractive
    apt-get -o DPkg::Lock::Timeout=300 "$@")
  if [[ -t 1 ]]; then
    "${command[@]}"
  else
    "${command[@]}" > "$log" 2>&1 || { tail -n 40 "$log" >&2; return 1; }
  fi
}

fetch_lists() {
  echo "Fetching the list of packages ..."
  run_apt_get update -q
}

install_missing() {
  run_apt_get install -q -y --no-install-recommends "${missing[@]}"
}

# What would be fetched, as apt-get words it; fails when a package is not known here.
announce() {
  LC_ALL=C apt-get -o Debug::NoLocking=1 install --assume-no --no-install-recommends \
    "${missing[@]}" 2> /dev/null |
    sed -n -e 's|^Need to get \([0-9.]* [kMG]*B\).*|  to fetch: \1|p' \
      -e 's/^After this operation, \(.*\) of additional.*/  on disk: \1/p'
}

known() {
  apt-get install --simulate --no-install-recommends "${missing[@]}" > /dev/null 2>&1
}

updated=
if ! known; then
  fetch_lists
  updated=1
fi
announce || true
echo "Installing ${#missing[@]} packages and what they depend on ..."
# An old list may name files that the mirror no longer has.
if ! install_missing; then
  if [[ -n $updated ]] || ! { fetch_lists && install_missing; }; then
    echo "The packages could not be installed; apt-get's own words are above." >&2
    exit 1
  fi
fi
