#include "automation/peer.h"

#include <cstdlib>
#include <fstream>
#include <map>

namespace automation {
namespace {

using Clock = std::chrono::steady_clock;

struct Unanswered {
  Error error;
  bool stopped;  // found stopped (else silent past the time-out, or gone)
};

std::map<long, Unanswered>& UnresponsivePeers() {
  static std::map<long, Unanswered> peers;
  return peers;
}

std::string NameOf(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/comm");
  std::string name;
  std::getline(in, name);
  return name.empty() ? "process " + std::to_string(pid)
                      : name + " (process " + std::to_string(pid) + ")";
}

}  // namespace

ProcessState StateOf(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string stat;
  if (!in || !std::getline(in, stat)) return ProcessState::Gone;
  // "pid (command) state ...": the command may hold anything, so the state follows the last ")".
  const size_t close = stat.rfind(')');
  if (close == std::string::npos || close + 2 >= stat.size()) return ProcessState::Gone;
  switch (stat[close + 2]) {
    case 'Z':
    case 'X':
    case 'x':
      return ProcessState::Gone;
    case 'T':
    case 't':
      return ProcessState::Stopped;
    default:
      return ProcessState::Running;
  }
}

std::chrono::seconds CallTimeout() {
  const char* text = std::getenv(kCallTimeoutVariable);
  if (text == nullptr || *text == '\0') return kDefaultCallTimeout;
  const std::string value(text);
  if (value.size() > 9 || value.find_first_not_of("0123456789") != std::string::npos) {
    Raise(err::kInvalidCall, std::string(kCallTimeoutVariable) +
                                 " must be a whole number of seconds, not \"" + value + "\"");
  }
  return std::chrono::seconds(std::stol(value));
}

std::optional<Error> Unresponsive(long pid) {
  auto& peers = UnresponsivePeers();
  const auto it = peers.find(pid);
  if (it == peers.end()) return std::nullopt;
  if (it->second.stopped && StateOf(pid) == ProcessState::Running) {
    peers.erase(it);
    return std::nullopt;
  }
  return it->second.error;
}

PeerWatch::PeerWatch(long pid)
    : pid_(pid), timeout_(CallTimeout()), deadline_(Clock::now() + timeout_) {}

std::optional<Error> PeerWatch::Check() {
  const Clock::time_point now = Clock::now();
  std::string why;
  const ProcessState state = StateOf(pid_);
  switch (state) {
    case ProcessState::Gone:
      // The broken connection says so too; this is for a peer whose socket outlives it.
      why = " has ended";
      break;
    case ProcessState::Stopped:
      if (!stoppedSince_) stoppedSince_ = now;
      if (now - *stoppedSince_ >= kStoppedGrace) why = " is stopped and does not answer";
      break;
    case ProcessState::Running:
      stoppedSince_.reset();
      if (timeout_.count() > 0 && now >= deadline_) {
        why = " did not answer within " + std::to_string(timeout_.count()) + " seconds (" +
              kCallTimeoutVariable + " sets how long a call may take)";
      }
      break;
  }
  if (why.empty()) return std::nullopt;
  Error error(err::kServerUnavailable, "qx", NameOf(pid_) + why);
  UnresponsivePeers().insert_or_assign(pid_, Unanswered{error, state == ProcessState::Stopped});
  return error;
}

}  // namespace automation
