#pragma once
// Projects of a folder opened together in one IDE, as VB6 opens a project group. A search over
// many small projects would otherwise start an IDE for each, and the start of a process and of
// an IDE costs more than searching a small project. So, ahead of its turn, the run looks at the
// projects that follow (which of them may need the IDE at all: the prefilter's verdict), writes
// a group file (.vbg) naming those that do and that no running IDE has open, into a private
// temporary folder, and starts one IDE on it with the command of the registry's
// VisualBasic.Project association, as opening a .vbg does, waiting until the IDE registers under
// the group file's name: it has then opened every project it could, and its add-in has
// registered each one's dispatcher. Each project's own turn then finds the IDE
// registered and reaches it as it reaches any running IDE: nothing else of the run changes, and
// its results are those it gives without groups.
//
// A group's IDE is the run's: once the run is past every project of the group it joins the run's
// warm IDEs (kept within their count and budget, or ended).
//
// Groups are formed only where they can work: the driver's add-in is enabled in vbaddin.ini
// (the driver enables it when it first starts an IDE), and a project whose path is not plain
// ASCII keeps an IDE of its own, since a group file is read in the ANSI code page.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/warm_ides.h"

namespace cli {

class IdeGroups {
 public:
  // How many bytes of component files one group's IDE holds at most.
  static constexpr std::uintmax_t kGroupBytes = 32u << 20;

  // What the run knows of a project before its turn: nothing when it needs no IDE (none of its
  // files can match, or it cannot be opened), else the bytes of its component files.
  using Judge = std::function<std::optional<std::uintmax_t>(const std::filesystem::path&)>;

  explicit IdeGroups(WarmIdes& warm) : warm_(warm) {}

  // Before the turn of projects[index]: unless it has been judged already, judges it and the
  // projects after it, and starts one IDE holding those that need one, up to kGroupBytes. Fewer
  // than two make no group: a lone project's IDE is started by the driver as always. A group
  // that cannot be started leaves each project to start its own IDE.
  void Before(const std::vector<std::filesystem::path>& projects, size_t index, const Judge& judge);
  // The run is done with the project: a group all of whose projects are done joins the warm
  // IDEs.
  void Done(const std::filesystem::path& project);
  // The run is done: every group left joins the warm IDEs.
  void Finish();

  // False when $QX_NO_GROUPS is 1: each project gets an IDE of its own, as a reference run.
  static bool Enabled();

 private:
  struct Group {
    std::string first;              // the project the group's IDE is known by
    std::set<std::string> waiting;  // the projects whose turn has not ended
  };

  bool Start(const std::vector<std::filesystem::path>& members);
  // Hands the group's IDE to the warm IDEs.
  void Keep(const std::string& first);

  WarmIdes& warm_;
  size_t judged_ = 0;  // the run's projects before this one have been judged
  std::vector<Group> groups_;
};

}  // namespace cli
