#include "cli/report.h"

#include <ostream>

namespace cli {

std::string ForTerminal(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      out += '\n';
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

void PrintError(std::ostream& out, const automation::Error& error) {
  out << "qx: error " << error.Number() << ": " << ForTerminal(error.Description()) << "\n";
}

}  // namespace cli
