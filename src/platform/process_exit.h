#pragma once
// Waiting for another process to end without looking again and again: a pidfd becomes readable
// when the process has exited (a zombie has), whether or not it is a child of this one.

#include <sys/types.h>

#include <chrono>
#include <optional>

namespace platform {

// True once the process has ended (or when there is no such process), false when `limit` ran out
// first; nothing when this system cannot watch a process so (no pidfd), for the caller to look by
// other means.
std::optional<bool> WaitForExit(pid_t pid, std::chrono::milliseconds limit);

}  // namespace platform
