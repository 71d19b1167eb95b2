#pragma once
// Window handles. The IDE's main window has a handle (hWnd) that the driver passes to
// ShowWindow; this process-wide table maps handles to the objects that stand for windows.
//
// As on Windows, a handle means one window to every process: it names the process that owns the
// window (its process id times 512) and the window's slot there (four times 1 to 127), so
// ShowWindow in another process knows where to carry the command. Carrying it is the router's
// work, set by the layer that reaches other processes.

#include <cstdint>
#include <functional>
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

// A new handle for the window, owned by this process. The table holds the window weakly: a
// window that is gone makes its handle dead. A slot is taken again only after the other 126 have
// been, so a dead handle stays dead a long while. Raises 7 when the process has 127 live windows.
int32_t RegisterWindow(std::weak_ptr<Window> window);

void UnregisterWindow(int32_t hWnd);

// The process that owns the window of a handle (0 for a number that is no handle).
long WindowProcess(int32_t hWnd);

// Passes the command to the window: this process's own, or another's through the router. False
// for an unknown or dead handle.
bool ShowWindow(int32_t hWnd, int32_t command);

// Carries a ShowWindow command to the process that owns the handle; true when a live window took
// it. An empty function removes the router: handles of other processes are then dead here.
using WindowRouter = std::function<bool(long process, int32_t hWnd, int32_t command)>;
void SetWindowRouter(WindowRouter router);

}  // namespace platform
