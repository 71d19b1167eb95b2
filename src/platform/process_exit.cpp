#include "platform/process_exit.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/descriptor.h"

namespace platform {

std::optional<bool> WaitForExit(pid_t pid, std::chrono::milliseconds limit) {
  // The system call itself: the C library's declaration of it lacks C linkage in C++.
  const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  if (process.get() < 0) {
    if (errno == ESRCH) return true;
    return std::nullopt;
  }
  using Clock = std::chrono::steady_clock;
  const Clock::time_point deadline = Clock::now() + limit;
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd ready{process.get(), POLLIN, 0};
    const int count = ::poll(&ready, 1, static_cast<int>(std::max<int64_t>(left.count(), 0)));
    if (count > 0) return true;
    if (count == 0) return false;
    if (errno != EINTR) return std::nullopt;
  }
}

}  // namespace platform
