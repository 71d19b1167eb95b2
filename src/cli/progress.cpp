#include "cli/progress.h"

namespace cli {
namespace {

// Characters, not bytes: a code point starts at every byte that is not a continuation byte.
size_t Characters(std::string_view text) {
  size_t count = 0;
  for (const char c : text)
    count += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return count;
}

// The last `keep` characters of the text.
std::string_view Tail(std::string_view text, size_t keep) {
  size_t have = Characters(text);
  size_t at = 0;
  while (have > keep && at < text.size()) {
    ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80)
      ++at;
    --have;
  }
  return text.substr(at);
}

}  // namespace

ProgressLine::ProgressLine(Printer& printer, size_t projects, Now now)
    : printer_(printer), projects_(projects), now_(std::move(now)), start_(now_()) {}

ProgressLine::~ProgressLine() {
  Clear();
}

void ProgressLine::Project(const std::string& shown) {
  ++project_;
  current_ = shown;
  Show(true);
}

void ProgressLine::ComponentDone() {
  ++components_;
  Show(false);
}

void ProgressLine::Clear() {
  if (!visible_) return;
  printer_.Progress("");
  visible_ = false;
}

void ProgressLine::Show(bool force) {
  const Clock::time_point now = now_();
  if (now - start_ < kDelay) return;
  if (!force && visible_ && now - drawn_ < kRedraw) return;
  std::string line = "searching: " + std::to_string(project_ - (project_ > 0)) + " of " +
                     std::to_string(projects_) + " projects, " + std::to_string(components_) +
                     (components_ == 1 ? " component" : " components") + " done; ";
  const size_t used = Characters(line);
  if (used + Characters(current_) > kWidth) {
    line += "...";
    line += Tail(current_, kWidth > used + 3 ? kWidth - used - 3 : 0);
  } else {
    line += current_;
  }
  printer_.Progress(line);
  drawn_ = now;
  visible_ = true;
}

}  // namespace cli
