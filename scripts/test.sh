#!/usr/bin/env bash
# Builds qx twice, plainly and under AddressSanitizer, UndefinedBehaviorSanitizer and
# LeakSanitizer, and runs every test in both builds; then runs each fuzz target briefly.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
# Includes between the layers follow their order (cheap, so first).
python3 "$here/scripts/check_layers.py"
bash "$here/scripts/build.sh" plain
bash "$here/scripts/build.sh" sanitize
clang-format --dry-run --Werror $(git -C "$here" ls-files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'fuzz/*.cpp' 'fuzz/*.h' 'bench/*.cpp' 'bench/*.h' | sed "s|^|$here/|")
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
echo "== tests (plain build)"
ctest --test-dir "$here/build" --output-on-failure -j"$(nproc)"
echo "== tests (sanitized build)"
ctest --test-dir "$here/build-sanitize" --output-on-failure -j"$(nproc)"
echo "== fuzz targets (a few seconds each)"
bash "$here/scripts/fuzz.sh" 5
