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

// Myers' greedy shortest edit script, keeping each round's furthest points to walk back.
std::vector<Edit> EditScript(const std::vector<DiffLine>& a, const std::vector<DiffLine>& b) {
  const long n = static_cast<long>(a.size()), m = static_cast<long>(b.size());
  const long max = n + m, offset = max + 1;
  std::vector<long> v(2 * max + 3, 0);
  std::vector<std::vector<long>> trace;
  long found = -1;
  for (long d = 0; d <= max && found < 0; ++d) {
    trace.push_back(v);
    for (long k = -d; k <= d; k += 2) {
      long x = (k == -d || (k != d && v[k - 1 + offset] < v[k + 1 + offset]))
                   ? v[k + 1 + offset]
                   : v[k - 1 + offset] + 1;
      long y = x - k;
      while (x < n && y < m && a[x] == b[y]) {
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
  std::vector<Edit> edits;
  long x = n, y = m;
  for (long d = found; d > 0; --d) {
    const std::vector<long>& prev = trace[d];
    const long k = x - y;
    const bool down = k == -d || (k != d && prev[k - 1 + offset] < prev[k + 1 + offset]);
    const long prevK = down ? k + 1 : k - 1;
    const long prevX = prev[prevK + offset], prevY = prevX - prevK;
    while (x > prevX && y > prevY) {
      --x;
      --y;
      edits.push_back({Op::Keep, static_cast<size_t>(x), static_cast<size_t>(y)});
    }
    if (down) {
      --y;
      edits.push_back({Op::Add, static_cast<size_t>(x), static_cast<size_t>(y)});
    } else {
      --x;
      edits.push_back({Op::Remove, static_cast<size_t>(x), static_cast<size_t>(y)});
    }
  }
  while (x > 0 && y > 0) {
    --x;
    --y;
    edits.push_back({Op::Keep, static_cast<size_t>(x), static_cast<size_t>(y)});
  }
  std::reverse(edits.begin(), edits.end());
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
