#include "ide/form/companion_reference.h"

#include <cstdio>

namespace ide {

std::optional<CompanionReference> ParseCompanionReference(std::string_view value) {
  CompanionReference reference;
  std::size_t at = 0;
  if (at < value.size() && value[at] == '$') {
    reference.longString = true;
    ++at;
  }
  if (at >= value.size() || value[at] != '"') return std::nullopt;
  const std::size_t close = value.find('"', at + 1);
  if (close == std::string_view::npos || close == at + 1) return std::nullopt;
  reference.fileName = std::string(value.substr(at + 1, close - at - 1));
  at = close + 1;
  if (at >= value.size() || value[at] != ':') return std::nullopt;
  ++at;
  uint64_t offset = 0;
  std::size_t digits = 0;
  for (; at < value.size(); ++at, ++digits) {
    const char c = value[at];
    int digit = 0;
    if (c >= '0' && c <= '9') {
      digit = c - '0';
    } else if (c >= 'A' && c <= 'F') {
      digit = c - 'A' + 10;
    } else if (c >= 'a' && c <= 'f') {
      digit = c - 'a' + 10;
    } else {
      break;
    }
    offset = offset * 16 + static_cast<uint64_t>(digit);
    if (offset > UINT32_MAX) return std::nullopt;
  }
  if (digits == 0) return std::nullopt;
  for (; at < value.size(); ++at)
    if (value[at] != ' ' && value[at] != '\t') return std::nullopt;
  reference.offset = static_cast<uint32_t>(offset);
  return reference;
}

std::string FormatCompanionReference(const CompanionReference& reference) {
  std::string text;
  if (reference.longString) text += '$';
  text += '"';
  text += reference.fileName;
  text += "\":";
  text += FormatCompanionOffset(reference.offset);
  return text;
}

std::string FormatCompanionOffset(uint32_t offset) {
  char buffer[16];
  const int length = std::snprintf(buffer, sizeof buffer, "%04X", static_cast<unsigned>(offset));
  return std::string(buffer, static_cast<std::size_t>(length));
}

std::string_view CompanionExtension(FileKind kind) {
  switch (kind) {
    case FileKind::kForm:
      return ".frx";
    case FileKind::kUserControl:
      return ".ctx";
    case FileKind::kPropertyPage:
      return ".pgx";
    case FileKind::kUserDocument:
      return ".dox";
    case FileKind::kDesigner:
      return ".dsx";
    case FileKind::kModule:
    case FileKind::kClass:
      break;
  }
  return {};
}

std::string CompanionFileName(std::string_view componentFileName, FileKind kind) {
  const std::string_view extension = CompanionExtension(kind);
  if (extension.empty()) return {};
  const std::size_t slash = componentFileName.find_last_of("\\/");
  std::string_view name =
      slash == std::string_view::npos ? componentFileName : componentFileName.substr(slash + 1);
  const std::size_t dot = name.rfind('.');
  if (dot != std::string_view::npos) name = name.substr(0, dot);
  std::string result(name);
  result += extension;
  return result;
}

}  // namespace ide
