#include "host/tracer.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "automation/process.h"

namespace host {
namespace {

struct TracerValues {
  std::shared_ptr<Tracer> tracer;
};

}  // namespace

Tracer::Tracer() {
  const char* trace = std::getenv("QX_TRACE");
  enabled_ = trace != nullptr && std::string(trace) == "1";
  defaultSink_ = &std::cerr;
  const char* fileName = std::getenv("QX_TRACE_FILE");
  if (enabled_ && fileName != nullptr && *fileName != '\0') {
    auto file = std::make_unique<std::ofstream>(fileName, std::ios::out | std::ios::app);
    if (*file) {
      file_ = std::move(file);
      defaultSink_ = file_.get();
    } else {
      std::cerr << "qx: cannot open the trace file " << fileName << "; tracing to standard error\n";
    }
  }
  sink_ = defaultSink_;
}

Tracer::~Tracer() = default;

std::shared_ptr<Tracer> Tracer::Instance() {
  auto& values = automation::Process::Current().Values<TracerValues>();
  if (!values.tracer) values.tracer = std::make_shared<Tracer>();
  return values.tracer;
}

const automation::ClassInfo& Tracer::Class() const {
  static const automation::ClassInfo info = automation::ClassBuilder<Tracer>("Tracer")
                                                .Method("Finish", &Tracer::Finish)
                                                .Method("Enter", &Tracer::Enter, {"SiteName"})
                                                .Method("Leave", &Tracer::Leave)
                                                .Get("IsEnabled", &Tracer::IsEnabled)
                                                .Build();
  return info;
}

void Tracer::Finish() {
  sink_->flush();
  open_.clear();
}

void Tracer::Enter(std::string& siteName) {
  if (!enabled_) return;
  WriteLine('>', siteName);
  open_.push_back(siteName);
}

void Tracer::Leave() {
  if (!enabled_ || open_.empty()) return;
  std::string siteName = std::move(open_.back());
  open_.pop_back();
  WriteLine('<', siteName);
}

void Tracer::SetSink(std::ostream* sink) {
  sink_ = sink ? sink : defaultSink_;
}

void Tracer::WriteLine(char mark, const std::string& siteName) {
  // One write per line, flushed at once, so that a trace is complete up to a crash and lines
  // from two processes sharing the file do not interleave within a line.
  std::string line(open_.size() * 2, ' ');
  line += mark;
  line += ' ';
  line += siteName;
  line += '\n';
  sink_->write(line.data(), static_cast<std::streamsize>(line.size()));
  sink_->flush();
}

}  // namespace host
