#include "cli/unified_diff.h"

#include <git2.h>

#include "automation/error.h"
#include "cli/file_matches.h"

namespace cli {
namespace {

std::string Joined(const std::vector<DiffLine>& lines) {
  std::string text;
  for (const DiffLine& line : lines)
    text += line.text + line.end;
  return text;
}

int AddLine(const git_diff_delta*, const git_diff_hunk*, const git_diff_line* line, void* out) {
  std::string& diff = *static_cast<std::string*>(out);
  switch (line->origin) {
    case GIT_DIFF_LINE_CONTEXT:
    case GIT_DIFF_LINE_ADDITION:
    case GIT_DIFF_LINE_DELETION:
      diff += line->origin;
      break;
    default:  // the note after a last line without a line end brings its own text
      break;
  }
  diff.append(line->content, line->content_len);
  return 0;
}

int AddHunk(const git_diff_delta*, const git_diff_hunk* hunk, void* out) {
  static_cast<std::string*>(out)->append(hunk->header, hunk->header_len);
  return 0;
}

std::vector<DiffLine> DiffLines(const std::string& bytes) {
  std::vector<DiffLine> out;
  const FileLines lines(bytes);
  for (const FileLine& line : lines.all())
    out.push_back({std::string(line.text), std::string(line.end)});
  return out;
}

bool IsBinary(const std::optional<std::string>& bytes) {
  return bytes && std::string_view(*bytes).substr(0, 8000).find('\0') != std::string::npos;
}

}  // namespace

std::string DiffSide(char side, const std::string& path) {
  const size_t start = path.find_first_not_of('/');
  return std::string(1, side) + "/" + path.substr(start == std::string::npos ? path.size() : start);
}

std::string UnifiedDiff(const std::string& path, const std::vector<DiffLine>& before,
                        const std::vector<DiffLine>& after) {
  if (before == after) return {};
  // Once per process; the library keeps no other state between calls.
  static const int initialized = git_libgit2_init();
  (void)initialized;
  git_diff_options options;
  git_diff_options_init(&options, GIT_DIFF_OPTIONS_VERSION);
  options.flags |= GIT_DIFF_INDENT_HEURISTIC | GIT_DIFF_FORCE_TEXT;
  options.context_lines = 3;
  const std::string a = Joined(before), b = Joined(after);
  std::string hunks;
  if (git_diff_buffers(a.data(), a.size(), path.c_str(), b.data(), b.size(), path.c_str(), &options,
                       nullptr, nullptr, AddHunk, AddLine, &hunks) != 0) {
    const git_error* error = git_error_last();
    automation::Raise(automation::err::kInternal,
                      std::string("diff of ") + path + ": " + (error ? error->message : "failed"));
  }
  if (hunks.empty()) return {};
  return "--- " + DiffSide('a', path) + "\n+++ " + DiffSide('b', path) + "\n" + hunks;
}

std::string DiffOfBytes(const std::string& path, const std::optional<std::string>& before,
                        const std::optional<std::string>& after) {
  if (before == after) return {};
  if (!IsBinary(before) && !IsBinary(after)) {
    return UnifiedDiff(path, DiffLines(before.value_or("")), DiffLines(after.value_or("")));
  }
  return "Binary files " + (before ? DiffSide('a', path) : "/dev/null") + " and " +
         (after ? DiffSide('b', path) : "/dev/null") + " differ\n";
}

}  // namespace cli
