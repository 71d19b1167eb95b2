#pragma once
// Folders that hold one user's state: the qx home and what is under it, and scratch folders.
// They are made 0700 and their files 0600 whatever the umask, and a state folder that another
// user owns or may write is refused: whoever can write there could put a program in the
// registry's open command, or a socket where the IDE is looked for.

#include <filesystem>
#include <string_view>

namespace platform {

// Creates the folder, and every missing folder above it, with mode 0700 (the umask may only
// take bits away). Raises as the system refuses.
void CreatePrivateFolders(const std::filesystem::path& folder);

// Refuses (error 70, naming the folder and what to do) a folder that another user owns or that
// others may write; `what` names it in the message ("qx home").
void CheckPrivateFolder(const std::filesystem::path& folder, std::string_view what);

// Whether a file or folder is state of the qx home, so private: under the qx home folder.
bool IsPrivateState(const std::filesystem::path& path);

// A new folder of a fresh name under `parent`, mode 0700, made by mkdtemp: nobody else can have
// put anything there, or guessed its name beforehand. The name starts with the prefix.
std::filesystem::path MakeTempFolder(const std::filesystem::path& parent, std::string_view prefix);

}  // namespace platform
