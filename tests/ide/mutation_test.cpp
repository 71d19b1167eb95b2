// Damaged files: the fixtures cut short, with stray line breaks, NUL and 0xFF bytes, and lines
// duplicated or lost, a thousand times over with a fixed seed. Whatever the damage, reading
// never crashes or hangs: a file either gives a clear "Invalid file format" or a model whose
// procedures can be walked, and a file that loads is written back byte for byte, both as read
// and through the line writer.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "automation/error.h"
#include "fixture_copy.h"
#include "fixture_files.h"
#include "ide/model/component_file.h"
#include "ide/model/designer_id.h"
#include "ide/model/project_file.h"
#include "module_text.h"
#include "platform/codepage.h"
#include "support/procedure_text.h"

namespace {

using ide::CodeModule;
using ide::ComponentFile;

// The start of every line of the bytes (CR LF, CR and LF all end one).
std::vector<std::size_t> LineStarts(const std::string& bytes) {
  std::vector<std::size_t> starts{0};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
    if ((bytes[i] == '\r' || bytes[i] == '\n') && i + 1 < bytes.size()) starts.push_back(i + 1);
  }
  return starts;
}

// One random change. The engine's raw output is used (not a distribution), so that the cases
// are the same with every standard library.
void Mutate(std::string& bytes, std::mt19937& random, std::string& what) {
  auto pick = [&](std::size_t n) { return n == 0 ? 0 : static_cast<std::size_t>(random() % n); };
  const std::size_t at = pick(bytes.size() + 1);
  const std::size_t kind = random() % 8;
  if (kind == 0) {
    bytes.resize(at);
    what += " cut at " + std::to_string(at);
    return;
  }
  static const std::pair<std::string, const char*> kInserted[] = {
      {"\r", "CR"}, {"\n", "LF"}, {std::string(1, '\0'), "NUL"}, {"\xFF", "FF"}, {"\r\n", "CRLF"}};
  if (kind <= 5) {
    bytes.insert(at, kInserted[kind - 1].first);
    what += std::string(" ") + kInserted[kind - 1].second + " at " + std::to_string(at);
    return;
  }
  // Duplicate or delete a whole line, line end included.
  std::vector<std::size_t> starts = LineStarts(bytes);
  std::size_t line = pick(starts.size());
  std::size_t begin = starts[line];
  std::size_t end = line + 1 < starts.size() ? starts[line + 1] : bytes.size();
  std::string text = bytes.substr(begin, end - begin);
  if (random() % 2 == 0) {
    bytes.insert(begin, text);
    what += " line " + std::to_string(line + 1) + " doubled";
  } else {
    bytes.erase(begin, end - begin);
    what += " line " + std::to_string(line + 1) + " deleted";
  }
}

// Walks the module as the driver does and reads every region; the walk must move forward.
void Exercise(CodeModule& code) {
  const int32_t total = code.CountOfLines();
  ASSERT_GE(code.CountOfDeclarationLines(), 0);
  ASSERT_LE(code.CountOfDeclarationLines(), total);
  int32_t line = code.CountOfDeclarationLines() + 1;
  std::vector<qxtest::ProcRef> procs;
  while (line <= total) {
    qxtest::ProcRef ref;
    ref.name = code.ProcOfLine(line, ref.kind);
    ASSERT_FALSE(ref.name.empty()) << "line " << line << " is in no procedure";
    int32_t count = code.ProcCountLines(ref.name, ref.kind);
    ASSERT_GE(count, 1);
    ASSERT_LE(code.ProcStartLine(ref.name, ref.kind), line);
    line += count;
    procs.push_back(ref);
  }
  for (const auto& proc : procs)
    qxtest::ReadProcedureText(code, proc);
  // Write the first procedure's text back as the driver does; whatever the module looks like,
  // that must not fail.
  if (!procs.empty()) {
    qxtest::WriteProcedureText(code, procs.front(), qxtest::ReadProcedureText(code, procs.front()));
  }
}

TEST(Mutation, DamagedFilesLoadOrFailCleanlyAndResaveByteForByte) {
  const auto fixtures = idetest::FixtureVbFiles(/*withProjects=*/true);
  ASSERT_GT(fixtures.size(), 20u);
  std::vector<std::string> originals;
  for (const auto& f : fixtures)
    originals.push_back(idetest::ReadBytes(f.path));

  std::mt19937 random(20240611);
  int loaded = 0;
  int refused = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::size_t index = random() % fixtures.size();
    const idetest::FixtureFile& fixture = fixtures[index];
    std::string bytes = originals[index];
    std::string what = fixture.name + ":";
    for (int n = 1 + static_cast<int>(random() % 3); n > 0; --n)
      Mutate(bytes, random, what);
    SCOPED_TRACE("round " + std::to_string(round) + ": " + what);
    const platform::CodePage& codePage = platform::GetCodePage(fixture.codePage);

    if (!fixture.kind) {
      std::unique_ptr<ide::ProjectFile> project;
      try {
        project = ide::ProjectFile::Parse(bytes, codePage, fixture.name);
      } catch (const automation::Error& e) {
        EXPECT_EQ(e.Number(), 321) << e.Description();
        ++refused;
        continue;
      }
      ++loaded;
      EXPECT_EQ(project->Render(), bytes);
      // Renaming an entry to its own name sends every line through the line writer.
      for (std::size_t i = 0; i < project->Entries().size(); ++i) {
        if (!project->Entries()[i].name.empty()) {
          const std::string name(project->Entries()[i].name);
          project->RenameEntry(i, name, name);
          EXPECT_EQ(project->Render(), bytes);
          break;
        }
      }
      continue;
    }

    std::unique_ptr<ComponentFile> file;
    try {
      file = ComponentFile::Parse(bytes, *fixture.kind, codePage, fixture.name);
    } catch (const automation::Error& e) {
      EXPECT_EQ(e.Number(), 321) << e.Description();
      ++refused;
      continue;
    }
    ++loaded;
    EXPECT_EQ(file->Render(), bytes);
    EXPECT_EQ(idetest::RenderThroughLines(*file), bytes);
    CodeModule& code = file->Code();
    Exercise(code);
    // After the write, the module answers as the same text read afresh.
    idetest::ExpectSameIndex(
        code, ComponentFile::Parse(file->Render(), *fixture.kind, codePage, fixture.name)->Code());
    ide::DesignerIdOf(*file);
    // Renamed, what the rewrite saves is a file the IDE reads again, under the new name.
    file->SetName("Renamed");
    std::string rewritten = file->Render();
    try {
      auto again = ComponentFile::Parse(rewritten, *fixture.kind, codePage, fixture.name);
      EXPECT_EQ(again->Name(), "Renamed");
    } catch (const automation::Error& e) {
      ADD_FAILURE() << "the saved file does not load: " << e.Description();
    }
  }
  // Both outcomes occur, or the mutations test less than they seem to.
  EXPECT_GT(loaded, 100);
  EXPECT_GT(refused, 20);
}

}  // namespace
