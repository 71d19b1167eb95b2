#pragma once
// A unified diff of two versions of a file's lines, as diff -u and git print it: "--- path" and
// "+++ path", then hunks "@@ -a,b +c,d @@" with three lines of context. Lines are compared with
// their line ends, so a changed line end shows; the printed lines end with "\n".

#include <string>
#include <vector>

namespace cli {

struct DiffLine {
  std::string text;  // without its line end
  std::string end;   // compared, not printed
  bool operator==(const DiffLine&) const = default;
};

// Empty when the two are equal.
std::string UnifiedDiff(const std::string& path, const std::vector<DiffLine>& before,
                        const std::vector<DiffLine>& after, size_t context = 3);

}  // namespace cli
