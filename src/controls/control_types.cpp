#include "controls/control_types.h"

#include <string>

#include "automation/casefold.h"

namespace controls {

const std::array<ControlTypeEntry, 22>& ControlTypeTable() {
  static constexpr std::array<ControlTypeEntry, 22> kTable = {{
      {"vbCheckBox", "vb.checkbox"},
      {"vbComboBox", "vb.combobox"},
      {"vbCommandButton", "vb.commandbutton"},
      {"vbData", "vb.data"},
      {"vbDirListBox", "vb.dirlistbox"},
      {"vbDriveListBox", "vb.drivelistbox"},
      {"vbFileListBox", "vb.filelistbox"},
      {"vbFrame", "vb.frame"},
      {"vbHScrollBar", "vb.hscrollbar"},
      {"vbImage", "vb.image"},
      {"vbLabel", "vb.label"},
      {"vbLine", "vb.line"},
      {"vbListBox", "vb.listbox"},
      {"vbMenu", "vb.menu"},
      {"vbOLE", "vb.ole"},
      {"vbOptionButton", "vb.optionbutton"},
      {"vbPictureBox", "vb.picturebox"},
      {"vbShape", "vb.shape"},
      {"vbTextBox", "vb.textbox"},
      {"vbTimer", "vb.timer"},
      {"vbVScrollBar", "vb.vscrollbar"},
      {"vbCustomControl", ""},
  }};
  return kTable;
}

ControlType ControlTypeOf(std::string_view progId) {
  const std::string lower = automation::LowerAscii(progId);
  const auto& table = ControlTypeTable();
  for (int32_t type = 0; type < kCustomControl; ++type) {
    if (table[type].progId == lower) return static_cast<ControlType>(type);
  }
  return kCustomControl;
}

}  // namespace controls
