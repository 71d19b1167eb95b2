#include "platform/registry_file.h"

#include <array>
#include <cstdint>
#include <map>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/lines.h"
#include "platform/text.h"

namespace platform {
namespace {

struct Hive {
  std::string_view longName;
  std::string_view shortName;
};

constexpr std::array<Hive, 6> kHives = {{{"HKEY_CLASSES_ROOT", "HKCR"},
                                         {"HKEY_CURRENT_USER", "HKCU"},
                                         {"HKEY_LOCAL_MACHINE", "HKLM"},
                                         {"HKEY_USERS", "HKU"},
                                         {"HKEY_CURRENT_CONFIG", "HKCC"},
                                         {"HKEY_DYN_DATA", ""}}};

bool IsHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

class Parser {
 public:
  Parser(std::string_view text, std::string_view fileName) : text_(text), fileName_(fileName) {}

  RegistryFile Run() {
    if (text_.substr(0, 3) == "\xEF\xBB\xBF") text_.remove_prefix(3);
    LineReader reader(text_);
    std::string_view line;
    bool sawHeader = false;
    while (reader.Next(line)) {
      ++lineNumber_;
      std::string_view trimmed = TrimBlanks(line);
      if (trimmed.empty()) continue;
      if (!sawHeader) {
        if (trimmed != "REGEDIT4") Fail("the first line must be REGEDIT4");
        sawHeader = true;
        continue;
      }
      if (trimmed.front() == ';') {
        pending_.emplace_back(trimmed);
        continue;
      }
      if (trimmed.front() == '[') {
        Key(trimmed);
        continue;
      }
      // A hex value may continue on the following lines, each ending in a backslash.
      std::string joined(trimmed);
      while (joined.back() == '\\' && IsHexValue(joined) && reader.Next(line)) {
        ++lineNumber_;
        joined.pop_back();
        joined += TrimBlanks(line);
      }
      Value(joined);
    }
    if (!sawHeader) Fail("the file is empty; it must begin with REGEDIT4");
    file_.trailingComments = std::move(pending_);
    return std::move(file_);
  }

 private:
  [[noreturn]] void Fail(std::string_view what) const {
    automation::Raise(automation::err::kInvalidCall, std::string(fileName_) + ", line " +
                                                         std::to_string(lineNumber_) + ": " +
                                                         std::string(what));
  }

  static bool IsHexValue(std::string_view line) {
    const auto equals = line.find("=hex");
    return equals != std::string_view::npos;
  }

  void Key(std::string_view line) {
    if (line.back() != ']') Fail("a key line must end with ]");
    const std::string_view inner = line.substr(1, line.size() - 2);
    if (!inner.empty() && inner.front() == '-') Fail("removing keys ([-...]) is not supported");
    std::string path = NormalizeKeyPath(inner);
    if (path.empty()) {
      Fail("unknown root key in [" + std::string(inner) +
           "]; use HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE or HKEY_USERS");
    }
    std::string folded = automation::FoldCaseUnicode(path);
    auto [it, inserted] = index_.emplace(std::move(folded), file_.keys.size());
    if (inserted) file_.keys.push_back({std::move(path), {}, {}});
    current_ = &file_.keys[it->second];
    for (auto& comment : pending_)
      current_->comments.push_back(std::move(comment));
    pending_.clear();
  }

  // Reads a quoted string starting at text[pos] == '"'; leaves pos after the closing quote.
  std::string Quoted(std::string_view text, std::size_t& pos) const {
    std::string out;
    for (++pos; pos < text.size(); ++pos) {
      const char c = text[pos];
      if (c == '"') {
        ++pos;
        return out;
      }
      // \\ and \" are escapes; a backslash before anything else is kept, which forgives hand
      // edits like "c:\tools".
      if (c == '\\' && pos + 1 < text.size() && (text[pos + 1] == '\\' || text[pos + 1] == '"')) {
        out += text[++pos];
      } else {
        out += c;
      }
    }
    Fail("a string has no closing double quote");
  }

