#pragma once
// Writes VB6 projects of any size for tests and benchmarks: modules, classes and forms with many
// procedures, in the line-end styles VB6 projects come in. Every file is written exactly as
// described here, so a test can generate the same project twice with one word changed and
// compare what the IDE saves with the second one.
//
// Each component is laid out as VB6 saves it (header, attributes, `Option Explicit`, a
// declarations section), then procedures of ten or eleven lines in the shapes real code has: a
// blank and a comment line above each heading, modifiers, a heading continued over two lines,
// strings holding quotes, apostrophes and "End Sub", property procedures carrying a hidden
// member `Attribute` line. Every third file ends without a final line break, and every fifth
// class ends with a run of NUL bytes, as some real classes do.

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace qxbench {

enum class LineEnds {
  kCycle,  // each component the next of CR LF, LF, lone CR, mixed
  kCrLf,
  kLf,
  kCr,
  kMixed,  // the three styles by turns, seven lines each, within every file
};

struct GeneratorOptions {
  std::size_t totalLines = 1000;  // at least this many lines over all component files
  std::size_t proceduresPerComponent = 100;
  LineEnds ends = LineEnds::kCycle;
  std::string word = "running";  // appears once in every procedure, for tests that replace it
  bool forms = true;             // false: modules and classes only, one after the other
  // When not zero, every `rareEvery`-th procedure of the project (counting from the first) has
  // `rareWord` in its comment line, for searches that match in a known share of procedures.
  std::size_t rareEvery = 0;
  std::string rareWord = "Reconcile";
};

struct GeneratedProject {
  std::filesystem::path vbp;
  std::size_t components = 0;
  std::size_t procedures = 0;
  std::size_t lines = 0;  // header and code lines of all component files
};

namespace generator_detail {

// The line ends of one file: a fixed style, or (mixed) a different one every seven lines.
class Ends {
 public:
  explicit Ends(LineEnds style) : style_(style) {}
  const char* Next() {
    switch (style_) {
      case LineEnds::kLf:
        return "\n";
      case LineEnds::kCr:
        return "\r";
      case LineEnds::kMixed: {
        static const char* const kEnds[] = {"\r\n", "\n", "\r"};
        return kEnds[(counter_++ / 7) % 3];
      }
      default:
        return "\r\n";
    }
  }

 private:
  LineEnds style_;
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

inline void Procedure(Writer& w, std::size_t component, std::size_t index, bool isClass,
                      const std::string& word, const std::string& rare = {}) {
  std::string name = std::string("Proc").append(std::to_string(component));
  name.append("_").append(std::to_string(index));
  w.Line("");
  if (rare.empty())
    w.Line("' " + name + ": computes a value for the report (it's generated).");
  else
    w.Line("' " + name + ": computes a value for the report (" + rare + " it).");
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
      if (isClass) w.Line("Attribute " + name + ".VB_Description = \"A generated value.\"");
      break;
    default:
      w.Line("Public Static Sub " + name + "()");
      break;
  }
  w.Line("    Dim i As Long, total As Long");
  w.Line("    For i = 1 To 10");
  const std::string factor = std::to_string(index);
  w.Line("        total = total + i * " + factor + "  ' " + word + " total");
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

inline void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

}  // namespace generator_detail

// Writes the project into `folder` (created if needed): Big.vbp and its components, cycling
// through module, class and form.
inline GeneratedProject GenerateProject(const std::filesystem::path& folder,
                                        const GeneratorOptions& options) {
  using generator_detail::Writer;
  static const LineEnds kCycle[] = {LineEnds::kCrLf, LineEnds::kLf, LineEnds::kCr,
                                    LineEnds::kMixed};
  std::filesystem::create_directories(folder);
  GeneratedProject result;
  result.vbp = folder / "Big.vbp";
  std::string vbp = "Type=Exe\r\n";
  std::size_t component = 0;
  while (result.lines < options.totalLines) {
    const std::string number = std::to_string(component);
    const std::size_t kind = component % (options.forms ? 3 : 2);  // module, class, form
    LineEnds ends = options.ends == LineEnds::kCycle ? kCycle[component % 4] : options.ends;
    Writer w{{}, 0, generator_detail::Ends(ends)};
    std::string name;
    std::string file;
    if (kind == 0) {
      name = std::string("mod").append(number);
      file = name + ".bas";
      vbp += "Module=" + name + "; " + file + "\r\n";
      w.Line("Attribute VB_Name = \"" + name + "\"");
    } else if (kind == 1) {
      name = std::string("C").append(number);
      file = name + ".cls";
      vbp += "Class=" + name + "; " + file + "\r\n";
      w.Line("VERSION 1.0 CLASS");
      w.Line("BEGIN");
      w.Line("  MultiUse = -1  'True");
      w.Line("END");
      w.Line("Attribute VB_Name = \"" + name + "\"");
      w.Line("Attribute VB_Exposed = False");
    } else {
      name = std::string("frm").append(number);
      file = name + ".frm";
      vbp += "Form=" + file + "\r\n";
      w.Line("VERSION 5.00");
      w.Line("Begin VB.Form " + name + " ");
      w.Line("   Caption         =   \"Form " + number + "\"");
      w.Line("   Begin VB.CommandButton cmdOK ");
      w.Line("      Caption         =   \"OK\"");
      w.Line("   End");
      w.Line("End");
      w.Line("Attribute VB_Name = \"" + name + "\"");
    }
    w.Line("Option Explicit");
    w.Line("Private Declare Function GetTickCount Lib \"kernel32\" () As Long");
    w.Line("Private mCount As Long");
    for (std::size_t p = 0; p < options.proceduresPerComponent; ++p) {
      const bool rare = options.rareEvery != 0 && (result.procedures + p) % options.rareEvery == 0;
      generator_detail::Procedure(w, component, p, kind == 1, options.word,
                                  rare ? options.rareWord : std::string());
    }
    if (component % 3 == 2) {
      // No final line break.
      std::size_t keep = w.text.find_last_not_of("\r\n");
      w.text.resize(keep + 1);
    }
    if (kind == 1 && component % 5 == 1) w.text.append(4, '\0');
    generator_detail::WriteFile(folder / file, w.text);
    result.lines += w.lines;
    result.procedures += options.proceduresPerComponent;
    ++component;
  }
  vbp += "Startup=\"Sub Main\"\r\nName=\"Big\"\r\n";
  generator_detail::WriteFile(result.vbp, vbp);
  result.components = component;
  return result;
}

}  // namespace qxbench
