#include "automation/process.h"

#include <atomic>
#include <utility>

namespace automation {
namespace {
thread_local std::shared_ptr<Process> current;
}

std::shared_ptr<Process> Process::Create(std::string name) {
  return std::shared_ptr<Process>(new Process(std::move(name)));
}

Process& Process::Current() {
  if (!current) current = Create("main");
  return *current;
}

std::size_t Process::NextSlot() {
  static std::atomic<std::size_t> next{0};
  return next++;
}

std::shared_ptr<Process> Process::CurrentRef() {
  if (!current) current = Create("main");
  return current;
}

Process::Scope::Scope(std::shared_ptr<Process> process) : previous_(CurrentRef()) {
  current = std::move(process);
}

Process::Scope::~Scope() {
  current = std::move(previous_);
}

void Process::End() {
  ended_ = true;
  // Move the values out first: their destructors may look at this process.
  auto values = std::move(values_);
  values_.clear();
  // Later slots were made by higher layers: release them first.
  while (!values.empty())
    values.pop_back();
}

}  // namespace automation
