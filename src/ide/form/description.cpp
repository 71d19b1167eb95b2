#include "ide/form/description.h"

#include <charconv>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/text.h"

namespace ide::form {
namespace {

using automation::EqualsAsciiNoCase;
using platform::IsBlank;
using platform::TrimBlanks;

// VB6 accepts about 25 levels of nested controls, and property groups add a few levels below
// the deepest control. The bound is far above what it writes; it keeps every walk over the
// tree (and the tree's destruction) shallow however the file was made.
constexpr std::size_t kMaxNesting = 100;

[[noreturn]] void Invalid(std::string_view fileName, std::size_t line, std::string_view problem) {
  std::string text = "Invalid file format: ";
  text += fileName;
  text += ": line ";
  text += std::to_string(line + 1);
  text += ": ";
  text += problem;
  automation::RaiseMessage(automation::err::kInvalidFileFormat, std::move(text));
}

// The words of a line, split at blanks.
std::vector<std::string_view> Words(std::string_view line) {
  std::vector<std::string_view> words;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && IsBlank(line[i]))
      ++i;
    std::size_t start = i;
    while (i < line.size() && !IsBlank(line[i]))
      ++i;
    if (i > start) words.push_back(line.substr(start, i - start));
  }
  return words;
}

// `Begin` or `BeginProperty` as the line's keyword (not a property of that name: `Begin = 1`).
bool IsKeywordLine(const std::vector<std::string_view>& words, std::string_view keyword) {
  return !words.empty() && EqualsAsciiNoCase(words[0], keyword) &&
         (words.size() < 2 || words[1].front() != '=');
}

bool IsEndLine(std::string_view text, std::string_view keyword) {
  return EqualsAsciiNoCase(TrimBlanks(text), keyword);
}

std::size_t IndentOf(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i]))
    ++i;
  return i;
}

int CompareNames(std::string_view a, std::string_view b) {
  return automation::CompareNoCaseUnicode(a, b);
}

std::string_view ItemName(const DescriptionNode::Item& item) {
  if (item.property) return item.property->Name();
  if (item.node) return item.node->Name();
  return {};
}

bool IsPropertyLike(const DescriptionNode::Item& item) {
  return item.property || (item.node && item.node->IsGroup());
}

// Visits every item below `root` in file order, depth first, without recursion: `enter` sees
// each item (a group or a child object before its own items), `leave` each node after its items.
template <typename Enter, typename Leave>
void Walk(const DescriptionNode& root, Enter enter, Leave leave) {
  struct Open {
    const DescriptionNode* node;
    std::size_t next;
  };
  std::vector<Open> open{{&root, 0}};
  while (!open.empty()) {
    Open& top = open.back();
    if (top.next == top.node->Items().size()) {
      leave(*top.node);
      open.pop_back();
      continue;
    }
    const DescriptionNode::Item& item = top.node->Items()[top.next++];
    enter(item);
    if (item.node) open.push_back({item.node.get(), 0});
  }
}

void CollectLines(const DescriptionNode& root, std::vector<const SourceLine*>& out) {
  out.push_back(&root.BeginLine());
  Walk(
      root,
      [&](const DescriptionNode::Item& item) {
        if (item.property) {
          out.push_back(&item.property->Line());
        } else if (item.node) {
          out.push_back(&item.node->BeginLine());
        } else if (item.blank) {
          out.push_back(&*item.blank);
        }
      },
      [&](const DescriptionNode& node) { out.push_back(&node.EndLine()); });
}

void CollectObjects(const DescriptionNode& root, std::vector<DescriptionNode*>& out) {
  Walk(
      root,
      [&](const DescriptionNode::Item& item) {
        if (item.node && !item.node->IsGroup()) out.push_back(item.node.get());
      },
      [](const DescriptionNode&) {});
}

void CollectReferences(const DescriptionNode& root, std::vector<CompanionUse>& out) {
  Walk(
      root,
      [&](const DescriptionNode::Item& item) {
        if (item.property && item.property->Reference()) {
          out.push_back({item.property.get(), *item.property->Reference()});
        }
      },
      [](const DescriptionNode&) {});
}

}  // namespace

// ---- PropertyEntry

