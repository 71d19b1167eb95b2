#pragma once
// Which projects a search covers and which files their components live in. A PATH of qx search
// is a project file (.vbp), a project group (.vbg, whose Project= and StartupProject= lines name
// projects relative to the group) or a folder, searched for every .vbp below it. Component files
// come from the project file's entries, resolved against the project's folder, so that a file
// that several projects of one run share is searched once.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "automation/error.h"

namespace cli {

struct ProjectDiscovery {
  std::vector<std::filesystem::path> projects;  // absolute, each once, in the order found
  std::vector<automation::Error> errors;        // paths that could not be used
};

// The projects of the paths; none means the current folder.
ProjectDiscovery FindProjects(const std::vector<std::string>& paths);

struct ComponentFile {
  std::string collection;  // "Modules"
  std::string name;        // from the entry, else the file's Attribute VB_Name line
  std::filesystem::path file;
  bool absolute = false;  // the entry names the file by an absolute path
  size_t line = 0;        // the project file's line that names it
};

// Every component entry of the project file, in its order, its path decoded in the current code
// page (the project's: take it first). Raises when the project file cannot be read.
std::vector<ComponentFile> ReadComponentFiles(const std::filesystem::path& projectFile);

// A file that goes with a component file.
struct CompanionFile {
  std::filesystem::path file;
  bool absolute = false;  // named by an absolute path (a page's SourceFile)
};

// The files that go with a component file, each once: those beside it of the same name with
// another extension, letter case not mattering as on Windows (FORM1.FRX goes with Form1.frm),
// and the file that a DHTML page designer names as its SourceFile (relative to the designer's
// folder, or absolute), which holds the page's HTML. Only files that exist; none for a module
// or a class, which have no description to refer to any.
std::vector<CompanionFile> CompanionFiles(const std::filesystem::path& componentFile);

// A path written in a project or group file (Windows form, relative or absolute), relative to the
// folder of that file: the Linux path of the file, found whatever its letter case.
std::filesystem::path ResolveProjectPath(const std::filesystem::path& folder,
                                         std::string_view written);

// One spelling of a file for comparing: absolute, with "." and ".." resolved, and through
// symbolic links when the file exists.
std::string FileKey(const std::filesystem::path& file);

// The path as qx shows it: relative to the current folder when the file is below it, else
// absolute.
std::string ShowPath(const std::filesystem::path& file);

}  // namespace cli
