#!/usr/bin/env bash
# Measures which lines and branches of src/ the tests run: builds build-cov/ with gcc's --coverage,
# runs every test, and writes build-cov/coverage/: lines.txt ("file:line" for each line of src/
# that ran), branches.txt ("file:line:branch" for each branch taken) and summary.txt (per file:
# lines run / lines with code). `scripts/coverage.sh --compare OLD_DIR` then lists what OLD_DIR's
# run covered and this one does not: run it before and after trimming or moving tests.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
dir="$here/build-cov"
out="$dir/coverage"
compare=""
if [ "${1:-}" = --compare ]; then
  compare="$(cd "$2" && pwd)"
fi
bash "$here/scripts/install-deps.sh"
cmake -S "$here" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQX_BENCH=OFF \
  -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$dir"
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j"$(nproc)" --output-on-failure
rm -rf "$out"
mkdir -p "$out/gcov"
# gcov writes one JSON document per object file; the summary merges them (inline functions of a
# header appear in every object that uses them).
find "$dir" -name '*.gcda' -print0 |
  (cd "$out/gcov" && xargs -0 -r gcov --json-format --branch-probabilities --hash-filenames >/dev/null 2>&1) || true
python3 - "$here" "$out" <<'PY'
import gzip, json, os, sys, collections
here, out = sys.argv[1], sys.argv[2]
src = os.path.join(here, "src") + os.sep
lines = collections.defaultdict(dict)  # file -> line -> ran
branches = set()
for name in os.listdir(os.path.join(out, "gcov")):
    with gzip.open(os.path.join(out, "gcov", name), "rt") as f:
        doc = json.load(f)
    base = doc.get("current_working_directory", "")
    for entry in doc["files"]:
        path = os.path.realpath(os.path.join(base, entry["file"]))
        if not path.startswith(src):
            continue
        rel = os.path.relpath(path, here)
        for line in entry["lines"]:
            n = line["line_number"]
            lines[rel][n] = lines[rel].get(n, False) or line["count"] > 0
            for i, b in enumerate(line.get("branches", [])):
                if b["count"] > 0:
                    branches.add(f"{rel}:{n}:{i}")
with open(os.path.join(out, "lines.txt"), "w") as f:
    for rel in sorted(lines):
        for n in sorted(lines[rel]):
            if lines[rel][n]:
                f.write(f"{rel}:{n}\n")
with open(os.path.join(out, "branches.txt"), "w") as f:
    f.write("".join(b + "\n" for b in sorted(branches)))
total_run = total = 0
with open(os.path.join(out, "summary.txt"), "w") as f:
    for rel in sorted(lines):
        run = sum(lines[rel].values())
        total_run += run
        total += len(lines[rel])
        f.write(f"{run:6d} / {len(lines[rel]):6d}  {rel}\n")
    f.write(f"{total_run:6d} / {total:6d}  total ({100.0 * total_run / max(total, 1):.1f}%), "
            f"{len(branches)} branches taken\n")
PY
tail -1 "$out/summary.txt"
if [ -n "$compare" ]; then
  for kind in lines branches; do
    lost="$(comm -23 <(sort "$compare/$kind.txt") <(sort "$out/$kind.txt"))"
    echo "$kind covered in $compare and not now: $(printf '%s' "$lost" | grep -c . || true)"
    printf '%s\n' "$lost" | grep . || true
  done
fi
