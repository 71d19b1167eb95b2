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

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

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
  // Forms in each cycle of module, class and forms (with `forms`), and what each form holds:
  // none or more data-entry controls (labels, text boxes with tool tips, check boxes with tags,
  // combo boxes whose items are in the form's .frx, command buttons), and its own number of
  // procedures (0: proceduresPerComponent). Without controls a form has one OK button. With
  // `rareEvery`, every `rareEvery`-th control's tool tip holds `rareWord` too.
  std::size_t formsPerCycle = 1;
  std::size_t controlsPerForm = 0;
  std::size_t proceduresPerForm = 0;
};

struct GeneratedProject {
  std::filesystem::path vbp;
  std::size_t components = 0;
  std::size_t procedures = 0;
  std::size_t lines = 0;  // header and code lines of all component files
  std::size_t forms = 0;
  std::size_t controls = 0;  // on all forms
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

// A .frx list record: the item count, the longest item's length (at least 3), each item with
// its length.
inline void AppendListRecord(std::string& frx, const std::vector<std::string>& items) {
  auto u16 = [&](std::size_t value) {
    frx += static_cast<char>(value & 0xFF);
    frx += static_cast<char>((value >> 8) & 0xFF);
  };
  std::size_t width = 3;
  for (const std::string& item : items)
    width = std::max(width, item.size());
  u16(items.size());
  u16(width);
  for (const std::string& item : items) {
    u16(item.size());
    frx += item;
  }
}

// A form's controls in VB6's layout, one of five data-entry kinds by turns, each with its
// properties in VB6's (alphabetical) order; combo box items go into `frx`. `first` numbers the
// controls across the project, for the rare word.
inline void Controls(Writer& w, std::string& frx, const std::string& form, std::size_t count,
                     std::size_t first, std::size_t rareEvery, const std::string& rareWord) {
  for (std::size_t c = 0; c < count; ++c) {
    const std::string n = std::to_string(c);
    const bool rare = rareEvery != 0 && (first + c) % rareEvery == 0;
    const std::string tip = rare ? "Press to " + rareWord + " field " + n : "Field " + n;
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Left", std::to_string(120 + 1800 * (c % 5))},
        {"TabIndex", n},
        {"ToolTipText", "\"" + tip + "\""},
        {"Top", std::to_string(120 + 360 * (c / 5))},
        {"Width", "1575"},
    };
    std::string begin;
    switch (c % 5) {
      case 0:
        begin = "VB.Label lblField" + n;
        lines.insert(lines.end(), {{"Caption", "\"Field " + n + ":\""}, {"Height", "255"}});
        break;
      case 1:
        begin = "VB.TextBox txtField" + n;
        lines.insert(lines.end(), {{"Height", "285"}, {"Text", "\"value " + n + "\""}});
        break;
      case 2:
        begin = "VB.CheckBox chkOption" + n;
        lines.insert(lines.end(), {{"Caption", "\"Option " + n + "\""},
                                   {"Height", "255"},
                                   {"Tag", "\"option-" + n + "\""},
                                   {"Value", "1  'Checked"}});
        break;
      case 3: {
        char offset[8];
        std::snprintf(offset, sizeof offset, "%04zX", frx.size());
        AppendListRecord(frx, {"Choice A" + n, "Choice B" + n, "Choice C" + n});
        begin = "VB.ComboBox cboChoice" + n;
        lines.insert(lines.end(), {{"Height", "315"},
                                   {"List", "\"" + form + ".frx\":" + offset},
                                   {"Text", "\"Choice A" + n + "\""}});
        break;
      }
      default:
        begin = "VB.CommandButton cmdAction" + n;
        lines.insert(lines.end(), {{"Caption", "\"&Action " + n + "\""}, {"Height", "375"}});
        break;
    }
    std::sort(lines.begin(), lines.end());  // no two names differ by letter case alone
    w.Line("   Begin " + begin + " ");
    for (const auto& [name, value] : lines)
      w.Line("      " + name + std::string(16 - name.size(), ' ') + "=   " + value);
    w.Line("   End");
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
    // Module, class, then the cycle's forms.
    const std::size_t cycle = options.forms ? 2 + options.formsPerCycle : 2;
    const std::size_t kind = std::min<std::size_t>(component % cycle, 2);
    LineEnds ends = options.ends == LineEnds::kCycle ? kCycle[component % 4] : options.ends;
    Writer w{{}, 0, generator_detail::Ends(ends)};
    std::string name;
    std::string file;
    std::string frx;
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
      if (options.controlsPerForm == 0) {
        w.Line("   Begin VB.CommandButton cmdOK ");
        w.Line("      Caption         =   \"OK\"");
        w.Line("   End");
      } else {
        w.Line("   ClientHeight    =   " +
               std::to_string(480 + 360 * (options.controlsPerForm / 5)));
        w.Line("   ClientWidth     =   9240");
        w.Line("   LinkTopic       =   \"Form" + number + "\"");
        generator_detail::Controls(w, frx, name, options.controlsPerForm, result.controls,
                                   options.rareEvery, options.rareWord);
        result.controls += options.controlsPerForm;
      }
      w.Line("End");
      ++result.forms;
      w.Line("Attribute VB_Name = \"" + name + "\"");
    }
    w.Line("Option Explicit");
    w.Line("Private Declare Function GetTickCount Lib \"kernel32\" () As Long");
    w.Line("Private mCount As Long");
    const std::size_t procedures = kind == 2 && options.proceduresPerForm != 0
                                       ? options.proceduresPerForm
                                       : options.proceduresPerComponent;
    for (std::size_t p = 0; p < procedures; ++p) {
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
    if (!frx.empty()) generator_detail::WriteFile(folder / (name + ".frx"), frx);
    result.procedures += procedures;
    ++component;
  }
  vbp += "Startup=\"Sub Main\"\r\nName=\"Big\"\r\n";
  generator_detail::WriteFile(result.vbp, vbp);
  result.components = component;
  return result;
}

// A folder of `projects` small projects (p0, p1, ...), each of modules, classes and forms of four
// procedures up to `linesPerProject` lines, as a source tree of many projects has them; the
// totals over all of them (`vbp` is the folder).
inline GeneratedProject GenerateFolder(const std::filesystem::path& folder, std::size_t projects,
                                       std::size_t linesPerProject) {
  GeneratorOptions options;
  options.totalLines = linesPerProject;
  options.proceduresPerComponent = 4;
  GeneratedProject total;
  total.vbp = folder;
  for (std::size_t i = 0; i < projects; ++i) {
    const auto project = GenerateProject(folder / ("p" + std::to_string(i)), options);
    total.components += project.components;
    total.procedures += project.procedures;
    total.lines += project.lines;
  }
  return total;
}

}  // namespace qxbench
