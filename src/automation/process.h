#pragma once
// The process context: what one process holds for itself. The host and the IDE are two OS
// processes that call each other through proxies (remote.h); tests may also simulate several
// processes in one OS process, and an object of an ended one answers 462 as a gone one does.
// Each layer
// keeps its process-wide values (current problem log, trace flag, caches) in a struct of its own
// that the context creates on first use, so the runtime needs to know nothing about them.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace automation {

class Process : public std::enable_shared_from_this<Process> {
 public:
  static std::shared_ptr<Process> Create(std::string name);

  // The process whose code is running now. The first call makes a process named "main".
  static Process& Current();
  static std::shared_ptr<Process> CurrentRef();

  // Makes another process current for the life of the scope (used by proxies and tests).
  class Scope {
   public:
    explicit Scope(std::shared_ptr<Process> process);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::shared_ptr<Process> previous_;
  };

  const std::string& Name() const { return name_; }

  // The process-wide values of type T, default-constructed on first use. Each type has a fixed
  // slot, so that reaching the values (a flag tested on every traced call) costs an index.
  template <class T>
  T& Values() {
    static const std::size_t slot = NextSlot();
    if (slot >= values_.size()) values_.resize(slot + 1);
    std::shared_ptr<void>& value = values_[slot];
    if (!value) value = std::make_shared<T>();
    return *static_cast<T*>(value.get());
  }

  // Ends the process: its values are released (breaking their references) and every later call
  // into one of its objects fails with 462.
  void End();
  bool Ended() const { return ended_; }

 private:
  explicit Process(std::string name) : name_(std::move(name)) {}
  static std::size_t NextSlot();

  std::string name_;
  bool ended_ = false;
  std::vector<std::shared_ptr<void>> values_;  // by slot
};

}  // namespace automation
