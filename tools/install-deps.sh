#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing and running isptune need (as root), or says
# which are missing (as anyone else). Used by .ci/run and by the README's commands. Extra package names
# given as arguments are added (tools/coverage.sh asks for gcovr this way).
set -euo pipefail

packages=(
  cmake ninja-build gcc g++ make pkg-config        # native build
  googletest libgtest-dev libgmock-dev libbenchmark-dev  # tests (GoogleTest built from source), benchmarks
  gcc-arm-linux-gnueabi g++-arm-linux-gnueabi qemu-user   # ARM926 cross build, tests under qemu-arm
  python3 gnuplot-nox valgrind binutils file       # generators, plots, callgrind, size/nm
  libyaml-dev                                       # isptune-sim: scenario files (YAML)
  "$@"
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
else
  echo "isptune needs these Debian packages: ${missing[*]}" >&2
  echo "install them with: sudo apt-get install ${missing[*]}" >&2
  exit 1
fi
