#include "project_generator.h"

#include <fstream>
#include <vector>

namespace idebench {
namespace {

enum class Kind { kModule, kClass, kForm };

// The line ends of one file: a fixed style, or (mixed) a different one line by line.
class Ends {
 public:
  explicit Ends(std::size_t style) : style_(style) {}
  const char* Next() {
    static const char* const kEnds[] = {"\r\n", "\n", "\r"};
    if (style_ < 3) return kEnds[style_];
    return kEnds[(counter_++ / 7) % 3];
  }

 private:
  std::size_t style_;
  std::size_t counter_ = 0;
};

struct Writer {
  std::string text;
  std::size_t lines = 0;
  Ends ends;
  void Line(const std::string& line) {
    text += line;
    text += ends.Next();
    ++lines;
  }
};

// One procedure of about ten lines, in the shapes real code has: a comment above it, modifiers,
// now and then a heading continued over two lines, strings holding quotes and apostrophes.
void Procedure(Writer& w, std::size_t component, std::size_t index) {
  std::string name = "Proc" + std::to_string(component) + "_" + std::to_string(index);
  w.Line("");
  w.Line("' " + name + ": computes a value for the report (it's generated).");
  switch (index % 4) {
    case 0:
      w.Line("Public Sub " + name + "(ByVal Count As Long)");
      break;
    case 1:
      w.Line("Private Function " + name + "(ByVal Count As Long, _");
      w.Line("                          Optional ByVal Label As String = \"n/a\") As String");
      break;
    case 2:
      w.Line("Friend Property Get " + name + "() As Long");
      break;
    default:
      w.Line("Public Static Sub " + name + "()");
      break;
  }
  w.Line("    Dim i As Long, total As Long");
  w.Line("    For i = 1 To 10");
  w.Line("        total = total + i * " + std::to_string(index) + "  ' running total");
  w.Line("    Next i");
  w.Line("    Debug.Print \"Done \"\"" + name + "\"\": End Sub is only text\"");
  switch (index % 4) {
    case 1:
      w.Line("End Function");
      break;
    case 2:
      w.Line("End Property");
      break;
    default:
      w.Line("End Sub");
      break;
  }
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

}  // namespace

GeneratedProject GenerateProject(const std::filesystem::path& folder, std::size_t totalLines,
                                 std::size_t proceduresPerComponent) {
  std::filesystem::create_directories(folder);
  GeneratedProject result;
  result.vbp = folder / "Big.vbp";
  std::string vbp = "Type=Exe\r\n";
  std::size_t component = 0;
  while (result.lines < totalLines) {
    auto kind = static_cast<Kind>(component % 3);
    std::string name;
    std::string file;
    Writer w{{}, 0, Ends(component % 4)};
    switch (kind) {
      case Kind::kModule:
        name = "mod" + std::to_string(component);
        file = name + ".bas";
        vbp += "Module=" + name + "; " + file + "\r\n";
        w.Line("Attribute VB_Name = \"" + name + "\"");
        break;
      case Kind::kClass:
        name = std::string("C").append(std::to_string(component));
        file = name + ".cls";
        vbp += "Class=" + name + "; " + file + "\r\n";
        w.Line("VERSION 1.0 CLASS");
        w.Line("BEGIN");
        w.Line("  MultiUse = -1  'True");
        w.Line("END");
        w.Line("Attribute VB_Name = \"" + name + "\"");
        w.Line("Attribute VB_Exposed = False");
        break;
      case Kind::kForm:
        name = "frm" + std::to_string(component);
        file = name + ".frm";
        vbp += "Form=" + file + "\r\n";
        w.Line("VERSION 5.00");
        w.Line("Begin VB.Form " + name + " ");
        w.Line("   Caption         =   \"Form " + std::to_string(component) + "\"");
        w.Line("   Begin VB.CommandButton cmdOK ");
        w.Line("      Caption         =   \"OK\"");
        w.Line("   End");
        w.Line("End");
        w.Line("Attribute VB_Name = \"" + name + "\"");
        break;
    }
    w.Line("Option Explicit");
    w.Line("Private mCount As Long");
    for (std::size_t p = 0; p < proceduresPerComponent; ++p)
      Procedure(w, component, p);
    if (component % 3 == 2) {
      // No final line break.
      std::size_t keep = w.text.find_last_not_of("\r\n");
      w.text.resize(keep + 1);
    }
    WriteFile(folder / file, w.text);
    result.lines += w.lines;
    result.procedures += proceduresPerComponent;
    ++component;
  }
  vbp += "Startup=\"Sub Main\"\r\nName=\"Big\"\r\n";
  WriteFile(result.vbp, vbp);
  result.components = component;
  return result;
}

}  // namespace idebench
