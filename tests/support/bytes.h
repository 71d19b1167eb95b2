#pragma once
// Files read and written byte for byte, and the little-endian numbers of VB6's binary records.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
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

inline std::string Le16(uint32_t value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
}

inline std::string Le32(uint32_t value) {
  return Le16(value & 0xFFFF) + Le16(value >> 16);
}

}  // namespace qxtest
