#pragma once
// The file that holds a DHTML page designer's page, as the designer names it to whoever edits
// the page: its SourceFile (a path relative to the .dsr's folder, or absolute) when one is set;
// otherwise a file of the IDE's own that holds the page kept inside the designer (the record
// its HTMLDocument property points at in the .dsx).
//
// The IDE's own file lives in the project's page folder (Project::PageFolder), never beside the
// user's files, and follows the record both ways: it is written from the record when the
// designer is asked for it and the record changed since; a change made to the file is taken
// into the record (through the component's companion store) when the component is looked up or
// saved, and saved at once unless the component holds changes of its own. Only a change is
// taken in: an unchanged file leaves the .dsx untouched.

#include <filesystem>
#include <string>

namespace ide {

class Component;

class DesignerPage {
 public:
  explicit DesignerPage(Component& component) : component_(component) {}
  // Takes a change still in the IDE's file into the .dsx, and removes the file once nothing is
  // left in it that the .dsx lacks; a change that cannot be taken in keeps the file.
  ~DesignerPage();
  DesignerPage(const DesignerPage&) = delete;
  DesignerPage& operator=(const DesignerPage&) = delete;

  // The full path of the page's file; empty when the component is not a DHTML page or keeps
  // no page (no SourceFile and no HTMLDocument record).
  std::string Path();
  // Takes a change made to the IDE's own file into the .dsx. A page without an HTMLDocument
  // record cannot take in a page that is not empty: 5, saying so, and the file stays as it is.
  void TakeChanges();

 private:
  // The page as the .dsx holds it now.
  std::string RecordText();

  Component& component_;
  std::filesystem::path file_;  // the IDE's own file, once written
  std::string written_;         // what the file held when last written or taken in
};

}  // namespace ide