void PropertyEntry::Assign(SourceLine line) {
  line_ = std::move(line);
  const std::string_view text = line_.Text();
  const auto parts = SplitPropertyLine(text);
  // Callers only assign lines that split (parsed ones, or ones formatted from a name).
  const auto span = [&](std::string_view part) {
    if (part.empty()) return Span{};
    return Span{static_cast<uint32_t>(part.data() - text.data()),
                static_cast<uint32_t>(part.size())};
  };
  name_ = span(parts->name);
  value_ = span(parts->value);
  comment_ = parts->hasComment ? span(parts->comment) : Span{};
  hasComment_ = parts->hasComment;
  valueStart_ = static_cast<uint32_t>(text.size() - parts->valueText.size());
}

std::string PropertyEntry::ValueText() const {
  return std::string(line_.Text().substr(valueStart_));
}

void PropertyEntry::Rewrite(std::string_view valueText) {
  std::string text(line_.Text().substr(0, valueStart_));
  text += valueText;
  SourceLine line = SourceLine::New(text);
  Assign(std::move(line));
}

// ---- DescriptionNode

bool DescriptionNode::IsIntrinsic() const {
  return !isGroup_ && type_.size() > 3 &&
         EqualsAsciiNoCase(std::string_view(type_).substr(0, 3), "VB.");
}

int32_t DescriptionNode::Index() const {
  const PropertyEntry* index = FindProperty("Index");
  if (!index) return -1;
  int32_t value = -1;
  const std::string_view text = index->Value();
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? value : -1;
}

std::vector<PropertyEntry*> DescriptionNode::Properties() const {
  std::vector<PropertyEntry*> out;
  for (const auto& item : items_) {
    if (item.property) out.push_back(item.property.get());
  }
  return out;
}

std::vector<DescriptionNode*> DescriptionNode::Groups() const {
  std::vector<DescriptionNode*> out;
  for (const auto& item : items_) {
    if (item.node && item.node->IsGroup()) out.push_back(item.node.get());
  }
  return out;
}

std::vector<DescriptionNode*> DescriptionNode::Children() const {
  std::vector<DescriptionNode*> out;
  for (const auto& item : items_) {
    if (item.node && !item.node->IsGroup()) out.push_back(item.node.get());
  }
  return out;
}

PropertyEntry* DescriptionNode::FindProperty(std::string_view name) const {
  for (const auto& item : items_) {
    if (item.property && EqualsAsciiNoCase(item.property->Name(), name)) {
      return item.property.get();
    }
  }
  return nullptr;
}

DescriptionNode* DescriptionNode::FindGroup(std::string_view name) const {
  for (const auto& item : items_) {
    if (item.node && item.node->IsGroup() && EqualsAsciiNoCase(item.node->Name(), name)) {
      return item.node.get();
    }
  }
  return nullptr;
}

std::size_t DescriptionNode::ChildIndent() const {
  return IndentOf(begin_.Text()) + 3;
}

void DescriptionNode::MarkChanged() {
  if (dirty_) *dirty_ = true;
}

std::size_t DescriptionNode::InsertionPoint(std::string_view name, bool group) const {
  // Properties and groups come before the child objects; new ones go among them.
  std::size_t limit = 0;
  std::size_t afterLast = 0;
  for (; limit < items_.size(); ++limit) {
    const Item& item = items_[limit];
    if (item.node && !item.node->IsGroup()) break;
    if (IsPropertyLike(item)) afterLast = limit + 1;
  }
  std::size_t sortedEnd = 0;  // the items [0, sortedEnd) are in alphabetical order
  if (IsIntrinsic()) {
    sortedEnd = afterLast;
  } else if (!isGroup_ && !group && !type_.empty() && type_.front() != '{') {
    // Another library's control: extender properties, then its own from the first `_` one.
    for (std::size_t k = 0; k < afterLast; ++k) {
      if (items_[k].property && items_[k].property->Name().starts_with('_')) {
        for (std::size_t j = 0; j < k; ++j) {
          if (IsPropertyLike(items_[j]) && CompareNames(ItemName(items_[j]), name) > 0) return j;
        }
        return k;
      }
    }
    return afterLast;
  } else {
    // A designer's own order, a group's, or another library's object-valued property (written
    // among the control's own entries): after the stored ones.
    return afterLast;
  }
  for (std::size_t k = 0; k < sortedEnd; ++k) {
    if (IsPropertyLike(items_[k]) && CompareNames(ItemName(items_[k]), name) > 0) return k;
  }
  return afterLast;
}

