#include "host/launch.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>

#include "platform/paths.h"

extern char** environ;

namespace host {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool StartsWithDrive(std::string_view word) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return word.size() >= 3 && isLetter(word[0]) && word[1] == ':' &&
         (word[2] == '\\' || word[2] == '/');
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view line) {
  std::vector<std::string> words;
  size_t i = 0;
  while (i < line.size() && IsBlank(line[i]))
    ++i;
  if (i == line.size()) return words;

  // The program: quotes group, backslashes are path separators.
  std::string program;
  if (line[i] == '"') {
    const size_t close = line.find('"', i + 1);
    program = line.substr(i + 1, close == std::string_view::npos ? close : close - i - 1);
    i = close == std::string_view::npos ? line.size() : close + 1;
  } else {
    while (i < line.size() && !IsBlank(line[i]))
      program += line[i++];
  }
  words.push_back(std::move(program));

  for (;;) {
    while (i < line.size() && IsBlank(line[i]))
      ++i;
    if (i == line.size()) break;
    std::string word;
    bool quoted = false;
    while (i < line.size() && (quoted || !IsBlank(line[i]))) {
      if (line[i] == '\\') {
        size_t slashes = 0;
        while (i < line.size() && line[i] == '\\') {
          ++slashes;
          ++i;
        }
        if (i < line.size() && line[i] == '"') {
          word.append(slashes / 2, '\\');
          if (slashes % 2 == 1) {
            word += '"';
            ++i;
          }
        } else {
          word.append(slashes, '\\');
        }
      } else if (line[i] == '"') {
        if (quoted && i + 1 < line.size() && line[i + 1] == '"') {
          word += '"';
          i += 2;
        } else {
          quoted = !quoted;
          ++i;
        }
      } else {
        word += line[i++];
      }
    }
    words.push_back(std::move(word));
  }
  return words;
}

pid_t StartDetached(std::string_view commandLine) {
  std::vector<std::string> words = SplitCommandLine(commandLine);
  if (words.empty() || words[0].empty()) return -1;
  words[0] = platform::ToNative(words[0]).string();
  for (size_t i = 1; i < words.size(); ++i) {
    if (StartsWithDrive(words[i])) words[i] = platform::ToNative(words[i]).string();
  }
  std::vector<char*> argv;
  for (auto& word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  // A session of its own (no terminal, not in the caller's process group), no blocked signals,
  // and the default handling of the signals whose "ignore" would be inherited (the event loop
  // ignores SIGPIPE).
  sigset_t inherited;
  sigset_t none;
  sigemptyset(&inherited);
  sigaddset(&inherited, SIGPIPE);
  sigaddset(&inherited, SIGCHLD);
  sigemptyset(&none);
  posix_spawnattr_setsigdefault(&attributes, &inherited);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  pid_t pid = -1;
  const int failed = ::posix_spawn(&pid, argv[0], &actions, &attributes, argv.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return failed ? -1 : pid;
}

}  // namespace host
