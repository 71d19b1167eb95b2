#pragma once
// The form description of a .frm, .ctl, .pag, .dob or .dsr file as a tree: the lines from
// `VERSION` through the `End` of the root object. Objects (`Begin <Type> <Name> `) hold their
// property lines, their property groups (`BeginProperty <Name> [{CLSID}] `, nested at will) and
// their child objects, all in stored order; menus are children like any other.
//
// The tree owns the lines. Each one keeps the bytes it was read with until an edit rewrites it,
// so an unchanged description saves byte for byte and an edit changes only its own lines.
// Where a new property goes (VB6's order):
//   - objects of VB's own library (`VB.*`): case-insensitive alphabetical among the object's
//     properties and groups, a group sorting under its name (`Font` under F);
//   - objects of other libraries: alphabetical among the extender properties that come first,
//     that is before the first `_` property (`_ExtentX`, `_Version`), which starts the control's
//     own entries in the order it wrote them; at the end of the properties when there is none;
//     a new group (a font) goes after the stored entries, since the control writes those among
//     its own;
//   - designers (`Begin {CLSID}`) and property groups: after the stored properties (their own
//     order is not alphabetical).
// Values are written as given: the caller formats them with property_line.h. An enumeration
// whose comment was written in another language (a Chinese IDE's `3  '窗口缺省`) keeps its line
// while its value stays the same; a new value is written with the comment the caller gives.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ide/form/property_line.h"
#include "ide/text/source_line.h"

namespace ide::form {

class DescriptionNode;

// One `Name = value` line. A form of many controls has tens of thousands of these, so an entry
// keeps its line and where the parts are in it, nothing more: every part is a view of the line.
class PropertyEntry {
 public:
  std::string_view Name() const { return Part(name_); }
  // The value as stored, without its comment: `"Hello"`, `-1`, `&H8000000F&`, `"F.frx":0000`.
  std::string_view Value() const { return Part(value_); }
  // The comment after the value (`True`, `Center`, possibly localised); empty when none.
  std::string_view Comment() const { return Part(comment_); }
  bool HasComment() const { return hasComment_; }
  // Everything after `=   `: the value and its comment as written.
  std::string ValueText() const;
  // The companion reference the value is, if it is one.
  std::optional<CompanionReference> Reference() const { return ParseCompanionReference(Value()); }
  const SourceLine& Line() const { return line_; }
  DescriptionNode* Owner() const { return owner_; }

 private:
  friend class DescriptionNode;
  friend class Description;
  // Where a part is in the line's text.
  struct Span {
    uint32_t start = 0;
    uint32_t length = 0;
  };
  std::string_view Part(Span span) const { return line_.Text().substr(span.start, span.length); }
  void Assign(SourceLine line);              // takes the line and splits it
  void Rewrite(std::string_view valueText);  // keeps the name part of the line as written

  SourceLine line_;
  DescriptionNode* owner_ = nullptr;
  Span name_;
  Span value_;
  Span comment_;
  uint32_t valueStart_ = 0;  // where the value text starts
  bool hasComment_ = false;
};

// The seven lines of a font group, in the order VB6 writes them.
struct FontValues {
  std::string name = "MS Sans Serif";
  double size = 8.25;
  int32_t charset = 0;
  int32_t weight = 400;
  bool underline = false;
  bool italic = false;
  bool strikethrough = false;
};

// The StdFont class identifier that font groups of other libraries' controls carry.
inline constexpr std::string_view kStdFontClassId = "{0BE35203-8F91-11CE-9DE3-00AA004BB851}";

// An object (`Begin ... End`) or a property group (`BeginProperty ... EndProperty`).
class DescriptionNode {
 public:
  struct Item {
    std::unique_ptr<PropertyEntry> property;
    std::unique_ptr<DescriptionNode> node;  // a group or a child object
    std::unique_ptr<SourceLine> blank;      // an empty line, kept where it was
  };

  bool IsGroup() const { return isGroup_; }
  // Of an object: its type as written, `VB.Form`, `MSComctlLib.ListView`, `{CLSID}`.
  const std::string& Type() const { return type_; }
  // Of an object: its name; of a group: the property's name (`Font`, `ColumnHeader(1)`).
  const std::string& Name() const { return name_; }
  // Of a group: the class identifier after its name (with braces), empty when none.
  const std::string& ClassId() const { return classId_; }
  // Of VB's own library (`VB.*`): properties go in alphabetical order.
  bool IsIntrinsic() const;
  // The `Index` property of a control in an array; -1 when it has none.
  int32_t Index() const;
  DescriptionNode* Parent() const { return parent_; }
  const SourceLine& BeginLine() const { return begin_; }
  const SourceLine& EndLine() const { return end_; }

