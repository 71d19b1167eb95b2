#!/usr/bin/env bash
# Builds the fuzz targets with clang in their own tree (build-fuzz/) and runs each of them:
#   scripts/fuzz.sh [SECONDS_PER_TARGET] [extra libFuzzer options...]
# (default 600 s each). Seeds come from tests/fixtures; what a run finds stays in
# build-fuzz/corpus/<target>; a crash or hang is written to build-fuzz/findings/ and fails the run.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-600}"
shift || true
dir="$here/build-fuzz"
bash "$here/scripts/install-deps.sh"

extra=()
if command -v ccache >/dev/null; then
  extra+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="$here" CCACHE_NOHASHDIR=1
fi
cmake -S "$here" -B "$dir" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQX_FUZZ=ON -DQX_TESTS=OFF -DQX_BENCH=OFF "${extra[@]}" >/dev/null
cmake --build "$dir" -j"$(nproc)" --target fuzz_project_file fuzz_component_file fuzz_code_module \
  fuzz_companion fuzz_scan_result

# Seeds: every fixture file, behind the byte that chooses the kind of file (and code page) to
# read it as.
kind_byte() {
  case "${1,,}" in
    *.bas) echo 0 ;; *.cls) echo 1 ;; *.frm) echo 2 ;; *.ctl) echo 3 ;; *.pag) echo 4 ;;
    *.dob) echo 5 ;; *.dsr) echo 6 ;; *) echo 0 ;;
  esac
}
mkdir -p "$dir/seeds/project_file" "$dir/seeds/component_file" "$dir/seeds/code_module" \
  "$dir/seeds/companion" "$dir/seeds/scan_result" "$dir/findings"
# The scan result target's seed: the valid answer as it is (all kept, no edits).
printf '\377' >"$dir/seeds/scan_result/whole"
# The companion target's seed: three references (a text at 0000, a long string at 0004, a list at
# 000B), then a companion that holds them.
printf '\003\000\000\000\004\000\001\013\000\002\003abc\003\000\000\000xyz\001\000\003\000\002\000ab' \
  >"$dir/seeds/companion/packed"
n=0
while IFS= read -r -d '' file; do
  n=$((n + 1))
  case "${file,,}" in
    *.vbp)
      { printf '\000'; cat "$file"; } >"$dir/seeds/project_file/$n" ;;
    *.bas | *.cls | *.frm | *.ctl | *.pag | *.dob | *.dsr)
      { printf "\\$(printf '%03o' "$(kind_byte "$file")")"; cat "$file"; } \
        >"$dir/seeds/component_file/$n"
      cp "$file" "$dir/seeds/code_module/$n" ;;
  esac
done < <(find "$here/tests/fixtures" -type f -print0)

# Generated seeds that reach what the fixtures do not: forms nested to the bound of 100 levels
# and one beyond it (objects, then property groups inside the deepest object), and a long form
# of 400 controls, half of them in control arrays. Form kind byte: 2.
nested_form() {  # nested_form LEVELS GROUPS
  printf '\002VERSION 5.00\r\nBegin VB.Form frmDeep \r\n   Caption         =   "Deep"\r\n'
  local level
  for ((level = 1; level < $1; level++)); do
    printf 'Begin VB.Frame Frame%d \r\n   Caption = "%d"\r\n' "$level" "$level"
  done
  for ((level = 0; level < $2; level++)); do printf 'BeginProperty Font \r\n'; done
  for ((level = 0; level < $2; level++)); do printf 'EndProperty\r\n'; done
  for ((level = 0; level < $1; level++)); do printf 'End\r\n'; done
  printf 'Attribute VB_Name = "frmDeep"\r\nOption Explicit\r\n'
}
nested_form 100 0 >"$dir/seeds/component_file/deep-100"
nested_form 98 2 >"$dir/seeds/component_file/deep-98-groups"
nested_form 101 0 >"$dir/seeds/component_file/deep-101"
{
  printf '\002VERSION 5.00\r\nBegin VB.Form frmWide \r\n   Caption         =   "Wide"\r\n'
  for ((i = 0; i < 400; i++)); do
    if ((i % 2)); then
      printf '   Begin VB.OptionButton optChoice \r\n      Index           =   %d\r\n' "$((i / 2))"
    else
      printf '   Begin VB.TextBox txtField%d \r\n' "$i"
    fi
    printf '      Left            =   120\r\n      TabIndex        =   %d\r\n   End\r\n' "$i"
  done
  printf 'End\r\nAttribute VB_Name = "frmWide"\r\nOption Explicit\r\n'
} >"$dir/seeds/component_file/wide-400"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
status=0
for target in project_file component_file code_module companion scan_result; do
  mkdir -p "$dir/corpus/$target"
  echo "== fuzz_$target (${seconds}s)"
  if ! "$dir/bin/fuzz_$target" "$dir/corpus/$target" "$dir/seeds/$target" \
    -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
    -artifact_prefix="$dir/findings/${target}-" -print_final_stats=1 "$@" 2>"$dir/fuzz_$target.log"; then
    status=1
    tail -40 "$dir/fuzz_$target.log"
  fi
  grep -E '^stat::number_of_executed_units|^Done|^#[0-9]+.*DONE' "$dir/fuzz_$target.log" || true
done
exit $status
