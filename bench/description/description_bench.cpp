// Form descriptions in memory: reading forms of 50 controls each and finding every property of
// every control, and writing one caption in each form and rendering it for saving, at 200 and
// 2,000 forms. Both should grow linearly with the number of forms. A last case is one wide form
// of 2,000, 10,000 and 100,000 controls (half of them in control arrays) walked through the IDE's
// objects as the driver walks it: every control by position, its name, index, type and one live
// property, then found again by name and index. It too should grow linearly.

#include <benchmark/benchmark.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"
#include "ide/form/description.h"
#include "ide/model/component_file.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbproject.h"
#include "platform/codepage.h"

namespace {

constexpr int kControls = 50;

std::string FormText(int number) {
  const std::string name = "frm" + std::to_string(number);
  std::string text = "VERSION 5.00\r\nBegin VB.Form " + name +
                     " \r\n"
                     "   Caption         =   \"Form " +
                     std::to_string(number) +
                     "\"\r\n"
                     "   ClientHeight    =   6000\r\n   ClientLeft      =   60\r\n"
                     "   ClientTop       =   345\r\n   ClientWidth     =   8000\r\n"
                     "   BeginProperty Font \r\n      Name            =   \"Tahoma\"\r\n"
                     "      Size            =   8.25\r\n      Charset         =   0\r\n"
                     "      Weight          =   400\r\n      Underline       =   0   'False\r\n"
                     "      Italic          =   0   'False\r\n"
                     "      Strikethrough   =   0   'False\r\n   EndProperty\r\n"
                     "   LinkTopic       =   \"Form1\"\r\n   ScaleHeight     =   6000\r\n"
                     "   ScaleWidth      =   8000\r\n";
  for (int i = 0; i < kControls; ++i) {
    const std::string n = std::to_string(i);
    text += "   Begin VB.TextBox txtField" + n + " \r\n      Height          =   315\r\n" +
            "      Left            =   120\r\n      TabIndex        =   " + n +
            "\r\n      Text            =   \"Value " + n +
            "\"\r\n      Top             =   " + std::to_string(120 + 400 * i) +
            "\r\n      Width           =   2175\r\n      Visible         =   0   'False\r\n"
            "   End\r\n";
  }
  text += "End\r\nAttribute VB_Name = \"" + name + "\"\r\nOption Explicit\r\n";
  return text;
}

const std::vector<std::string>& Forms(std::size_t count) {
  static std::vector<std::string> forms;
  while (forms.size() < count)
    forms.push_back(FormText(static_cast<int>(forms.size())));
  return forms;
}

std::vector<std::unique_ptr<ide::ComponentFile>> Load(std::size_t count) {
  std::vector<std::unique_ptr<ide::ComponentFile>> files;
  const auto& codePage = platform::GetCodePage(1252);
  const auto& forms = Forms(count);
  for (std::size_t i = 0; i < count; ++i)
    files.push_back(ide::ComponentFile::Parse(forms[i], ide::FileKind::kForm, codePage, "bench"));
  return files;
}

void BM_LoadAndReadEveryProperty(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Forms(count);
  for (auto _ : state) {
    auto files = Load(count);
    std::size_t bytes = 0;
    for (const auto& file : files) {
      for (const ide::form::DescriptionNode* control : file->Description()->Controls()) {
        for (const char* name : {"Height", "Left", "TabIndex", "Text", "Top", "Width", "Visible"})
          bytes += control->FindProperty(name)->Value().size();
      }
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["forms"] = static_cast<double>(count);
  state.counters["controls"] = static_cast<double>(count * kControls);
}

void BM_WriteOneCaptionEachAndRender(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  auto files = Load(count);
  int round = 0;
  for (auto _ : state) {
    std::size_t bytes = 0;
    ++round;
    for (auto& file : files) {
      file->Description()->Root().SetProperty(
          "Caption", ide::form::FormatString("Edited " + std::to_string(round)));
      bytes += file->Render().size();
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["forms"] = static_cast<double>(count);
}

// A project of one form with `controls` controls, in a fresh temporary folder that is also the
// qx home; removed when it goes.
class WideForm {
 public:
  explicit WideForm(int controls) {
    std::string pattern = (std::filesystem::temp_directory_path() / "qx-bench-wide-XXXXXX");
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    ::setenv("QX_HOME", (root_ / "home").c_str(), 1);
    std::ofstream(root_ / "Wide.vbp", std::ios::binary)
        << "Type=Exe\r\nForm=frmWide.frm\r\nStartup=\"frmWide\"\r\nName=\"Wide\"\r\n";
    std::string text =
        "VERSION 5.00\r\nBegin VB.Form frmWide \r\n   Caption         =   \"Wide\"\r\n"
        "   ClientHeight    =   6000\r\n   ClientWidth     =   8000\r\n";
    for (int i = 0; i < controls; ++i) {
      // Every other control is a member of an option-button array of 100.
      const bool member = i % 2 == 1;
      const std::string name =
          member ? "optChoice" + std::to_string(i / 200) : "txtField" + std::to_string(i / 2);
      text += std::string("   Begin VB.") + (member ? "OptionButton " : "TextBox ") + name +
              " \r\n      Height          =   315\r\n";
      if (member) text += "      Index           =   " + std::to_string(i / 2 % 100) + "\r\n";
      text += "      Left            =   120\r\n      TabIndex        =   " + std::to_string(i) +
              "\r\n      Top             =   " + std::to_string(120 + 400 * (i % 1000)) +
              "\r\n      Width           =   2175\r\n   End\r\n";
    }
    text += "End\r\nAttribute VB_Name = \"frmWide\"\r\nOption Explicit\r\n";
    std::ofstream(root_ / "frmWide.frm", std::ios::binary) << text;
  }
  ~WideForm() {
    std::error_code ec;
    std::filesystem::remove_all(root_, ec);
  }
  std::string Project() const { return (root_ / "Wide.vbp").string(); }

 private:
  std::filesystem::path root_;
};

void BM_WideFormEveryControl(benchmark::State& state) {
  using automation::Dispatch;
  using automation::Variant;
  const auto controls = static_cast<int>(state.range(0));
  const WideForm form(controls);
  for (auto _ : state) {
    auto ide = ide::Ide::Start(form.Project(), ide::Ide::AddInLoading::kNone);
    const Dispatch component(Dispatch(Dispatch(ide->VBProject()).Get("VBComponents").ToObject())
                                 .Call("Item", "frmWide")
                                 .ToObject());
    const Dispatch all(Dispatch(component.Get("Designer").ToObject()).Get("VBControls").ToObject());
    const int32_t count = all.Get("Count").ToLong();
    std::vector<std::pair<std::string, int32_t>> names;
    std::size_t bytes = 0;
    for (int32_t i = 1; i <= count; ++i) {
      const Dispatch control(all.Call("Item", Variant::Long(i)).ToObject());
      bytes += control.Get("ProgId").ToString().size();
      const Dispatch live(control.Get("ControlObject").ToObject());
      names.emplace_back(live.Get("Name").ToString(), live.Get("Index").ToLong());
      bytes += static_cast<std::size_t>(live.Get("Left").ToLong());
    }
    for (const auto& [name, index] : names) {
      const Variant member = index >= 0 ? Variant::Long(index) : Variant();
      bytes += Dispatch(all.Call("Item", Variant(name), member).ToObject())
                   .Get("ProgId")
                   .ToString()
                   .size();
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["controls"] = static_cast<double>(controls);
}

BENCHMARK(BM_LoadAndReadEveryProperty)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteOneCaptionEachAndRender)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WideFormEveryControl)
    ->Arg(2'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