PropertyEntry& DescriptionNode::SetProperty(std::string_view name, std::string_view valueText) {
  if (PropertyEntry* entry = FindProperty(name)) {
    if (entry->ValueText() == valueText) return *entry;
    // The same value with another comment (a localised description) keeps its line.
    const std::string probe = "x=" + std::string(valueText);
    const auto parts = SplitPropertyLine(probe);
    if (parts && parts->hasComment && entry->HasComment() && parts->value == entry->Value()) {
      return *entry;
    }
    entry->Rewrite(valueText);
    MarkChanged();
    return *entry;
  }
  Item item;
  item.property = std::make_unique<PropertyEntry>();
  item.property->Assign(SourceLine::New(FormatPropertyLine(ChildIndent(), name, valueText)));
  item.property->owner_ = this;
  PropertyEntry& entry = *item.property;
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(InsertionPoint(name, false)),
                std::move(item));
  MarkChanged();
  return entry;
}

bool DescriptionNode::RemoveProperty(std::string_view name) {
  for (auto it = items_.begin(); it != items_.end(); ++it) {
    if (it->property && EqualsAsciiNoCase(it->property->Name(), name)) {
      items_.erase(it);
      MarkChanged();
      return true;
    }
  }
  return false;
}

void DescriptionNode::Rename(std::string_view name) {
  if (name == name_) return;
  std::string text(begin_.Text());
  const std::size_t typeAt = text.find(type_);
  const std::size_t nameAt = typeAt == std::string::npos || name_.empty()
                                 ? std::string::npos
                                 : text.find(name_, typeAt + type_.size());
  if (nameAt != std::string::npos) {
    text.replace(nameAt, name_.size(), name);
  } else {
    text = std::string(IndentOf(text), ' ') + "Begin " + type_ + " " + std::string(name) + " ";
  }
  begin_.SetText(text);
  name_.assign(name);
  MarkChanged();
}

void DescriptionNode::SetIndex(int32_t index) {
  if (index < 0) {
    RemoveProperty("Index");
  } else {
    SetProperty("Index", FormatNumber(index));
  }
}

DescriptionNode& DescriptionNode::SetFont(const FontValues& font, std::string_view groupName) {
  DescriptionNode* group = FindGroup(groupName);
  if (!group) {
    auto node = std::make_unique<DescriptionNode>();
    node->isGroup_ = true;
    node->name_.assign(groupName);
    if (!IsIntrinsic()) node->classId_.assign(kStdFontClassId);
    const std::string indent(ChildIndent(), ' ');
    node->begin_ = SourceLine::New(indent + "BeginProperty " + node->name_ +
                                   (node->classId_.empty() ? "" : " " + node->classId_) + " ");
    node->end_ = SourceLine::New(indent + "EndProperty");
    node->parent_ = this;
    node->dirty_ = dirty_;
    group = node.get();
    const std::size_t at = InsertionPoint(groupName, true);
    Item item;
    item.node = std::move(node);
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
    MarkChanged();
  }
  group->SetProperty("Name", FormatString(font.name));
  group->SetProperty("Size", FormatSingle(static_cast<float>(font.size)));
  group->SetProperty("Charset", FormatNumber(font.charset));
  group->SetProperty("Weight", FormatNumber(font.weight));
  group->SetProperty("Underline", FormatBoolean(font.underline));
  group->SetProperty("Italic", FormatBoolean(font.italic));
  group->SetProperty("Strikethrough", FormatBoolean(font.strikethrough));
  return *group;
}

bool DescriptionNode::RemoveGroup(std::string_view name) {
  for (auto it = items_.begin(); it != items_.end(); ++it) {
    if (it->node && it->node->IsGroup() && EqualsAsciiNoCase(it->node->Name(), name)) {
      items_.erase(it);
      MarkChanged();
      return true;
    }
  }
  return false;
}

// ---- Description

