#pragma once
// The apartment: the one event loop of this process, on which it talks to other processes.
//
// There are no threads. Like a single-threaded COM apartment, the process serves the calls that
// other processes make into its objects whenever it waits: while it waits for the answer to its
// own call, while it waits for another process to start, and in a server's main loop. A call
// that arrives is queued as a job and run from the waiting loop (never from inside an event
// callback), so the code it runs may itself call out and wait again: the host calls the IDE,
// the IDE calls back into the host's problem log, the host answers that call while it is still
// waiting for its own.

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>

#include <kj/async-io.h>
#include <kj/debug.h>
#include <kj/exception.h>
#include <kj/function.h>

namespace automation {

class Apartment {
 public:
  // The apartment of this process, made on first use; it lives until the process exits, so
  // object references to other processes can be dropped at any time, even at exit.
  static Apartment& Get();

  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  // A number naming this apartment among all apartments of the machine (random, not reused).
  uint64_t Id() const { return id_; }

  kj::AsyncIoProvider& Io() { return *io_.provider; }
  kj::WaitScope& WaitScope() { return io_.waitScope; }

  // Queues a job: the work of an incoming call. It runs when the apartment next serves. Jobs
  // must not throw.
  void Post(kj::Function<void()> job);

  // Serves calls until the promise settles and returns its value; a failed promise throws its
  // kj::Exception.
  template <class T>
  T Await(kj::Promise<T> promise);
  void Await(kj::Promise<void> promise);

  // Serves calls for this long.
  void ServeFor(std::chrono::milliseconds duration);
  // Serves calls for this long, or until a call it serves sets `stop` (a request to end, which
  // is then answered at once rather than at the end of the period).
  void ServeFor(std::chrono::milliseconds duration, const bool& stop);

  // Work for the time the process has nothing else to do: while its main loop serves
  // (ServeFor with a stop flag, not a wait inside a call or for another process) and no call is
  // queued or arriving, `step` runs, one step at a time, until it answers false. A call that
  // arrives waits for at most the step in progress. One piece of idle work at a time: setting it
  // replaces the last; an empty function removes it.
  void SetIdleWork(std::function<bool()> step);

  // Serves calls until `done` answers true (asked at least every `step`, and as soon as `wake`,
  // a descriptor, turns readable, when one is given) or the deadline passes; true when done.
  // `done` takes whatever makes `wake` readable, or it is asked again only at the next step.
  bool ServeUntil(const std::function<bool()>& done, std::chrono::steady_clock::time_point deadline,
                  std::chrono::milliseconds step = std::chrono::milliseconds(20), int wake = -1);

 private:
  Apartment();

  // Runs jobs and waits for events until `done` (or `stop`, when given) is true.
  void Serve(const bool& done, const bool* stop = nullptr);
  void Wake();

  kj::AsyncIoContext io_;
  uint64_t id_;
  std::deque<kj::Function<void()>> jobs_;
  std::function<bool()> idle_;
  int serving_ = 0;  // how deep Serve is nested: idle work runs at the outermost only
  kj::Own<kj::PromiseFulfiller<void>> wake_;
};

// A peer process that went away shows in our calls as 462. Cap'n Proto also logs the broken
// connection on standard error when a write finds it closed; that line would read as a fault of
// ours to a user, so while one of these lives it is dropped. Every other log line of kj goes on
// as before. kj wants it on the stack: a program makes one at the top of main.
class QuietDisconnections final : public kj::ExceptionCallback {
 public:
  void logMessage(kj::LogSeverity severity, const char* file, int line, int contextDepth,
                  kj::String&& text) override;
};

// GCC 12 sees the flags that the callbacks set through kj's inlined promise nodes and wrongly
// thinks they may be read before they are set (clang knows no such warning).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
template <class T>
T Apartment::Await(kj::Promise<T> promise) {
  kj::Maybe<T> value;
  kj::Maybe<kj::Exception> failure;
  bool done = false;
  kj::Promise<void> watch = promise
                                .then(
                                    [&](T&& result) {
                                      value = kj::mv(result);
                                      done = true;
                                      Wake();
                                    },
                                    [&](kj::Exception&& e) {
                                      failure = kj::mv(e);
                                      done = true;
                                      Wake();
                                    })
                                .eagerlyEvaluate(nullptr);
  Serve(done);
  KJ_IF_MAYBE (e, failure) {
    kj::throwFatalException(kj::mv(*e));
  }
  KJ_IF_MAYBE (result, value) {
    return kj::mv(*result);
  }
  kj::throwFatalException(KJ_EXCEPTION(FAILED, "a call ended with neither a result nor a failure"));
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

}  // namespace automation
