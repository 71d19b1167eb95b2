#include "ide/tool/report.h"

#include <ostream>

namespace ide::tool {
namespace {

std::string OneLine(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return text;
}

}  // namespace

std::string Describe(const automation::Error& error) {
  return std::to_string(error.Number()) + " " + OneLine(error.Description());
}

void PrintError(std::ostream& err, const automation::Error& error) {
  err << "qxvb6: error " << error.Number() << ": " << OneLine(error.Description()) << "\n";
}

void PrintError(std::ostream& err, std::string_view subject, const automation::Error& error) {
  err << "qxvb6: " << subject << ": error " << error.Number() << ": "
      << OneLine(error.Description()) << "\n";
}

}  // namespace ide::tool
