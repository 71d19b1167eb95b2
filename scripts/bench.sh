#!/usr/bin/env bash
# Builds the benchmarks in a Release tree of their own (build-release/, no tests) and measures qx
# against ripgrep and sed on generated projects, every figure with its target:
# scripts/bench.sh [qx_bench_scale options], e.g. `scripts/bench.sh --lines 1000000 --repeat 5`.
# The Google Benchmark programs are in the same tree: build-release/bin/qx_bench_*.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
dir="$here/build-release"
bash "$here/scripts/install-deps.sh" bench
extra=()
if command -v ccache >/dev/null; then
  extra+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="$here" CCACHE_NOHASHDIR=1
fi
cmake -S "$here" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQX_TESTS=OFF -DQX_WERROR=ON \
  "${extra[@]}" >/dev/null
cmake --build "$dir" -j"$(nproc)" --target qx_bench_scale
echo "commit: $(git -C "$here" log -1 --format='%h %s' 2>/dev/null || echo unknown)"
echo "load: $(cat /proc/loadavg)"
"$dir/bin/qx_bench_scale" "$@"
