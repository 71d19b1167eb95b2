#include "automation/apartment.h"

#include <kj/async-unix.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string_view>
#include <utility>

namespace automation {

Apartment& Apartment::Get() {
  // Never destroyed: proxies held in static tables are released at exit and still need the loop.
  static Apartment* apartment = new Apartment();
  return *apartment;
}

Apartment::Apartment() : io_(kj::setupAsyncIo()) {
  std::random_device random;
  id_ = (static_cast<uint64_t>(random()) << 32) ^ random();
  if (id_ == 0) id_ = 1;
}

void QuietDisconnections::logMessage(kj::LogSeverity severity, const char* file, int line,
                                     int contextDepth, kj::String&& text) {
  const std::string_view message(text.cStr(), text.size());
  const std::string_view first = message.substr(0, message.find('\n'));
  if (severity == kj::LogSeverity::ERROR && first.find("disconnected: ") != std::string_view::npos)
    return;
  next.logMessage(severity, file, line, contextDepth, kj::mv(text));
}

void Apartment::Post(kj::Function<void()> job) {
  jobs_.push_back(kj::mv(job));
  Wake();
}

void Apartment::Wake() {
  if (wake_.get() != nullptr) {
    wake_->fulfill();
    wake_ = nullptr;
  }
}

void Apartment::SetIdleWork(std::function<bool()> step) {
  idle_ = std::move(step);
}

void Apartment::Serve(const bool& done, const bool* stop) {
  ++serving_;
  struct Leave {
    int& serving;
    ~Leave() { --serving; }
  } leave{serving_};
  while (!done && (stop == nullptr || !*stop)) {
    if (!jobs_.empty()) {
      kj::Function<void()> job = kj::mv(jobs_.front());
      jobs_.pop_front();
      job();
      continue;
    }
    if (idle_ && stop != nullptr && serving_ == 1) {
      // What has arrived goes first; the idle work only once nothing has.
      io_.waitScope.poll();
      if (!jobs_.empty() || done || *stop) continue;
      // The step may set other idle work, or remove its own: the one that ran is done when it
      // says so and nothing replaced it.
      std::function<bool()> step = idle_;
      if (!step()) idle_ = nullptr;
      continue;
    }
    // A job or the settling of what the caller waits for fulfils this; a nested wait inside a
    // job replaces it, which is fine: this loop is not waiting while its job runs.
    auto paf = kj::newPromiseAndFulfiller<void>();
    wake_ = kj::mv(paf.fulfiller);
    paf.promise.wait(io_.waitScope);
  }
}

void Apartment::Await(kj::Promise<void> promise) {
  // The waiting of Await<T>, with a value that says only that the promise was kept.
  Await(promise.then([] { return true; }));
}

void Apartment::ServeFor(std::chrono::milliseconds duration) {
  const auto nanos = std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count();
  Await(io_.provider->getTimer().afterDelay(nanos * kj::NANOSECONDS));
}

void Apartment::ServeFor(std::chrono::milliseconds duration, const bool& stop) {
  const auto nanos = std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count();
  bool elapsed = false;
  kj::Promise<void> timer = io_.provider->getTimer()
                                .afterDelay(nanos * kj::NANOSECONDS)
                                .then([&] {
                                  elapsed = true;
                                  Wake();
                                })
                                .eagerlyEvaluate(nullptr);
  Serve(elapsed, &stop);
  // The answer to the call that asked to stop goes out before the caller of this ends anything.
  if (stop) io_.waitScope.poll();
}

bool Apartment::ServeUntil(const std::function<bool()>& done,
                           std::chrono::steady_clock::time_point deadline,
                           std::chrono::milliseconds step, int wake) {
  std::unique_ptr<kj::UnixEventPort::FdObserver> observer;
  if (wake >= 0) {
    observer = std::make_unique<kj::UnixEventPort::FdObserver>(
        io_.unixEventPort, wake, kj::UnixEventPort::FdObserver::OBSERVE_READ);
  }
  for (;;) {
    if (done()) return true;
    const auto now = std::chrono::steady_clock::now();
    if (now >= deadline) return false;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now);
    const auto nanos = std::chrono::duration_cast<std::chrono::nanoseconds>(
                           std::max(std::chrono::milliseconds(1), std::min(step, left)))
                           .count();
    kj::Promise<void> period = io_.provider->getTimer().afterDelay(nanos * kj::NANOSECONDS);
    if (observer) period = period.exclusiveJoin(observer->whenBecomesReadable());
    Await(kj::mv(period));
  }
}

}  // namespace automation
