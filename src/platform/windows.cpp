#include "platform/windows.h"

#include <unistd.h>

#include <map>
#include <mutex>

#include "automation/error.h"

namespace platform {
namespace {

constexpr int32_t kProcessUnit = 512;  // a process's handles: its id times this, plus 4 * slot
constexpr int32_t kSlots = kProcessUnit / 4 - 1;

struct WindowTable {
  std::mutex mutex;
  std::map<int32_t, std::weak_ptr<Window>> windows;
  int32_t lastSlot = 0;
  WindowRouter router;
};

WindowTable& Table() {
  static WindowTable table;
  return table;
}

int32_t Handle(long process, int32_t slot) {
  return static_cast<int32_t>(process) * kProcessUnit + 4 * slot;
}

}  // namespace

Window::~Window() = default;

int32_t RegisterWindow(std::weak_ptr<Window> window) {
  WindowTable& table = Table();
  std::lock_guard lock(table.mutex);
  const long self = ::getpid();
  for (int32_t tried = 0; tried < kSlots; ++tried) {
    table.lastSlot = table.lastSlot % kSlots + 1;
    const int32_t handle = Handle(self, table.lastSlot);
    const auto it = table.windows.find(handle);
    if (it != table.windows.end() && !it->second.expired()) continue;
    table.windows.insert_or_assign(handle, std::move(window));
    return handle;
  }
  automation::Raise(automation::err::kOutOfMemory,
                    "the process has " + std::to_string(kSlots) + " windows already");
}

void UnregisterWindow(int32_t hWnd) {
  WindowTable& table = Table();
  std::lock_guard lock(table.mutex);
  table.windows.erase(hWnd);
}

long WindowProcess(int32_t hWnd) {
  const int32_t slot = hWnd % kProcessUnit;
  if (hWnd <= 0 || slot == 0 || slot % 4 != 0) return 0;
  return hWnd / kProcessUnit;
}

bool ShowWindow(int32_t hWnd, int32_t command) {
  const long process = WindowProcess(hWnd);
  if (process == 0) return false;
  std::shared_ptr<Window> window;
  WindowRouter router;
  {
    WindowTable& table = Table();
    std::lock_guard lock(table.mutex);
    if (process != ::getpid()) {
      router = table.router;
    } else if (auto it = table.windows.find(hWnd); it != table.windows.end()) {
      window = it->second.lock();
      if (!window) table.windows.erase(it);
    }
  }
  // Called outside the lock: a window may open or close other windows while it reacts, and the
  // router waits for another process.
  if (router) return router(process, hWnd, command);
  if (!window) return false;
  window->Show(command);
  return true;
}

void SetWindowRouter(WindowRouter router) {
  WindowTable& table = Table();
  std::lock_guard lock(table.mutex);
  table.router = std::move(router);
}

}  // namespace platform
