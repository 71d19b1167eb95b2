#include "platform/codepage.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "automation/error.h"
#include "automation/utf8.h"

namespace platform {
namespace {
namespace utf8 = automation::utf8;

constexpr int kWindows1252 = 1252;

// Windows-1252 bytes 0x80-0x9F. The five bytes the code page leaves undefined decode to the C1
// control of the same number, as Windows' own conversion does. All other bytes are Latin-1.
constexpr std::array<char16_t, 32> k1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// UTF-8 of each byte 0x80-0xFF in Windows-1252, made once.
struct Utf8Of1252 {
  std::array<std::array<char, 3>, 128> bytes{};
  std::array<unsigned char, 128> length{};
  Utf8Of1252() {
    for (int b = 0x80; b <= 0xFF; ++b) {
      const char32_t cp = b < 0xA0 ? k1252High[b - 0x80] : static_cast<char32_t>(b);
      std::string text;
      utf8::Append(text, cp);
      std::copy(text.begin(), text.end(), bytes[b - 0x80].begin());
      length[b - 0x80] = static_cast<unsigned char>(text.size());
    }
  }
};

const Utf8Of1252& Table1252() {
  static const Utf8Of1252 table;
  return table;
}

// The byte for a code point in Windows-1252, or -1.
int Encode1252(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<int>(cp);
  for (int i = 0; i < 32; ++i) {
    if (k1252High[i] == cp) return 0x80 + i;
  }
  return -1;
}

// The byte an escape character stands for, when the UTF-8 at text[pos] is one (F4 8F BC..BF xx).
std::optional<unsigned char> EscapeAt(std::string_view text, std::size_t pos) {
  if (pos + 4 > text.size()) return std::nullopt;
  const auto b = [&](std::size_t i) { return static_cast<unsigned char>(text[pos + i]); };
  if (b(0) != 0xF4 || b(1) != 0x8F || b(2) < 0xBC || b(2) > 0xBF || (b(3) & 0xC0) != 0x80) {
    return std::nullopt;
  }
  return static_cast<unsigned char>(((b(2) & 0x03) << 6) | (b(3) & 0x3F));
}

bool HoldsEscape(std::string_view text) {
  for (std::size_t pos = text.find('\xF4'); pos != std::string_view::npos;
       pos = text.find('\xF4', pos + 1)) {
    if (EscapeAt(text, pos)) return true;
  }
  return false;
}

void AppendEscape(std::string& out, unsigned char byte) {
  utf8::Append(out, kByteEscapeBase + byte);
}

std::string IconvName(int number) {
  if (number <= 0) return {};
  switch (number) {
    case 65001:
      return "UTF-8";
    case 54936:
      return "GB18030";
    case 20127:
      return "ASCII";
    case 20866:
      return "KOI8-R";
    case 21866:
      return "KOI8-U";
    case 51932:
      return "EUC-JP";
    case 51949:
      return "EUC-KR";
    case 10000:
      return "MACINTOSH";
    case 28603:
      return "ISO-8859-13";
    case 28605:
      return "ISO-8859-15";
    default:
      break;
  }
  if (number >= 28591 && number <= 28599) return "ISO-8859-" + std::to_string(number - 28590);
  return "CP" + std::to_string(number);
}

[[noreturn]] void RaiseUnknown(std::string_view what) {
  automation::RaiseMessage(automation::err::kInvalidCall,
                           "Unknown code page: " + std::string(what));
}

// One iconv conversion descriptor, for one call on one thread.
class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : cd_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (ok()) iconv_close(cd_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  bool ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }

