#pragma once
// Which ANSI code page a project's files are in, read from the files themselves, for a run where
// neither --codepage nor $QX_CODEPAGE says. The project file and the text files of its components
// (forms, modules, classes, user controls, property pages, user documents, designers) are
// sampled: only their lines that hold a byte above 0x7F, and no more than a few hundred KB in
// all, so detection costs little on big projects. uchardet names the character set of the sample
// and it is mapped to the Windows code page of that language (874, 932, 936, 949, 950,
// 1250-1258; UTF-8 files give 65001). A project of plain ASCII stays 1252.
//
// A wrong guess changes no byte: reading and writing are lossless whatever the code page. It
// only decides how non-ASCII text and file names are shown and matched.

#include <cstddef>
#include <string_view>

#include "platform/codepage.h"

namespace platform {

struct DetectedCodePage {
  int number = 1252;
  // How sure the guess is, from 0 to 1: 1 for files of plain ASCII (every ANSI code page reads
  // them alike); else the share of the sampled non-ASCII bytes that the code page decodes, scaled
  // down when the sample holds fewer than 64 of them; 0 when nothing could be told and 1252 was
  // taken.
  double confidence = 1.0;
  std::size_t nonAsciiBytes = 0;  // how many bytes above 0x7F the sample held
};

// Detects the code page of the project whose project file (.vbp) this is. Never raises: a file
// that cannot be read adds nothing to the sample, and a project file that cannot be read gives
// 1252 with confidence 0, leaving the error to whoever reads it next.
DetectedCodePage DetectProjectCodePage(std::string_view projectFile);

// The code page a run uses for one project, and where it comes from.
struct ProjectCodePage {
  int number = 1252;
  CodePageSource source = CodePageSource::Default;
  double confidence = 1.0;        // of the detection; 1 for a code page given by the user
  std::size_t nonAsciiBytes = 0;  // of the detection's sample; 0 for a given code page
};

// The code page for the project from now on: the one given with --codepage or $QX_CODEPAGE, or
// else the one detected from its files, which becomes the current code page (SetDetectedCodePage)
// for the files of this project. Raises 5 when $QX_CODEPAGE names no code page.
ProjectCodePage UseProjectCodePage(std::string_view projectFile);

}  // namespace platform
