#include "cli/review.h"

#include "cli/unified_diff.h"

namespace cli {
namespace {

constexpr const char* kHelp =
    "y - replace here\n"
    "n - leave this place as it is\n"
    "a - replace here and at every later place of this file\n"
    "d - leave this place and every later place of this file\n"
    "q - leave this place and every place left; write what was accepted\n"
    "? - print this help\n";

// The diff of the place's text without the "---" and "+++" lines: its hunks. The text's lines are
// joined by CR LF; the last one is ended too, as it is in the file.
std::string Hunks(const std::string& path, const std::string& before, const std::string& after) {
  const std::string diff = DiffOfBytes(path, before + "\r\n", after + "\r\n");
  size_t at = 0;
  for (int header = 0; header < 2; ++header) {
    const size_t end = diff.find('\n', at);
    if (end == std::string::npos) return diff;
    at = end + 1;
  }
  return diff.substr(at);
}

}  // namespace

bool Review::Accept(const std::string& path, const std::string& where, const std::string& before,
                    const std::string& after) {
  if (path != file_) {
    file_ = path;
    rest_ = Rest::kAsk;
  }
  if (quit_ || rest_ == Rest::kNone) return false;
  if (rest_ == Rest::kAll) return true;
  out_ << path << ": " << where << "\n" << Hunks(path, before, after);
  for (;;) {
    out_ << "Replace here [y,n,a,d,q,?]? " << std::flush;
    std::string answer;
    if (!std::getline(in_, answer)) {
      out_ << "\n";
      quit_ = true;
      return false;
    }
    switch (answer.empty() ? ' ' : answer[0]) {
      case 'y':
        return true;
      case 'n':
        return false;
      case 'a':
        rest_ = Rest::kAll;
        return true;
      case 'd':
        rest_ = Rest::kNone;
        return false;
      case 'q':
        quit_ = true;
        return false;
      default:
        out_ << kHelp;
    }
  }
}

}  // namespace cli
