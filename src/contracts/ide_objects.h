#pragma once
// The IDE's extensibility objects as the driver's component objects use them: typed views that
// call VBComponent and CodeModule by name, so that the driver needs nothing of how (or in which
// process) the IDE implements them. Line numbers start at 1.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace contracts {

using automation::ObjectRef;

class VBComponent {
 public:
  explicit VBComponent(ObjectRef object) : d_(std::move(object)) {}

  bool IsDirty() const { return d_.Get("IsDirty").ToBool(); }
  // The first of the component's file names (FileNames(1)).
  std::string FirstFileName() const { return d_.GetAt("FileNames", int16_t{1}).ToString(); }
  void SaveAs(const std::string& fileName) const { d_.Call("SaveAs", fileName); }
  bool HasOpenDesigner() const { return d_.Get("HasOpenDesigner").ToBool(); }
  ObjectRef DesignerWindow() const { return d_.Call("DesignerWindow").ToObject(); }
  std::string Name() const { return d_.Get("Name").ToString(); }
  void SetName(const std::string& name) const { d_.Put("Name", name); }
  ObjectRef CodeModule() const { return d_.Get("CodeModule").ToObject(); }
  // The designer's own object (Nothing for modules and classes).
  ObjectRef Designer() const { return d_.Get("Designer").ToObject(); }

 private:
  automation::Dispatch d_;
};

// The DHTML page designer's object (VBComponent.Designer of a DHTML page), seen through the
// designer's own interface: its third member is the full path of the file that holds the page's
// HTML, empty when the designer names none.
class DHTMLPageDesigner {
 public:
  explicit DHTMLPageDesigner(ObjectRef object) : d_(std::move(object), "IDHTMLPageDesigner") {}

  std::string PageFile() const { return d_.Get("PageFile").ToString(); }

 private:
  automation::Dispatch d_;
};

// The procedure kinds of ProcOfLine, ProcStartLine and ProcCountLines (vbext_ProcKind).
enum ProcKind : int32_t { kProcKindProc = 0, kProcKindLet = 1, kProcKindSet = 2, kProcKindGet = 3 };

class CodeModule {
 public:
  explicit CodeModule(ObjectRef object) : d_(std::move(object)) {}

  int32_t CountOfLines() const { return d_.Get("CountOfLines").ToLong(); }
  int32_t CountOfDeclarationLines() const { return d_.Get("CountOfDeclarationLines").ToLong(); }
  // The name of the procedure that holds the line; its kind goes into `kind`.
  std::string ProcOfLine(int32_t line, int32_t& kind) const;
  int32_t ProcStartLine(const std::string& name, int32_t kind) const {
    return d_.GetAt("ProcStartLine", name, kind).ToLong();
  }
  // The line of the procedure's heading (its first line when continued).
  int32_t ProcBodyLine(const std::string& name, int32_t kind) const {
    return d_.GetAt("ProcBodyLine", name, kind).ToLong();
  }
  int32_t ProcCountLines(const std::string& name, int32_t kind) const {
    return d_.GetAt("ProcCountLines", name, kind).ToLong();
  }
  // The lines joined by CR LF.
  std::string Lines(int32_t start, int32_t count) const {
    return d_.GetAt("Lines", start, count).ToString();
  }
  void DeleteLines(int32_t start, int32_t count) const { d_.Call("DeleteLines", start, count); }
  void InsertLines(int32_t line, const std::string& text) const {
    d_.Call("InsertLines", line, text);
  }

 private:
  automation::Dispatch d_;
};

// Closes a window of the IDE (a designer's).
inline void CloseWindow(const ObjectRef& window) {
  automation::Dispatch(window).Call("Close");
}

}  // namespace contracts
