#pragma once
// What a folder holds, by name ignoring case, without listing it again for each question.
// A project names thousands of files in one folder: each is looked up here when its letter case
// differs from the file's (ToNative), and a form's companions are the files beside it with its
// stem. Listing the folder for each made a run quadratic in the folder's size.
//
// A listing is used again while the folder's modification time stays the same, and kept only
// once that time lies before the file system's clock: a change within the same tick of that
// clock would not show in the time. A folder that has to be listed again (it changed, or had
// just changed) is followed from then on: an inotify watch on it reports each name added or
// removed since, which the listing takes in before it answers, so a file that another process
// made a moment ago (an IDE's save writing a new companion) is seen without a new listing. Each
// folder is so listed at most twice by a process, however often others change it.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The entry of `folder` whose name equals `name` ignoring case (Unicode case folding), the first
// in byte order where several fold alike; nothing when there is none or the folder cannot be
// read.
std::optional<std::string> EntryNoCase(const std::filesystem::path& folder, std::string_view name);

// The names of the entries of `folder` whose stem (the name without its last extension, as
// std::filesystem::path::stem takes it) equals `stem` ignoring case, in byte order.
std::vector<std::string> EntriesWithStem(const std::filesystem::path& folder,
                                         std::string_view stem);

}  // namespace platform
