// One call into another process. A by-name automation call through a proxy (the arguments and
// result marshalled, the call queued as a job of the far apartment and run through the member
// table) is measured against a bare Cap'n Proto echo over the same kind of Unix socket, both
// served by the same child process, so the difference is what the automation layer adds. A local
// by-name call shows the share of the member table. Each case reports the median and the 90th
// percentile of single round trips besides the mean.

#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <capnp/rpc-twoparty.h>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "automation/apartment.h"
#include "automation/object.h"
#include "automation/remote.h"
#include "echo.capnp.h"

namespace {

namespace fs = std::filesystem;
using automation::Apartment;
using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

class Target : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Target>("Target").Method("Echo", &Target::Echo, {"Value"}).Build();
    return info;
  }
  Variant Echo(const Variant& value) { return value; }
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // Cap'n Proto servers: see remote.cpp
class EchoServer final : public Echo::Server {
 protected:
  kj::Promise<void> echo(EchoContext context) override {
    context.getResults().setValue(context.getParams().getValue());
    return kj::READY_NOW;
  }
};
#pragma GCC diagnostic pop

fs::path folder;

std::string AutomationSocket() {
  return (folder / "automation.sock").string();
}
std::string EchoSocket() {
  return (folder / "echo.sock").string();
}

[[noreturn]] void ServeInChild() {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  Apartment& apartment = Apartment::Get();
  automation::Listener listener(AutomationSocket(), std::make_shared<Target>());
  auto address = apartment.Await(apartment.Io().getNetwork().parseAddress("unix:" + EchoSocket()));
  auto receiver = address->listen();
  capnp::TwoPartyServer server(kj::heap<EchoServer>());
  auto listening = server.listen(*receiver).eagerlyEvaluate(nullptr);
  for (;;)
    apartment.ServeFor(std::chrono::hours(1));
}

// The connections to the child, made once.
struct Peer {
  ObjectRef target;
  kj::Own<kj::AsyncIoStream> stream;
  kj::Own<capnp::TwoPartyClient> client;
  kj::Own<Echo::Client> echo;
};

Peer& ThePeer() {
  static Peer* peer = [] {
    auto* p = new Peer();
    Apartment& apartment = Apartment::Get();
    for (int attempt = 0;; ++attempt) {
      try {
        p->target = automation::Connect(AutomationSocket());
        break;
      } catch (const automation::Error&) {
        if (attempt > 1000) throw;
        apartment.ServeFor(std::chrono::milliseconds(10));
      }
    }
    auto address =
        apartment.Await(apartment.Io().getNetwork().parseAddress("unix:" + EchoSocket()));
    p->stream = apartment.Await(address->connect());
    p->client = kj::heap<capnp::TwoPartyClient>(*p->stream);
    p->echo = kj::heap<Echo::Client>(p->client->bootstrap().castAs<Echo>());
    return p;
  }();
  return *peer;
}

// Runs the round trip once per iteration and reports its median and 90th percentile.
void Measure(benchmark::State& state, const std::function<void()>& roundTrip) {
  std::vector<double> micros;
  micros.reserve(1 << 16);
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    roundTrip();
    micros.push_back(
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
            .count());
  }
  std::sort(micros.begin(), micros.end());
  state.counters["median_us"] = micros[micros.size() / 2];
  state.counters["p90_us"] = micros[micros.size() * 9 / 10];
}

void BM_BareEcho(benchmark::State& state) {
  Peer& peer = ThePeer();
  kj::WaitScope& waitScope = Apartment::Get().WaitScope();
  Measure(state, [&] {
    auto request = peer.echo->echoRequest();
    request.setValue(42);
    benchmark::DoNotOptimize(request.send().wait(waitScope).getValue());
  });
}

void BM_RemoteCall(benchmark::State& state) {
  const Dispatch target(ThePeer().target);
  Measure(state, [&] { benchmark::DoNotOptimize(target.Call("Echo", 42)); });
}

void BM_RemoteCallString(benchmark::State& state) {
  const Dispatch target(ThePeer().target);
  const std::string text(static_cast<size_t>(state.range(0)), 'x');
  Measure(state, [&] { benchmark::DoNotOptimize(target.Call("Echo", text)); });
}

void BM_LocalCall(benchmark::State& state) {
  const Dispatch target(std::make_shared<Target>());
  Measure(state, [&] { benchmark::DoNotOptimize(target.Call("Echo", 42)); });
}

BENCHMARK(BM_BareEcho);
BENCHMARK(BM_RemoteCall);
BENCHMARK(BM_RemoteCallString)->Arg(100)->Arg(64 << 10);
BENCHMARK(BM_LocalCall);

}  // namespace

int main(int argc, char** argv) {
  // The child must start before this process makes its event loop: it makes its own.
  folder = fs::temp_directory_path() / ("qx-bench-remote-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  const pid_t child = ::fork();
  if (child == 0) ServeInChild();
  benchmark::Initialize(&argc, argv);
  int status = 0;
  if (!benchmark::ReportUnrecognizedArguments(argc, argv)) {
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
  } else {
    status = 1;
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  std::error_code ec;
  fs::remove_all(folder, ec);
  return status;
}
