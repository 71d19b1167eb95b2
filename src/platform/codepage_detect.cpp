#include "platform/codepage_detect.h"

#include <uchardet.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/files.h"
#include "platform/lines.h"
#include "platform/paths.h"
#include "platform/project_lines.h"
#include "platform/text.h"

namespace platform {
namespace {

// The most of all files' non-ASCII lines that go into the sample, the most one file gives, and
// the most of one file that is read to find them.
constexpr std::size_t kSampleLimit = 256 * 1024;
constexpr std::size_t kFileSampleLimit = 64 * 1024;
constexpr std::size_t kReadLimit = 1024 * 1024;

// Below this many non-ASCII bytes a guess is less sure.
constexpr double kFullEvidence = 64;
// A code page that leaves more than this share of the sample's non-ASCII bytes undecoded is not
// the files' code page.
constexpr double kLeastDecoded = 0.9;

constexpr int kWindows1252 = 1252;

// The project file's keys whose values name a component's text file.
constexpr std::array<std::string_view, 7> kComponentKeys{
    "Form", "Module", "Class", "UserControl", "UserDocument", "PropertyPage", "Designer"};

// The code pages tried for a file name that the first guess does not find.
constexpr std::array<int, 15> kCandidatePages{932,  936,  949,  950,  874,  1250, 1251, 1252,
                                              1253, 1254, 1255, 1256, 1257, 1258, 65001};

struct CharsetPage {
  std::string_view charset;  // as uchardet names it
  int codePage;
};

// uchardet's character sets, each as the Windows code page its language uses: VB6 saves files in
// the ANSI code page of the machine, so an ISO or Unix set that uchardet prefers for a sample
// stands for the Windows code page of the same script.
constexpr std::array<CharsetPage, 40> kCharsetPages{{
    {"SHIFT_JIS", 932},     {"EUC-JP", 932},        {"ISO-2022-JP", 932},   {"GB18030", 936},
    {"GB2312", 936},        {"GBK", 936},           {"HZ-GB-2312", 936},    {"ISO-2022-CN", 936},
    {"EUC-KR", 949},        {"UHC", 949},           {"ISO-2022-KR", 949},   {"BIG5", 950},
    {"EUC-TW", 950},        {"TIS-620", 874},       {"ISO-8859-11", 874},   {"WINDOWS-874", 874},
    {"WINDOWS-1250", 1250}, {"ISO-8859-2", 1250},   {"WINDOWS-1251", 1251}, {"ISO-8859-5", 1251},
    {"KOI8-R", 1251},       {"IBM855", 1251},       {"IBM866", 1251},       {"MAC-CYRILLIC", 1251},
    {"WINDOWS-1252", 1252}, {"ISO-8859-1", 1252},   {"ISO-8859-15", 1252},  {"WINDOWS-1253", 1253},
    {"ISO-8859-7", 1253},   {"WINDOWS-1254", 1254}, {"ISO-8859-9", 1254},   {"WINDOWS-1255", 1255},
    {"ISO-8859-8", 1255},   {"WINDOWS-1256", 1256}, {"ISO-8859-6", 1256},   {"WINDOWS-1257", 1257},
    {"ISO-8859-13", 1257},  {"ISO-8859-4", 1257},   {"WINDOWS-1258", 1258}, {"VISCII", 1258},
}};

int CodePageOfCharset(std::string_view charset) {
  if (automation::EqualsAsciiNoCase(charset, "UTF-8")) return 65001;
  for (const CharsetPage& known : kCharsetPages) {
    if (automation::EqualsAsciiNoCase(charset, known.charset)) return known.codePage;
  }
  return 0;
}

bool IsHigh(char c) {
  return static_cast<unsigned char>(c) >= 0x80;
}

std::size_t CountHigh(std::string_view bytes) {
  return static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), IsHigh));
}