  // Converts as much of input as it can into out (replacing out). Returns the number of input
  // bytes consumed; error is 0 when all were, else EILSEQ (bad sequence at the stop) or EINVAL
  // (a sequence cut short by the end of input). Characters held back by a stateful converter
  // are flushed, so out is complete for the consumed bytes.
  std::size_t Convert(std::string_view input, std::string& out, int& error) {
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    out.resize(input.size() * 2 + 16);
    char* in = const_cast<char*>(input.data());
    std::size_t inLeft = input.size();
    std::size_t used = 0;
    error = 0;
    for (;;) {
      char* outPtr = out.data() + used;
      std::size_t outLeft = out.size() - used;
      const std::size_t result = iconv(cd_, &in, &inLeft, &outPtr, &outLeft);
      used = out.size() - outLeft;
      if (result != static_cast<std::size_t>(-1)) break;
      if (errno == E2BIG) {
        out.resize(out.size() * 2);
        continue;
      }
      error = errno;
      break;
    }
    for (;;) {
      char* outPtr = out.data() + used;
      std::size_t outLeft = out.size() - used;
      const std::size_t result = iconv(cd_, nullptr, nullptr, &outPtr, &outLeft);
      used = out.size() - outLeft;
      if (result == static_cast<std::size_t>(-1) && errno == E2BIG) {
        out.resize(out.size() * 2);
        continue;
      }
      break;
    }
    out.resize(used);
    return input.size() - inLeft;
  }

 private:
  iconv_t cd_;
};

// Decoding state of one Decode call: a decoder and the encoder that checks each result.
class IconvDecoder {
 public:
  explicit IconvDecoder(const std::string& name) : decode_("UTF-8", name), encode_(name, "UTF-8") {}
  bool ok() const { return decode_.ok() && encode_.ok(); }

  // Whether text (decoded from bytes) encodes back to exactly bytes.
  bool RoundTrips(std::string_view bytes, std::string_view text) {
    if (HoldsEscape(text)) return false;
    int error = 0;
    const std::size_t used = encode_.Convert(text, check_, error);
    return error == 0 && used == text.size() && check_ == bytes;
  }

  // Decodes the one character at the start of bytes, or escapes its first byte. Returns the
  // number of bytes taken.
  std::size_t DecodeOne(std::string_view bytes, std::string& out) {
    const std::size_t longest = std::min<std::size_t>(4, bytes.size());
    for (std::size_t length = 1; length <= longest; ++length) {
      const std::string_view candidate = bytes.substr(0, length);
      int error = 0;
      const std::size_t used = decode_.Convert(candidate, piece_, error);
      if (error == EILSEQ) break;
      if (error == 0 && used == length && !piece_.empty() && RoundTrips(candidate, piece_)) {
        out += piece_;
        return length;
      }
    }
    AppendEscape(out, static_cast<unsigned char>(bytes[0]));
    return 1;
  }

  void DecodeEach(std::string_view bytes, std::string& out) {
    std::size_t pos = 0;
    while (pos < bytes.size())
      pos += DecodeOne(bytes.substr(pos), out);
  }

  Converter& decoder() { return decode_; }

 private:
  Converter decode_;
  Converter encode_;
  std::string piece_;
  std::string check_;
};

struct CodePageState {
  std::mutex mutex;
  std::map<int, std::unique_ptr<CodePage>> pages;
  std::map<int, bool> known;
  std::optional<int> current;
  std::optional<int> detected;
};

CodePageState& State() {
  static CodePageState state;
  return state;
}

}  // namespace

// Eight bytes at a time: source files are long, and mostly ASCII.
bool IsAscii(std::string_view bytes) {
  constexpr uint64_t kHighBits = 0x8080808080808080ULL;
  const char* p = bytes.data();
  std::size_t left = bytes.size();
  uint64_t any = 0;
  for (; left >= 8; p += 8, left -= 8) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    any |= word;
  }
  for (; left > 0; ++p, --left)
    any |= static_cast<unsigned char>(*p);
  return (any & kHighBits) == 0;
}

CodePage::CodePage(int number) : number_(number) {
  if (number == kWindows1252) return;
  iconvName_ = IconvName(number);
  if (iconvName_.empty()) RaiseUnknown(std::to_string(number));
  IconvDecoder decoder(iconvName_);
  if (!decoder.ok()) RaiseUnknown(std::to_string(number));
  // Most code pages keep ASCII as it is; those that do let pure-ASCII text skip iconv.
  for (int b = 0; b < 0x80 && asciiCompatible_; ++b) {
    const char byte = static_cast<char>(b);
    std::string out;
    int error = 0;
    decoder.decoder().Convert(std::string_view(&byte, 1), out, error);
    asciiCompatible_ = error == 0 && out.size() == 1 && out[0] == byte;
  }
}

