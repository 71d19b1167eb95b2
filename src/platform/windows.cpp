#include "platform/windows.h"

#include <map>
#include <mutex>

namespace platform {
namespace {

struct WindowTable {
  std::mutex mutex;
  std::map<int32_t, std::weak_ptr<Window>> windows;
  // Handles look like Windows' (small multiples of 4 above 0x10000) and are never reused.
  int32_t next = 0x10010;
};

WindowTable& Table() {
  static WindowTable table;
  return table;
}

}  // namespace

Window::~Window() = default;

int32_t RegisterWindow(std::weak_ptr<Window> window) {
  WindowTable& table = Table();
  std::lock_guard lock(table.mutex);
  const int32_t handle = table.next;
  table.next += 4;
  table.windows.emplace(handle, std::move(window));
  return handle;
}

void UnregisterWindow(int32_t hWnd) {
  WindowTable& table = Table();
  std::lock_guard lock(table.mutex);
  table.windows.erase(hWnd);
}

bool ShowWindow(int32_t hWnd, int32_t command) {
  std::shared_ptr<Window> window;
  {
    WindowTable& table = Table();
    std::lock_guard lock(table.mutex);
    auto it = table.windows.find(hWnd);
    if (it == table.windows.end()) return false;
    window = it->second.lock();
    if (!window) {
      table.windows.erase(it);
      return false;
    }
  }
  // Called outside the lock: a window may open or close other windows while it reacts.
  window->Show(command);
  return true;
}

}  // namespace platform