  const std::vector<Item>& Items() const { return items_; }
  std::vector<PropertyEntry*> Properties() const;
  std::vector<DescriptionNode*> Groups() const;
  std::vector<DescriptionNode*> Children() const;            // objects only, stored order
  PropertyEntry* FindProperty(std::string_view name) const;  // case-insensitive
  DescriptionNode* FindGroup(std::string_view name) const;

  // Edits. Each rewrites only its own lines.
  // Sets the value text (as property_line formats it): rewrites the line when the value
  // differs, adds it where VB6 puts it when the property is absent. Returns the entry.
  PropertyEntry& SetProperty(std::string_view name, std::string_view valueText);
  // Removes the line (a property set to its default); false when there was none.
  bool RemoveProperty(std::string_view name);
  // The `Begin` line's name; the type, the indent and the trailing blank stay.
  void Rename(std::string_view name);
  // Sets or (with -1) removes the `Index` property.
  void SetIndex(int32_t index);
  // Writes the font group: the seven lines in VB6's order, only the ones that differ
  // rewritten. A new group has the StdFont class identifier on objects of other libraries.
  DescriptionNode& SetFont(const FontValues& font, std::string_view groupName = "Font");
  // Removes a group with its lines (a font equal to the container's); false when none.
  bool RemoveGroup(std::string_view name);

 private:
  friend class Description;
  std::size_t ChildIndent() const;
  std::size_t InsertionPoint(std::string_view name, bool group) const;
  void MarkChanged();

  bool isGroup_ = false;
  std::string type_;
  std::string name_;
  std::string classId_;
  SourceLine begin_;
  SourceLine end_;
  std::vector<Item> items_;
  DescriptionNode* parent_ = nullptr;
  bool* dirty_ = nullptr;  // the description's flag
};

// A property whose value is a companion reference, in description order.
struct CompanionUse {
  PropertyEntry* property;
  CompanionReference reference;
};

class Description {
 public:
  // Takes lines [first, the root object's `End`] out of `lines`: `first` is the `VERSION`
  // line, `begin` the root's `Begin` line; the lines between (the `Object =` lines) are kept
  // as they are. A description that is malformed (a `Begin` without a name, a property line
  // without `=`, an `End` where `EndProperty` belongs, a missing `End`, objects and groups
  // nested more than 100 levels deep) raises 321 "Invalid file format" naming the file and the
  // line.
  static std::unique_ptr<Description> Parse(std::vector<SourceLine>& lines, std::size_t first,
                                            std::size_t begin, std::string_view fileName);
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;

  // The index (into the lines given to Parse) of the line after the root's `End`.
  std::size_t Next() const { return next_; }

  DescriptionNode& Root() { return *root_; }
  const DescriptionNode& Root() const { return *root_; }
  // The `Object = "{GUID}#2.0#0"; "MSCOMCTL.OCX"` lines (and the VERSION line) as read.
  const std::vector<SourceLine>& Prelude() const { return prelude_; }
  // The text after `Object = ` of each `Object =` line, in stored order:
  // `"{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0"; "MSCOMCTL.OCX"`.
  std::vector<std::string_view> ObjectLines() const;

  // Every object below the root, depth first in stored order (menus after the other
  // children of their container, as stored).
  std::vector<DescriptionNode*> Controls() const;
  // The object named so (case-insensitive) with that Index (-1: not in an array), the root
  // included.
  DescriptionNode* FindObject(std::string_view name, int32_t index = -1) const;

  std::vector<CompanionUse> CompanionReferences() const;
  // Writes a new offset into a reference (after the companion was rebuilt); the file name and
  // the `$` stay as written. The line is not rewritten when the offset is the same.
  void SetReferenceOffset(PropertyEntry& property, uint32_t offset);

  // Every line in file order.
  std::vector<const SourceLine*> Lines() const;

  bool IsDirty() const { return dirty_; }
  void ClearDirty() { dirty_ = false; }

 private:
  Description() = default;

  std::vector<SourceLine> prelude_;
  std::unique_ptr<DescriptionNode> root_;
  std::size_t next_ = 0;
  bool dirty_ = false;
};

}  // namespace ide::form
