#pragma once
// The other process of a call: whether it can still answer, and how long a call waits for it.
//
// A call into another process waits for its answer while serving calls into this one (see
// apartment.h). A peer that has ended breaks the connection and the call fails with 462 at
// once; one that is stopped (SIGSTOP, a debugger) or busy for ever keeps the socket open and
// would keep the caller waiting for ever. So every wait for an answer is watched: the call
// fails with 462 once the peer has been stopped for kStoppedGrace, or when it has not answered
// within the call time-out (QX_CALL_TIMEOUT_SECONDS, default kDefaultCallTimeout; 0: none).
// A peer found so is not called again by this process: later calls to it fail at once, unless
// it was stopped and runs again (a Ctrl-Z and fg).

#include <chrono>
#include <optional>
#include <string>

#include <kj/async.h>

#include "automation/apartment.h"
#include "automation/error.h"

namespace automation {

enum class ProcessState { Running, Stopped, Gone };

// The state of a process as /proc shows it: stopped or traced is Stopped, a zombie is Gone.
ProcessState StateOf(long pid);

inline constexpr std::chrono::seconds kDefaultCallTimeout{120};
inline constexpr const char* kCallTimeoutVariable = "QX_CALL_TIMEOUT_SECONDS";
inline constexpr std::chrono::milliseconds kStoppedGrace{1000};

// The call time-out from the environment; 0 for none. Raises 5 for a value that is no whole
// number of seconds.
std::chrono::seconds CallTimeout();

// The error of a peer that this process found unable to answer and that still cannot: one found
// stopped that runs again is forgotten.
std::optional<Error> Unresponsive(long pid);

// Watches one wait for an answer from the process.
class PeerWatch {
 public:
  explicit PeerWatch(long pid);
  // Nothing while the peer may still answer; else the error of the call (and the peer is
  // remembered as unable to answer).
  std::optional<Error> Check();

 private:
  long pid_;
  std::chrono::seconds timeout_;
  std::chrono::steady_clock::time_point deadline_;
  std::optional<std::chrono::steady_clock::time_point> stoppedSince_;
};

namespace detail {
inline constexpr std::chrono::milliseconds kWatchStep{100};

template <class T>
kj::Promise<T> WatchLoop(PeerWatch& watch, std::optional<Error>& failure) {
  constexpr auto step = std::chrono::duration_cast<std::chrono::nanoseconds>(kWatchStep).count();
  return Apartment::Get()
      .Io()
      .getTimer()
      .afterDelay(step * kj::NANOSECONDS)
      .then([&watch, &failure]() -> kj::Promise<T> {
        if ((failure = watch.Check())) return KJ_EXCEPTION(DISCONNECTED, "no answer");
        return WatchLoop<T>(watch, failure);
      });
}
}  // namespace detail

// Serves calls until the answer from process `pid` comes (see Apartment::Await), failing with
// the watch's 462 when the peer cannot answer. A pid of 0 or less is not watched.
template <class T>
T AwaitFrom(long pid, kj::Promise<T> promise) {
  if (pid <= 0) return Apartment::Get().Await(kj::mv(promise));
  if (std::optional<Error> known = Unresponsive(pid)) throw *known;
  PeerWatch watch(pid);
  std::optional<Error> failure;
  try {
    return Apartment::Get().Await(promise.exclusiveJoin(detail::WatchLoop<T>(watch, failure)));
  } catch (const kj::Exception&) {
    if (failure) throw *failure;
    throw;
  }
}

}  // namespace automation