std::string CodePage::Decode(std::string_view bytes) const {
  if (asciiCompatible_ && IsAscii(bytes)) return std::string(bytes);
  if (!iconvName_.empty()) return DecodeWithIconv(bytes);

  const Utf8Of1252& table = Table1252();
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 4);
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    std::size_t run = pos;
    while (run < bytes.size() && static_cast<unsigned char>(bytes[run]) < 0x80)
      ++run;
    out.append(bytes.data() + pos, run - pos);
    pos = run;
    while (pos < bytes.size() && static_cast<unsigned char>(bytes[pos]) >= 0x80) {
      const int index = static_cast<unsigned char>(bytes[pos]) - 0x80;
      out.append(table.bytes[index].data(), table.length[index]);
      ++pos;
    }
  }
  return out;
}

bool CodePage::DecodesToItself(std::string_view bytes) const {
  return asciiCompatible_ && IsAscii(bytes);
}

std::string CodePage::DecodeWithIconv(std::string_view bytes) const {
  // Whole blocks go through iconv at once and are checked by encoding them back; only a block
  // that does not come back identical, and the place where iconv stops, are taken one
  // character at a time.
  constexpr std::size_t kBlock = 4096;
  IconvDecoder decoder(iconvName_);
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 2);
  std::string piece;
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    const std::size_t blockEnd = std::min(bytes.size(), pos + kBlock);
    const std::string_view block = bytes.substr(pos, blockEnd - pos);
    int error = 0;
    const std::size_t used = decoder.decoder().Convert(block, piece, error);
    if (used > 0) {
      const std::string_view done = block.substr(0, used);
      if (decoder.RoundTrips(done, piece)) {
        out += piece;
      } else {
        decoder.DecodeEach(done, out);
      }
      pos += used;
    }
    if (error == 0) continue;
    // A character cut by the end of the block is read again with the next block.
    if (error == EINVAL && blockEnd < bytes.size() && used > 0) continue;
    pos += decoder.DecodeOne(bytes.substr(pos), out);
  }
  return out;
}

std::string CodePage::Encode(std::string_view text) const {
  if (asciiCompatible_ && IsAscii(text)) return std::string(text);
  if (!iconvName_.empty()) return EncodeWithIconv(text);

  std::string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (pos < text.size()) {
    const unsigned char c = static_cast<unsigned char>(text[pos]);
    if (c < 0x80) {
      out += static_cast<char>(c);
      ++pos;
      continue;
    }
    const std::size_t start = pos;
    const char32_t cp = utf8::Next(text, pos);
    if (cp == utf8::kInvalid) {
      automation::Raise(automation::err::kInvalidCall,
                        "the text is not valid UTF-8 at byte " + std::to_string(start));
    }
    if (cp >= kByteEscapeBase && cp <= kByteEscapeBase + 0xFF) {
      out += static_cast<char>(cp - kByteEscapeBase);
      continue;
    }
    const int byte = Encode1252(cp);
    if (byte < 0) {
      automation::Raise(automation::err::kInvalidCall,
                        "the character " + utf8::CodePointName(cp) + " '" +
                            std::string(text.substr(start, pos - start)) +
                            "' cannot be written in code page 1252");
    }
    out += static_cast<char>(byte);
  }
  return out;
}

