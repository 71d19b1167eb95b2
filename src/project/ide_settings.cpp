#include "project/ide_settings.h"

#include "contracts/host_classes.h"
#include "foundation/vbstrings.h"
#include "foundation/vxhandler.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/lines.h"
#include "platform/profile.h"

namespace project {

void CheckBackgroundLoading() {
  contracts::RegistryKey key = contracts::RegistryKey::New();
  key.SetPath("HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0");
  key.Open(1);
  const std::string value = key.ReadValue("BackgroundProjectLoad", "1");
  key.Open(0);
  if (value == "1") {
    foundation::RaiseUserError(
        std::string("Background project loading must be disabled (turned off) in VB6.") +
        " To adjust this property, go to the Advanced tab of the Tools/Options dialog in VB6" +
        " and un-check the box labeled Background Project Load.");
  }
}

void AdjustWindowState(const std::string& projectFile) {
  const contracts::HostUtility host = contracts::HostUtility::Get();
  const std::string stateFile = host.ChangeExtension(projectFile, "vbw");
  if (!host.FileExists(stateFile)) return;
  const std::string bytes = platform::ReadFile(stateFile);
  const platform::CodePage& codePage = platform::CurrentCodePage();
  std::string gathered;
  platform::LineReader reader(bytes);
  std::string_view raw;
  while (reader.Next(raw)) {
    std::string line = codePage.Decode(raw);
    const std::string_view trimmed = foundation::Trim(line);
    if (!trimmed.empty() && trimmed.back() == ',') line += 'C';
    if (gathered.empty()) {
      gathered = line;
    } else {
      gathered += "\r\n";
      gathered += line;
    }
  }
  try {
    platform::WriteFileAtomic(stateFile, codePage.Encode(gathered + "\r\n"));
  } catch (...) {
    // A window-state file that cannot be rewritten (read-only, a full disk) is left whole, as
    // it was.
  }
}

void WriteAddInEntry() {
  platform::WritePrivateProfileString("Add-Ins32", "qxvb60.Connection", "1", "vbaddin.ini");
}

}  // namespace project
