#pragma once
// Small helpers for the platform tests: bytes written and read directly, bypassing the shim,
// and the error a call raises.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "automation/error.h"

namespace platformtest {

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The VB error number a call raises, or 0 when it raises nothing.
template <typename F>
int ErrorNumber(F&& call) {
  try {
    call();
  } catch (const automation::Error& e) {
    return e.Number();
  }
  return 0;
}

// The description of the error a call raises, or "" when it raises nothing.
template <typename F>
std::string ErrorText(F&& call) {
  try {
    call();
  } catch (const automation::Error& e) {
    return e.Description();
  }
  return {};
}

}  // namespace platformtest
