#pragma once
// DataFormat: what a bound control's DataFormat property gives its live object, a data-format
// object (as the StdFormat library's StdDataFormat shows it) holding the settings of the
// control's `BeginProperty DataFormat` group: Type (the format type; 0, General, when the
// control has none), Format (the format text), SubFormatType, FirstDayOfWeek, FirstWeekOfYear,
// LCID and HaveTrueFalseNull. It is a snapshot taken when read, and read only: a format is
// changed in the designer's dialog, not through the live control.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace ide::form {
class DescriptionNode;
}

namespace ide::vbide {

class DataFormat : public automation::Object {
 public:
  explicit DataFormat(const form::DescriptionNode& control);

  const automation::ClassInfo& Class() const override;

  int32_t Type() const { return type_; }
  std::string Format() const { return format_; }
  int32_t SubFormatType() const { return subFormatType_; }
  int32_t FirstDayOfWeek() const { return firstDayOfWeek_; }
  int32_t FirstWeekOfYear() const { return firstWeekOfYear_; }
  int32_t LCID() const { return lcid_; }
  int32_t HaveTrueFalseNull() const { return haveTrueFalseNull_; }

 private:
  int32_t type_ = 0;
  std::string format_;
  int32_t subFormatType_ = 0;
  int32_t firstDayOfWeek_ = 0;
  int32_t firstWeekOfYear_ = 0;
  int32_t lcid_ = 0;
  int32_t haveTrueFalseNull_ = 0;
};

}  // namespace ide::vbide