  void Value(std::string_view line) {
    if (current_ == nullptr) Fail("a value comes before the first [key] line");
    RegistryValue value;
    std::size_t pos = 0;
    if (line.front() == '@') {
      pos = 1;
    } else if (line.front() == '"') {
      value.name = Quoted(line, pos);
    } else {
      Fail("a value line must begin with \"name\" or @, a key line with [");
    }
    std::string_view rest = TrimBlanks(line.substr(pos));
    if (rest.empty() || rest.front() != '=') Fail("\"=\" expected after the value name");
    rest = TrimBlanks(rest.substr(1));
    if (!rest.empty() && rest.front() == '"') {
      std::size_t end = 0;
      value.data = Quoted(rest, end);
      if (!TrimBlanks(rest.substr(end)).empty()) Fail("text after the closing double quote");
    } else if (rest.substr(0, 6) == "dword:") {
      const std::string_view digits = rest.substr(6);
      if (digits.empty() || digits.size() > 8) Fail("a dword value needs 1 to 8 hex digits");
      for (char c : digits) {
        if (!IsHex(c)) Fail("a dword value needs 1 to 8 hex digits");
      }
      value.kind = RegistryValue::Kind::kDword;
      value.data = rest;
    } else if (rest.substr(0, 3) == "hex") {
      value.kind = RegistryValue::Kind::kOther;
      value.data = rest;
    } else if (rest == "-") {
      Fail("removing values (=-) is not supported");
    } else {
      Fail("a value must be a \"quoted string\", dword:0000001f or hex:...");
    }
    value.comments = std::move(pending_);
    pending_.clear();
    for (auto& existing : current_->values) {
      if (automation::EqualsNoCaseUnicode(existing.name, value.name)) {
        existing = std::move(value);
        return;
      }
    }
    current_->values.push_back(std::move(value));
  }

  std::string_view text_;
  std::string_view fileName_;
  int lineNumber_ = 0;
  RegistryFile file_;
  RegistryKeyEntry* current_ = nullptr;
  std::vector<std::string> pending_;
  std::map<std::string, std::size_t> index_;
};

void AppendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (char c : text) {
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  out += '"';
}

}  // namespace

std::string NormalizeKeyPath(std::string_view keyPath) {
  std::string out;
  std::size_t pos = 0;
  bool first = true;
  while (pos <= keyPath.size()) {
    std::size_t end = keyPath.find('\\', pos);
    if (end == std::string_view::npos) end = keyPath.size();
    const std::string_view part = TrimBlanks(keyPath.substr(pos, end - pos));
    pos = end + 1;
    if (part.empty()) continue;
    if (first) {
      first = false;
      const Hive* hive = nullptr;
      for (const Hive& h : kHives) {
        if (automation::EqualsNoCaseUnicode(part, h.longName) ||
            (!h.shortName.empty() && automation::EqualsNoCaseUnicode(part, h.shortName))) {
          hive = &h;
        }
      }
      if (hive == nullptr) return {};
      out = hive->longName;
      continue;
    }
    out += '\\';
    out += part;
  }
  return out;
}

RegistryFile ParseRegistryFile(std::string_view text, std::string_view fileName) {
  return Parser(text, fileName).Run();
}

std::string FormatRegistryFile(const RegistryFile& file) {
  std::string out = "REGEDIT4\n\n";
  for (const RegistryKeyEntry& key : file.keys) {
    for (const auto& comment : key.comments)
      out += comment + "\n";
    out += "[" + key.path + "]\n";
    for (const RegistryValue& value : key.values) {
      for (const auto& comment : value.comments)
        out += comment + "\n";
      if (value.name.empty()) {
        out += '@';
      } else {
        AppendQuoted(out, value.name);
      }
      out += '=';
      if (value.kind == RegistryValue::Kind::kString) {
        AppendQuoted(out, value.data);
      } else {
        out += value.data;
      }
      out += '\n';
    }
    out += '\n';
  }
  for (const auto& comment : file.trailingComments)
    out += comment + "\n";
  return out;
}

std::string DwordText(std::string_view data) {
  if (data.substr(0, 6) == "dword:") data.remove_prefix(6);
  std::uint32_t value = 0;
  for (char c : data) {
    const int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
    value = value * 16 + static_cast<std::uint32_t>(digit);
  }
  return std::to_string(value);
}

}  // namespace platform
