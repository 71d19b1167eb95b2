#pragma once
// What the fuzz targets share: stopping on a broken promise, and the code pages to read with.

#include <cstdio>
#include <cstdlib>

#include "platform/codepage.h"

namespace qxfuzz {

// A promise of the code was broken: report and stop, so that libFuzzer keeps the input.
#define QX_FUZZ_CHECK(condition)                                                         \
  do {                                                                                   \
    if (!(condition)) {                                                                  \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                      \
    }                                                                                    \
  } while (false)

// The built-in Windows-1252 or, chosen by the input, a multi-byte one through iconv.
inline const platform::CodePage& CodePageFor(unsigned char selector) {
  return platform::GetCodePage((selector & 0x80) != 0 ? 932 : 1252);
}

}  // namespace qxfuzz
