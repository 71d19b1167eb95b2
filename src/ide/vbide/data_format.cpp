#include "ide/vbide/data_format.h"

#include <charconv>

#include "ide/form/description.h"
#include "ide/form/property_line.h"

namespace ide::vbide {
namespace {

int32_t NumberIn(const form::DescriptionNode& group, std::string_view name) {
  const form::PropertyEntry* entry = group.FindProperty(name);
  if (!entry) return 0;
  int32_t value = 0;
  const std::string_view text = entry->Value();
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace

DataFormat::DataFormat(const form::DescriptionNode& control) {
  const form::DescriptionNode* group = control.FindGroup("DataFormat");
  if (!group) return;
  type_ = NumberIn(*group, "Type");
  if (const form::PropertyEntry* format = group->FindProperty("Format")) {
    format_ = form::UnquoteString(format->Value()).value_or(std::string(format->Value()));
  }
  subFormatType_ = NumberIn(*group, "SubFormatType");
  firstDayOfWeek_ = NumberIn(*group, "FirstDayOfWeek");
  firstWeekOfYear_ = NumberIn(*group, "FirstWeekOfYear");
  lcid_ = NumberIn(*group, "LCID");
  haveTrueFalseNull_ = NumberIn(*group, "HaveTrueFalseNull");
}

const automation::ClassInfo& DataFormat::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<DataFormat>("StdDataFormat")
          .Get("Type", &DataFormat::Type)
          .Get("Format", &DataFormat::Format)
          .Get("SubFormatType", &DataFormat::SubFormatType)
          .Get("FirstDayOfWeek", &DataFormat::FirstDayOfWeek)
          .Get("FirstWeekOfYear", &DataFormat::FirstWeekOfYear)
          .Get("LCID", &DataFormat::LCID)
          .Get("HaveTrueFalseNull", &DataFormat::HaveTrueFalseNull)
          .Build();
  return info;
}

}  // namespace ide::vbide
