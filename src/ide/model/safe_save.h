#pragma once
// Writing a file the IDE loaded, without ever losing anyone's work.

#include <string>
#include <string_view>

namespace ide {

// Writes bytes over a file that was read as `asRead`, atomically. Refuses, leaving the file as
// it is, when the file is read-only (error 75 "Path/File access error", what VB6 raises when it
// cannot save over a read-only file) or when its contents are no longer what was read: someone
// changed it on disk since (error 75 too, saying so). A file that has disappeared meanwhile is
// written anew, which loses nothing. A file that already holds the bytes is left as it is.
void SaveOver(std::string_view path, std::string_view asRead, std::string_view bytes);

// What SaveOver refuses, checked without writing: for saves of two files that must both go.
void CheckSaveOver(std::string_view path, std::string_view asRead);

// Writes bytes to a file that the IDE did not load (SaveAs): only a read-only target is refused.
void SaveTo(std::string_view path, std::string_view bytes);

}  // namespace ide
