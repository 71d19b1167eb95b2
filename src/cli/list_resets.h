#pragma once
// What a replacement resets that the user did not name. Replacing text in a list box's or combo
// box's items rewrites the list as VB6 does (Clear, then AddItem for each item), which drops the
// list's ItemData: a run says so for each such place.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace ide {
class Project;
}

namespace cli {

// A project's components as the IDE reads them, opened on first use: the state before a run
// writes anything.
class ListResets {
 public:
  explicit ListResets(std::filesystem::path projectFile);
  ~ListResets();
  ListResets(const ListResets&) = delete;
  ListResets& operator=(const ListResets&) = delete;

  // The ItemData values that the control ("lstItems", "lstItems(2)") of the component keeps;
  // 0 when it keeps none, or when the component or control cannot be read.
  size_t ItemDataValues(const std::string& component, const std::string& control);

 private:
  std::filesystem::path projectFile_;
  std::unique_ptr<ide::Project> project_;
};

}  // namespace cli
