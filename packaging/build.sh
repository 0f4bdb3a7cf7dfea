# shellcheck shell=bash disable=SC2154
# For ./run, ./test and .ci/run (sourced): configuring and building a preset of CMakePresets.json.
# Needs `root`, the folder of the project.

# configure_preset NAME: configures build/NAME unless it stands as the presets say. A tree that was
# made for another place (the folder was moved or copied) is made anew.
configure_preset() {
  local tree=$root/build/$1 fresh=
  local stamp=$tree/configured
  if [[ -f $tree/CMakeCache.txt ]] &&
    ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$tree/CMakeCache.txt"; then
    fresh=--fresh
  fi
  if [[ -n $fresh || ! -f $tree/build.ninja || ! $stamp -nt $root/CMakePresets.json ]]; then
    (cd "$root" && cmake --preset "$1" ${fresh:+"$fresh"})
    touch "$stamp"
  fi
}

# build_preset NAME [TARGET...]: configures and builds; without targets, everything.
build_preset() {
  local preset=$1
  shift
  configure_preset "$preset"
  cmake --build "$root/build/$preset" ${1+--target "$@"}
}
