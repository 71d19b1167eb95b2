#pragma once
// The live control behind VBControl.ControlObject: the control as code sees it, answering by
// name over the same model as the control's Properties collection.
//
// A control of VB's own library answers every property its class has (form/property_catalog.h
// FindMember), those the Properties window shows and those only the live control has: the
// font's FontBold, FontItalic, FontName, FontSize, FontStrikethru and FontUnderline read and
// write the control's font (its container's while it has none of its own); a file list box's
// Path and its (empty) List. Any other name fails with 438 "Object doesn't support this
// property or method". Font gives the font object, Picture-like properties Nothing, DataFormat
// a data-format object of the control's DataFormat settings (data_format.h). Name and Index
// are those of the control's Properties collection (Index -1 outside arrays), and writing them
// keeps control arrays consistent as VBControl does. A read-only property refuses a write with
// 383, as the file system controls' List does.
//
// List controls (ComboBox, ListBox) also have ListCount, List(i) read and write, ItemData(i)
// read and write, Clear, AddItem(Item[, Index]) and RemoveItem(Index) (zero-based; 5 outside
// the list); their items and item data (in step with them) live in the companion. The file
// system controls (DirListBox, DriveListBox, FileListBox) have ListCount and List(i) only: at
// design time they list nothing, and they have no Clear, AddItem or RemoveItem.
//
// A control of another library answers the properties its file stores, by name (strings as
// text, numbers as numbers, other values as written), and the extender's (Tag, Visible, Left,
// ...; form/property_catalog.h ExtenderClass) typed as VB's own controls have them, and takes
// writes of both; any other member fails with 438.

#include <memory>
#include <string_view>

#include "automation/object.h"

namespace ide::form {
struct ClassInfo;
}

namespace ide::vbide {

class VBControl;

class LiveControl : public automation::Object {
 public:
  // known: the control's class in the catalog; null for a control of another library.
  LiveControl(std::shared_ptr<VBControl> control, const form::ClassInfo* known);

  const automation::ClassInfo& Class() const override;
  automation::Variant Invoke(std::string_view interfaceName, std::string_view memberName,
                             automation::MemberKind kind, automation::Args& args) override;

  VBControl& Control() const { return *control_; }
  void TearDown() { control_.reset(); }

 private:
  std::shared_ptr<VBControl> control_;
  const form::ClassInfo* known_;
};

}  // namespace ide::vbide
