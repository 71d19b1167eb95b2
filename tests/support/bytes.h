#pragma once
// Files read and written byte for byte, a folder's files with their bytes, and the little-endian
// numbers of VB6's binary records.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

namespace qxtest {

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Writes a file of exactly these bytes, making its folder first.
inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Every file under a folder with its bytes, by path relative to the folder.
inline std::map<std::string, std::string> Snapshot(const std::filesystem::path& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
    if (entry.is_regular_file()) {
      files[std::filesystem::relative(entry.path(), dir).string()] = ReadBytes(entry.path());
    }
  }
  return files;
}

// How many times a word stands in a text, overlapping ones included.
inline size_t Occurrences(std::string_view text, std::string_view word) {
  size_t count = 0;
  for (size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1))
    ++count;
  return count;
}

inline std::string Le16(uint32_t value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
}

inline std::string Le32(uint32_t value) {
  return Le16(value & 0xFFFF) + Le16(value >> 16);
}

}  // namespace qxtest