std::unique_ptr<Description> Description::Parse(std::vector<SourceLine>& lines, std::size_t first,
                                                std::size_t begin, std::string_view fileName) {
  std::unique_ptr<Description> description(new Description());
  for (std::size_t i = first; i < begin; ++i)
    description->prelude_.push_back(std::move(lines[i]));
  if (begin >= lines.size() || !IsKeywordLine(Words(lines[begin].Text()), "Begin")) {
    Invalid(fileName, begin, "the form description does not start with a Begin line");
  }
  std::vector<DescriptionNode*> open;
  std::size_t i = begin;
  for (; i < lines.size(); ++i) {
    SourceLine& line = lines[i];
    const std::vector<std::string_view> words = Words(line.Text());
    const bool object = IsKeywordLine(words, "Begin");
    if (object || IsKeywordLine(words, "BeginProperty")) {
      auto node = std::make_unique<DescriptionNode>();
      node->isGroup_ = !object;
      if (object) {
        if (words.size() < 3) Invalid(fileName, i, "a Begin line without a type and a name");
        node->type_.assign(words[1]);
        node->name_.assign(words[2]);
      } else {
        if (words.size() < 2) Invalid(fileName, i, "a BeginProperty line without a name");
        node->name_.assign(words[1]);
        if (words.size() > 2) node->classId_.assign(words[2]);
      }
      node->begin_ = std::move(line);
      node->dirty_ = &description->dirty_;
      DescriptionNode* raw = node.get();
      if (open.size() == kMaxNesting) {
        Invalid(fileName, i,
                "objects and property groups nested more than " + std::to_string(kMaxNesting) +
                    " levels deep");
      }
      if (open.empty()) {
        description->root_ = std::move(node);
      } else {
        node->parent_ = open.back();
        DescriptionNode::Item item;
        item.node = std::move(node);
        open.back()->items_.push_back(std::move(item));
      }
      open.push_back(raw);
    } else if (IsEndLine(line.Text(), "End") || IsEndLine(line.Text(), "EndProperty")) {
      const bool closesObject = IsEndLine(line.Text(), "End");
      if (open.back()->isGroup_ == closesObject) {
        Invalid(fileName, i,
                closesObject ? "End closes a BeginProperty (EndProperty expected)"
                             : "EndProperty closes a Begin (End expected)");
      }
      open.back()->end_ = std::move(line);
      open.pop_back();
      if (open.empty()) {
        ++i;
        break;
      }
    } else if (TrimBlanks(line.Text()).empty()) {
      DescriptionNode::Item item;
      item.blank = std::make_unique<SourceLine>(std::move(line));
      open.back()->items_.push_back(std::move(item));
    } else if (!words.empty() && EqualsAsciiNoCase(words[0], "Attribute")) {
      Invalid(fileName, i, "the form description ends before its End line (an End is missing)");
    } else {
      if (!SplitPropertyLine(line.Text())) {
        Invalid(fileName, i, "a line of the form description that is not `Name = value`");
      }
      DescriptionNode::Item item;
      item.property = std::make_unique<PropertyEntry>();
      item.property->Assign(std::move(line));
      item.property->owner_ = open.back();
      open.back()->items_.push_back(std::move(item));
    }
  }
  if (!open.empty()) {
    Invalid(fileName, lines.size() - 1,
            "the form description ends before its End line (the file is cut short)");
  }
  description->next_ = i;
  return description;
}

std::vector<std::string_view> Description::ObjectLines() const {
  std::vector<std::string_view> out;
  for (const SourceLine& line : prelude_) {
    if (const auto parts = SplitPropertyLine(line.Text());
        parts && EqualsAsciiNoCase(parts->name, "Object")) {
      out.push_back(parts->valueText);
    }
  }
  return out;
}

std::vector<DescriptionNode*> Description::Controls() const {
  std::vector<DescriptionNode*> out;
  CollectObjects(*root_, out);
  return out;
}

DescriptionNode* Description::FindObject(std::string_view name, int32_t index) const {
  auto matches = [&](const DescriptionNode& node) {
    return automation::EqualsNoCaseUnicode(node.Name(), name) && node.Index() == index;
  };
  if (matches(*root_)) return root_.get();
  for (DescriptionNode* node : Controls()) {
    if (matches(*node)) return node;
  }
  return nullptr;
}

std::vector<CompanionUse> Description::CompanionReferences() const {
  std::vector<CompanionUse> out;
  CollectReferences(*root_, out);
  return out;
}

void Description::SetReferenceOffset(PropertyEntry& property, uint32_t offset) {
  if (!property.Reference() || property.Reference()->offset == offset) return;
  CompanionReference reference = *property.Reference();
  reference.offset = offset;
  std::string valueText = FormatCompanionReference(reference);
  if (property.HasComment()) {
    const std::string old = property.ValueText();
    valueText += old.substr(old.find(property.Value()) + property.Value().size());
  }
  property.Rewrite(valueText);
  dirty_ = true;
}

std::vector<const SourceLine*> Description::Lines() const {
  std::vector<const SourceLine*> out;
  for (const SourceLine& line : prelude_)
    out.push_back(&line);
  CollectLines(*root_, out);
  return out;
}

}  // namespace ide::form
