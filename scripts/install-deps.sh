#!/usr/bin/env bash
# Installs the Debian packages that building and testing qx need; `install-deps.sh bench` adds
# what the benchmarks compare qx with (ripgrep). Safe to run again: it does nothing when
# everything is there already.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config clang-format ccache
  clang libclang-rt-14-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libcli11-dev nlohmann-json3-dev libpcre2-dev libcapnp-dev capnproto libuchardet-dev libgit2-dev libre2-dev
)
if [ "${1:-}" = bench ]; then
  packages+=(ripgrep)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
