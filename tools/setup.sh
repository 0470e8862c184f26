#!/usr/bin/env bash
# Installs what the build needs (Debian packages) when it is missing, then configures and builds
# the given preset. Sourced by ./run and ./test; quick when everything is already there.
set -euo pipefail

CELESTARK_PACKAGES=(cmake ninja-build g++ pkg-config libsqlite3-dev libgtest-dev libgmock-dev
  libbenchmark-dev libswe-dev swe-basic-data swe-standard-data qt6-base-dev qt6-svg-dev
  libgl-dev poppler-utils xvfb xauth x11-utils x11-apps)

celestark_install_missing() {
  local missing=()
  for p in "${CELESTARK_PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

celestark_build() {
  local preset="$1"
  shift
  if [ ! -f "build/$preset/build.ninja" ]; then
    cmake --preset "$preset" >/dev/null
  fi
  cmake --build --preset "$preset" "$@"
}
