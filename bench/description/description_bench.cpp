// Form descriptions in memory: reading forms of 50 controls each and finding every property of
// every control, and writing one caption in each form and rendering it for saving, at 200 and
// 2,000 forms. Both should grow linearly with the number of forms.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "ide/form/description.h"
#include "ide/model/component_file.h"
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

BENCHMARK(BM_LoadAndReadEveryProperty)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteOneCaptionEachAndRender)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
