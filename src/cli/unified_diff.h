#pragma once
// A unified diff of two versions of a file's lines, as git prints it, by git's own algorithm
// (libgit2's xdiff, with git's default indent heuristic): "--- a/path" and "+++ b/path", then
// hunks "@@ -a,b +c,d @@" with three lines of context. Each line is printed with its own line
// end, so a changed line end shows and the diff applies to the file as it is (git apply,
// patch -p1); a last line without one is followed by "\ No newline at end of file".

#include <optional>
#include <string>
#include <vector>

namespace cli {

struct DiffLine {
  std::string text;  // without its line end
  std::string end;   // "\r\n", "\n", "\r" or "" for a last line without one
  bool operator==(const DiffLine&) const = default;
};

// How a diff names a file on its "a/" and "b/" sides: the path as shown, without the leading "/"
// of an absolute one ("a/tmp/x.bas", as git prints a file outside the work tree), so that
// patch -p1 finds it from the root folder.
std::string DiffSide(char side, const std::string& path);

// Empty when the two are equal.
std::string UnifiedDiff(const std::string& path, const std::vector<DiffLine>& before,
                        const std::vector<DiffLine>& after);

// The diff of two versions of a file's bytes (nullopt: the file is not there): a unified diff of
// its lines, or, when either holds a NUL among its first 8000 bytes (as diff decides), "Binary
// files a/PATH and b/PATH differ". Empty when the two are equal.
std::string DiffOfBytes(const std::string& path, const std::optional<std::string>& before,
                        const std::optional<std::string>& after);

}  // namespace cli