// The start of a file, at most kReadLimit bytes; empty when it cannot be read.
std::string ReadStart(std::string_view path) {
  std::ifstream in(ToNative(path), std::ios::binary | std::ios::ate);
  if (!in) return {};
  // As much as the file holds, up to the limit: most component files are far smaller.
  const std::streamoff size = in.tellg();
  in.seekg(0);
  std::string bytes(static_cast<std::size_t>(std::clamp<std::streamoff>(
                        size, 0, static_cast<std::streamoff>(kReadLimit))),
                    '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

// The non-ASCII lines of the files, each followed by a line end.
class Sample {
 public:
  bool Full() const { return text_.size() >= kSampleLimit; }

  void AddLines(std::string_view bytes) {
    if (HoldsBinaryData(bytes)) return;
    const std::size_t fileLimit = std::min(kSampleLimit, text_.size() + kFileSampleLimit);
    LineReader reader(bytes);
    std::string_view line;
    while (text_.size() < fileLimit && reader.Next(line)) {
      if (std::none_of(line.begin(), line.end(), IsHigh)) continue;
      const std::string_view taken = line.substr(0, fileLimit - text_.size());
      text_.append(taken).append("\r\n");
      nonAscii_ += CountHigh(taken);
    }
  }

  const std::string& Text() const { return text_; }
  std::size_t NonAscii() const { return nonAscii_; }

 private:
  std::string text_;
  std::size_t nonAscii_ = 0;
};

struct Guess {
  int number = kWindows1252;
  double confidence = 0;
};

// What uchardet makes of the sample, checked by decoding the sample with the code page it maps to.
Guess GuessFromSample(const Sample& sample) {
  const std::string& text = sample.Text();
  if (sample.NonAscii() == 0) return {kWindows1252, 1.0};
  std::unique_ptr<uchardet, void (*)(uchardet_t)> detector(uchardet_new(), uchardet_delete);
  if (!detector || uchardet_handle_data(detector.get(), text.data(), text.size()) != 0) return {};
  uchardet_data_end(detector.get());
  const char* charset = uchardet_get_charset(detector.get());
  const int number = charset == nullptr ? 0 : CodePageOfCharset(charset);
  if (number == 0 || !IsKnownCodePage(number)) return {};

  // Bytes the code page cannot decode travel as escape characters, U+10FF00 + byte, whose UTF-8
  // begins F4 8F BC..BF.
  const std::string decoded = GetCodePage(number).Decode(text);
  std::size_t undecoded = 0;
  for (std::size_t pos = decoded.find('\xF4'); pos != std::string::npos;
       pos = decoded.find('\xF4', pos + 1)) {
    if (pos + 2 < decoded.size() && decoded[pos + 1] == '\x8F' &&
        static_cast<unsigned char>(decoded[pos + 2]) >= 0xBC) {
      ++undecoded;
    }
  }
  const double high = static_cast<double>(sample.NonAscii());
  const double decodedShare = 1.0 - std::min(1.0, static_cast<double>(undecoded) / high);
  if (decodedShare < kLeastDecoded) return {};
  return {number, decodedShare * std::min(1.0, high / kFullEvidence)};
}

bool IsAbsolute(std::string_view file) {
  return (!file.empty() && (file.front() == '\\' || file.front() == '/')) ||
         (file.size() >= 2 && file[1] == ':');
}

// The component file that a project file's value names, as a path that exists; empty when none
// does. A name with non-ASCII bytes is tried as it is (a name on disk in the same bytes), then
// decoded with the first guess, then with each other ANSI code page (names on disk are mostly
// UTF-8, converted by version control).
std::string FindComponentFile(const std::string& folder, std::string_view written, int guess) {
  const auto existing = [&](const std::string& file) {
    const std::string path = IsAbsolute(file) ? file : folder + file;
    return FileExists(path) ? path : std::string();
  };
  if (CountHigh(written) == 0) return existing(std::string(written));
  std::vector<int> pages{guess};
  for (int page : kCandidatePages) {
    if (page != guess) pages.push_back(page);
  }
  if (std::string found = existing(std::string(written)); !found.empty()) return found;
  for (int page : pages) {
    if (!IsKnownCodePage(page)) continue;
    if (std::string found = existing(GetCodePage(page).Decode(written)); !found.empty()) {
      return found;
    }
  }
  return {};
}

// The text files that the project file's main section names.
std::vector<std::string_view> ComponentReferences(std::string_view projectBytes) {
  std::vector<std::string_view> references;
  LineReader reader(projectBytes.substr(ByteOrderMarkLength(projectBytes)));
  std::string_view line;
  while (reader.Next(line)) {
    const std::string_view trimmed = TrimBlanks(line);
    if (!trimmed.empty() && trimmed.front() == '[') break;  // a tool's section
    const ProjectLine split = SplitProjectLine(line);
    if (!split.hasKey) continue;
    for (std::string_view key : kComponentKeys) {
      if (automation::EqualsAsciiNoCase(split.key, key)) {
        references.push_back(SplitComponentValue(split.value).file);
        break;
      }
    }
  }
  return references;
}

}  // namespace

DetectedCodePage DetectProjectCodePage(std::string_view projectFile) {
  std::string projectBytes;
  try {
    if (!FileExists(projectFile)) return {kWindows1252, 0, 0};
    projectBytes = ReadStart(projectFile);
  } catch (const automation::Error&) {
    return {kWindows1252, 0, 0};
  }

  Sample sample;
  sample.AddLines(projectBytes);
  // The project file alone decides how non-ASCII file names in it are looked for.
  const int firstGuess = GuessFromSample(sample).number;
  const std::size_t separator = LastSeparator(projectFile);
  const std::string folder = separator == std::string::npos
                                 ? std::string()
                                 : std::string(projectFile.substr(0, separator + 1));
  for (std::string_view written : ComponentReferences(projectBytes)) {
    if (sample.Full()) break;
    try {
      const std::string path = FindComponentFile(folder, written, firstGuess);
      if (!path.empty()) sample.AddLines(ReadStart(path));
    } catch (const automation::Error&) {
      // A file that cannot be looked at adds nothing; loading the project will say why.
    }
  }
  const Guess guess = GuessFromSample(sample);
  return {guess.number, guess.confidence, sample.NonAscii()};
}

ProjectCodePage UseProjectCodePage(std::string_view projectFile) {
  const CodePageSource source = CurrentCodePageSource();
  if (source == CodePageSource::Option || source == CodePageSource::Environment) {
    return {CurrentCodePage().Number(), source, 1.0, 0};
  }
  const DetectedCodePage detected = DetectProjectCodePage(projectFile);
  SetDetectedCodePage(detected.number);
  return {detected.number, CodePageSource::Detected, detected.confidence, detected.nonAsciiBytes};
}

}  // namespace platform