std::string CodePage::EncodeWithIconv(std::string_view text) const {
  Converter encoder(iconvName_, "UTF-8");
  std::string out;
  out.reserve(text.size());
  std::string piece;
  std::size_t pos = 0;
  while (pos < text.size()) {
    // The run up to the next escape character goes through iconv in one call.
    std::size_t runEnd = text.find('\xF4', pos);
    while (runEnd != std::string_view::npos && !EscapeAt(text, runEnd)) {
      runEnd = text.find('\xF4', runEnd + 1);
    }
    if (runEnd == std::string_view::npos) runEnd = text.size();
    const std::string_view run = text.substr(pos, runEnd - pos);
    int error = 0;
    const std::size_t used = encoder.Convert(run, piece, error);
    out += piece;
    if (error != 0) {
      std::size_t at = pos + used;
      const std::size_t start = at;
      const char32_t cp = utf8::Next(text, at);
      if (cp == utf8::kInvalid) {
        automation::Raise(automation::err::kInvalidCall,
                          "the text is not valid UTF-8 at byte " + std::to_string(start));
      }
      automation::Raise(automation::err::kInvalidCall,
                        "the character " + utf8::CodePointName(cp) + " '" +
                            std::string(text.substr(start, at - start)) +
                            "' cannot be written in code page " + std::to_string(number_));
    }
    pos = runEnd;
    if (pos < text.size()) {
      out += static_cast<char>(*EscapeAt(text, pos));
      pos += 4;
    }
  }
  return out;
}

bool IsKnownCodePage(int number) {
  if (number == kWindows1252) return true;
  CodePageState& state = State();
  {
    std::lock_guard lock(state.mutex);
    if (auto it = state.known.find(number); it != state.known.end()) return it->second;
  }
  const std::string name = IconvName(number);
  bool known = false;
  if (!name.empty()) {
    Converter decode("UTF-8", name);
    Converter encode(name, "UTF-8");
    known = decode.ok() && encode.ok();
  }
  std::lock_guard lock(state.mutex);
  state.known[number] = known;
  return known;
}

const CodePage& GetCodePage(int number) {
  CodePageState& state = State();
  {
    std::lock_guard lock(state.mutex);
    if (auto it = state.pages.find(number); it != state.pages.end()) return *it->second;
  }
  auto page = std::make_unique<CodePage>(number);
  std::lock_guard lock(state.mutex);
  auto [it, inserted] = state.pages.emplace(number, std::move(page));
  return *it->second;
}

namespace {

// The number in $QX_CODEPAGE, if it holds one; raises 5 for text that is not a number.
std::optional<int> EnvironmentCodePage() {
  const char* env = std::getenv("QX_CODEPAGE");
  if (env == nullptr || *env == '\0') return std::nullopt;
  const std::string_view text(env);
  int value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) RaiseUnknown(text);
  return value;
}

}  // namespace

const CodePage& CurrentCodePage() {
  CodePageState& state = State();
  std::optional<int> number;
  std::optional<int> detected;
  {
    std::lock_guard lock(state.mutex);
    number = state.current;
    detected = state.detected;
  }
  if (!number) number = EnvironmentCodePage();
  if (!number) number = detected;
  if (!number) return GetCodePage(kWindows1252);
  if (!IsKnownCodePage(*number)) RaiseUnknown(std::to_string(*number));
  return GetCodePage(*number);
}

CodePageSource CurrentCodePageSource() {
  CodePageState& state = State();
  {
    std::lock_guard lock(state.mutex);
    if (state.current) return CodePageSource::Option;
  }
  const char* env = std::getenv("QX_CODEPAGE");
  if (env != nullptr && *env != '\0') return CodePageSource::Environment;
  std::lock_guard lock(state.mutex);
  return state.detected ? CodePageSource::Detected : CodePageSource::Default;
}

namespace {

// Sets or clears one of the two code pages a run keeps (the option's, the detected one).
void Keep(std::optional<int> CodePageState::*slot, std::optional<int> number) {
  if (number && !IsKnownCodePage(*number)) RaiseUnknown(std::to_string(*number));
  CodePageState& state = State();
  std::lock_guard lock(state.mutex);
  state.*slot = number;
}

}  // namespace

void SetCurrentCodePage(int number) {
  Keep(&CodePageState::current, number);
}

void ClearCurrentCodePage() {
  Keep(&CodePageState::current, std::nullopt);
}

void SetDetectedCodePage(int number) {
  Keep(&CodePageState::detected, number);
}

void ClearDetectedCodePage() {
  Keep(&CodePageState::detected, std::nullopt);
}

}  // namespace platform
