#pragma once
// Text from projects on its way to a person. Project files may hold any bytes, control
// characters included; sent to a terminal as they are, they would move the cursor, clear the
// screen or retitle the window. So what goes to a terminal shows them as escapes; what goes to a
// pipe or a file stays exact.

#include <string>
#include <string_view>

namespace cli {

// The driver's texts break lines with CR LF (a lone CR counts as a break too); a terminal or a
// pipe wants plain line feeds.
std::string PlainLines(std::string_view text);

// For a terminal: every control character but tab and line feed, DEL and undecodable bytes as
// "\x1b", C1 controls as "\u009b", and the code page's raw-byte characters as the byte they
// stand for ("\x81"). Everything else, backslashes included, is kept.
std::string EscapeControls(std::string_view text);

// For JSON text on a terminal: DEL and C1 controls as JSON escapes ("\u007f"), which JSON
// writers leave as they are. The JSON stays valid and means the same.
std::string EscapeJsonControls(std::string_view json);

}  // namespace cli
