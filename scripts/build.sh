#!/usr/bin/env bash
# Configures and builds one build tree: scripts/build.sh [plain|sanitize] [TARGET...] (default:
# every target)
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
kind="${1:-plain}"
case "$kind" in
  plain) dir="$here/build"; extra=() ;;
  sanitize) dir="$here/build-sanitize"; extra=(-DQX_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DQX_BENCH=OFF) ;;
  *) echo "usage: scripts/build.sh [plain|sanitize] [TARGET...]" >&2; exit 2 ;;
esac
shift $(($# > 0 ? 1 : 0))
targets=()
[ $# -gt 0 ] && targets=(--target "$@")
bash "$here/scripts/install-deps.sh"
# ccache keeps compiled objects between builds and between clones of the repository: paths are
# made relative to the clone, so a second clone of the same sources builds from the cache.
if command -v ccache >/dev/null; then
  extra+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="$here" CCACHE_NOHASHDIR=1
fi
cmake -S "$here" -B "$dir" -G Ninja -DQX_WERROR=ON "${extra[@]}" >/dev/null
cmake --build "$dir" -j"$(nproc)" "${targets[@]}"
