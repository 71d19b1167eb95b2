#pragma once
// The progress line of a long run: how many projects and components are done and which project
// is being searched, on standard error, once the run has taken longer than a second. The printer
// decides whether it is shown at all (only to a terminal, never among JSON lines) and clears it
// before anything else is printed; this piece decides when and what. The clock is a parameter,
// so that tests can move time.

#include <chrono>
#include <functional>
#include <string>

#include "cli/printer.h"

namespace cli {

class ProgressLine {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  // How long a run goes without a progress line, and how often the line is redrawn at most.
  static constexpr std::chrono::milliseconds kDelay{1000};
  static constexpr std::chrono::milliseconds kRedraw{100};
  // The longest line, in characters: wider than the terminal, it would wrap, and clearing it
  // would leave its first part behind.
  static constexpr size_t kWidth = 79;

  ProgressLine(Printer& printer, size_t projects, Now now = Clock::now);
  ~ProgressLine();  // clears the line
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // A project begins (shown as given); its components are counted as they are done.
  void Project(const std::string& shown);
  void ComponentDone();
  // Clears the line; it comes back at the next step.
  void Clear();

 private:
  void Show(bool force);

  Printer& printer_;
  const size_t projects_;
  const Now now_;
  const Clock::time_point start_;
  Clock::time_point drawn_{};
  bool visible_ = false;
  size_t project_ = 0;  // 1-based: the project being searched
  size_t components_ = 0;
  std::string current_;
};

}  // namespace cli
