#pragma once
// Window handles. The IDE's main window has a handle (hWnd) that the driver passes to
// ShowWindow; this process-wide table maps handles to the objects that stand for windows.

#include <cstdint>
#include <memory>

namespace platform {

// Windows' ShowWindow commands (SW_*) that qx's windows understand.
inline constexpr int32_t kSwHide = 0;
inline constexpr int32_t kSwShowNormal = 1;
inline constexpr int32_t kSwShowMinimized = 2;
inline constexpr int32_t kSwShowMaximized = 3;
inline constexpr int32_t kSwMinimize = 6;
inline constexpr int32_t kSwRestore = 9;

class Window {
 public:
  virtual ~Window();
  // Carries out a ShowWindow command (one of the SW_* numbers).
  virtual void Show(int32_t command) = 0;
};

// A new non-zero handle for the window. The table holds it weakly: a window that is gone
// makes its handle dead.
int32_t RegisterWindow(std::weak_ptr<Window> window);

void UnregisterWindow(int32_t hWnd);

// Passes the command to the window; false for an unknown or dead handle.
bool ShowWindow(int32_t hWnd, int32_t command);

}  // namespace platform
