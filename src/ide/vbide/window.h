#pragma once
// Window: a window of the IDE as its extensibility model shows it. The IDE has its main window
// and, per component with a designer, the designer's window while the designer is open. Each
// window has a handle (hWnd) in the process-wide window table, so that ShowWindow on the handle
// (which the driver uses to bring the IDE forward) changes the window's state as it would on
// Windows.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "automation/object.h"
#include "platform/windows.h"

namespace ide::vbide {

class VBE;

class Window : public automation::Object, public platform::Window {
 public:
  // vbext_WindowType of the windows the IDE has.
  static constexpr int32_t kDesigner = 1;
  static constexpr int32_t kMainWindow = 12;
  // vbext_WindowState.
  static constexpr int32_t kNormal = 0;
  static constexpr int32_t kMinimized = 1;
  static constexpr int32_t kMaximized = 2;

  struct Setup {
    int32_t type = kMainWindow;
    std::function<std::string()> caption;
    // What Close does; empty for a window that closes only with the IDE (Close raises 5).
    std::function<void()> onClose;
    bool visible = true;
  };

  // A window with its handle registered, owned by the process that owns vbe.
  static std::shared_ptr<Window> Create(const std::shared_ptr<VBE>& vbe, Setup setup);
  Window(std::shared_ptr<VBE> vbe, Setup setup);  // use Create, which registers the handle
  ~Window() override;

  const automation::ClassInfo& Class() const override;

  std::shared_ptr<VBE> Vbe() const { return vbe_; }
  // Closes the window (a designer's window closes its designer). Closing twice does nothing.
  void Close();
  std::string Caption() const;
  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { visible_ = visible; }
  int32_t WindowState() const { return state_; }
  // 0 normal, 1 minimized, 2 maximized; any other value raises 380.
  void SetWindowState(int32_t state);
  int32_t Type() const { return type_; }
  int32_t HWnd() const { return hWnd_; }

  bool Closed() const { return closed_; }

  // ShowWindow on the handle: hide, show normal, minimize, maximize, restore.
  void Show(int32_t command) override;

  // Drops the references to the rest of the IDE and the handle (the IDE has ended).
  void TearDown();

 private:
  void EnterState(int32_t state);

  std::shared_ptr<VBE> vbe_;
  int32_t type_;
  std::function<std::string()> caption_;
  std::function<void()> onClose_;
  bool visible_;
  bool closed_ = false;
  int32_t state_ = kNormal;
  int32_t restoreTo_ = kNormal;  // the state a minimized window is restored to
  int32_t hWnd_ = 0;
};

}  // namespace ide::vbide
