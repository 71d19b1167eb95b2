#pragma once
// The control types (ControlTypeConstants): the 21 intrinsic controls of VB6, told apart by the
// IDE's class identifier of a control, and every other control (of another library, or a user
// control placed on the component) as a custom control.

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace controls {

enum ControlType : int32_t {
  kCheckBox = 0,
  kComboBox,
  kCommandButton,
  kData,
  kDirListBox,
  kDriveListBox,
  kFileListBox,
  kFrame,
  kHScrollBar,
  kImage,
  kLabel,
  kLine,
  kListBox,
  kMenu,
  kOLE,
  kOptionButton,
  kPictureBox,
  kShape,
  kTextBox,
  kTimer,
  kVScrollBar,
  kCustomControl,  // 21
};

struct ControlTypeEntry {
  std::string_view member;  // "vbCheckBox"
  std::string_view progId;  // "vb.checkbox", lower case; empty for the custom control
};

// Every type in value order, the custom control last.
const std::array<ControlTypeEntry, 22>& ControlTypeTable();

// The type of a control of that class identifier (any letter case): the first intrinsic type
// whose identifier it is, else kCustomControl.
ControlType ControlTypeOf(std::string_view progId);

// A set of control types, one bit per type.
using TypeSet = uint32_t;
constexpr TypeSet TypesOf(std::initializer_list<ControlType> types) {
  TypeSet set = 0;
  for (const ControlType type : types)
    set |= TypeSet{1} << type;
  return set;
}
inline constexpr TypeSet kIntrinsic = (TypeSet{1} << kCustomControl) - 1;
inline constexpr TypeSet kEveryType = kIntrinsic | TypesOf({kCustomControl});
// Every intrinsic type but those named (never the custom control).
constexpr TypeSet IntrinsicExcept(std::initializer_list<ControlType> types) {
  return kIntrinsic & ~TypesOf(types);
}
constexpr bool Contains(TypeSet set, ControlType type) {
  return (set >> type & 1) != 0;
}

}  // namespace controls
