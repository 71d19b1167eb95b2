#include "cli/unified_diff.h"

#include <algorithm>

namespace cli {
namespace {

enum class Op { Keep, Remove, Add };

struct Edit {
  Op op;
  size_t a;  // index in before (Keep, Remove)
  size_t b;  // index in after (Keep, Add)
};

// Rounds of Myers' search before the edit script is made line by line instead: the search costs
// time in proportion to the lines times the rounds, and keeps each round to walk back, so a file
// whose every line changed would take quadratic time and memory.
constexpr long kMaxRounds = 1000;

// Myers' greedy shortest edit script between a[aFrom, aTo) and b[bFrom, bTo), appended to
// edits; false (nothing appended) when it needs more than kMaxRounds rounds. Each round keeps
// only its own diagonals, -d to d.
bool Myers(const std::vector<DiffLine>& a, long aFrom, long aTo, const std::vector<DiffLine>& b,
           long bFrom, long bTo, std::vector<Edit>& edits) {
  const long n = aTo - aFrom, m = bTo - bFrom;
  const long max = std::min(n + m, kMaxRounds);
  const long offset = max + 1;
  std::vector<long> v(2 * max + 3, 0);
  std::vector<std::vector<long>> trace;  // round d: v[k] for k = -d .. d
  long found = -1;
  for (long d = 0; d <= max && found < 0; ++d) {
    trace.emplace_back(v.begin() + (offset - d), v.begin() + (offset + d + 1));
    for (long k = -d; k <= d; k += 2) {
      long x = (k == -d || (k != d && v[k - 1 + offset] < v[k + 1 + offset]))
                   ? v[k + 1 + offset]
                   : v[k - 1 + offset] + 1;
      long y = x - k;
      while (x < n && y < m && a[aFrom + x] == b[bFrom + y]) {
        ++x;
        ++y;
      }
      v[k + offset] = x;
      if (x >= n && y >= m) {
        found = d;
        break;
      }
    }
  }
  if (found < 0) return false;
  std::vector<Edit> script;
  const auto push = [&](Op op, long x, long y) {
    script.push_back({op, static_cast<size_t>(aFrom + x), static_cast<size_t>(bFrom + y)});
  };
  long x = n, y = m;
  for (long d = found; d > 0; --d) {
    const std::vector<long>& prev = trace[d];  // the values at the start of round d: round d-1's
    const auto at = [&](long k) { return prev[k + d]; };
    const long k = x - y;
    const bool down = k == -d || (k != d && at(k - 1) < at(k + 1));
    const long prevK = down ? k + 1 : k - 1;
    const long prevX = at(prevK), prevY = prevX - prevK;
    while (x > prevX && y > prevY) {
      --x;
      --y;
      push(Op::Keep, x, y);
    }
    if (down) {
      --y;
      push(Op::Add, x, y);
    } else {
      --x;
      push(Op::Remove, x, y);
    }
  }
  while (x > 0 && y > 0) {
    --x;
    --y;
    push(Op::Keep, x, y);
  }
  edits.insert(edits.end(), script.rbegin(), script.rend());
  return true;
}

// The edit script: the lines both versions begin and end with are kept. Between them, when the
// two have as many lines (what a replace within lines gives), the lines paired in order: equal
// ones kept, the others replaced. Otherwise the shortest script when Myers' search finds it
// within its rounds, or else the lines paired in order after all.
std::vector<Edit> EditScript(const std::vector<DiffLine>& a, const std::vector<DiffLine>& b) {
  std::vector<Edit> edits;
  size_t head = 0;
  while (head < a.size() && head < b.size() && a[head] == b[head]) {
    edits.push_back({Op::Keep, head, head});
    ++head;
  }
  size_t tail = 0;
  while (tail < a.size() - head && tail < b.size() - head &&
         a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
    ++tail;
  const size_t aTo = a.size() - tail, bTo = b.size() - tail;
  if (aTo == bTo || !Myers(a, static_cast<long>(head), static_cast<long>(aTo), b,
                           static_cast<long>(head), static_cast<long>(bTo), edits)) {
    size_t i = head, j = head;
    for (; i < aTo && j < bTo; ++i, ++j) {
      if (a[i] == b[j]) {
        edits.push_back({Op::Keep, i, j});
      } else {
        edits.push_back({Op::Remove, i, j});
        edits.push_back({Op::Add, i + 1, j});
      }
    }
    for (; i < aTo; ++i)
      edits.push_back({Op::Remove, i, j});
    for (; j < bTo; ++j)
      edits.push_back({Op::Add, i, j});
  }
  for (size_t t = 0; t < tail; ++t)
    edits.push_back({Op::Keep, aTo + t, bTo + t});
  return edits;
}

std::string Range(size_t start, size_t count) {
  // An empty range names the line before it, as diff -u does.
  const size_t first = count == 0 ? start : start + 1;
  return std::to_string(first) + (count == 1 ? "" : "," + std::to_string(count));
}

}  // namespace

std::string UnifiedDiff(const std::string& path, const std::vector<DiffLine>& before,
                        const std::vector<DiffLine>& after, size_t context) {
  const std::vector<Edit> edits = EditScript(before, after);
  std::string out;
  size_t i = 0;
  while (i < edits.size()) {
    if (edits[i].op == Op::Keep) {
      ++i;
      continue;
    }
    // A hunk: from `context` kept lines before this change to `context` after the last change
    // that lies within 2 * context kept lines of the one before it.
    const size_t begin = i >= context ? i - context : 0;
    size_t end = i;
    for (size_t j = i; j < edits.size();) {
      if (edits[j].op != Op::Keep) {
        end = ++j;
        continue;
      }
      size_t run = j;
      while (run < edits.size() && edits[run].op == Op::Keep)
        ++run;
      if (run == edits.size() || run - j > 2 * context) break;
      j = run;
    }
    end = std::min(edits.size(), end + context);
    size_t aStart = edits[begin].a, bStart = edits[begin].b, aCount = 0, bCount = 0;
    std::string body;
    for (size_t j = begin; j < end; ++j) {
      const Edit& e = edits[j];
      if (e.op == Op::Keep) {
        body += " " + before[e.a].text + "\n";
        ++aCount;
        ++bCount;
      } else if (e.op == Op::Remove) {
        body += "-" + before[e.a].text + "\n";
        ++aCount;
      } else {
        body += "+" + after[e.b].text + "\n";
        ++bCount;
      }
    }
    if (out.empty()) out = "--- " + path + "\n+++ " + path + "\n";
    out += "@@ -" + Range(aStart, aCount) + " +" + Range(bStart, bCount) + " @@\n" + body;
    i = end;
  }
  return out;
}

}  // namespace cli
