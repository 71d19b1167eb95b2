#include "ide/vbide/window.h"

#include <utility>

#include "automation/error.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbe.h"

namespace ide::vbide {

std::shared_ptr<Window> Window::Create(const std::shared_ptr<VBE>& vbe, Setup setup) {
  auto window = MakeBeside<Window>(*vbe, vbe, std::move(setup));
  window->hWnd_ = platform::RegisterWindow(std::weak_ptr<platform::Window>(window));
  return window;
}

Window::Window(std::shared_ptr<VBE> vbe, Setup setup)
    : vbe_(std::move(vbe)),
      type_(setup.type),
      caption_(std::move(setup.caption)),
      onClose_(std::move(setup.onClose)),
      visible_(setup.visible) {}

Window::~Window() {
  if (hWnd_ != 0) platform::UnregisterWindow(hWnd_);
}

const automation::ClassInfo& Window::Class() const {
  // The members in the order of VBIDE's Window interface.
  static const automation::ClassInfo info = automation::ClassBuilder<Window>("Window")
                                                .Get("VBE", &Window::Vbe)
                                                .Method("Close", &Window::Close)
                                                .Get("Caption", &Window::Caption)
                                                .Get("Visible", &Window::Visible)
                                                .Put("Visible", &Window::SetVisible)
                                                .Get("WindowState", &Window::WindowState)
                                                .Put("WindowState", &Window::SetWindowState)
                                                .Get("Type", &Window::Type)
                                                .Get("hWnd", &Window::HWnd)
                                                .Build();
  return info;
}

void Window::Close() {
  if (!onClose_) {
    automation::Raise(automation::err::kInvalidCall,
                      "the IDE's main window closes only when the IDE ends");
  }
  if (closed_) return;
  closed_ = true;
  visible_ = false;
  platform::UnregisterWindow(hWnd_);
  // The callback may drop the last other reference to this window: keep it alive meanwhile.
  auto self = shared_from_this();
  auto onClose = onClose_;
  onClose();
}

std::string Window::Caption() const {
  return caption_ ? caption_() : std::string();
}

void Window::SetWindowState(int32_t state) {
  if (state != kNormal && state != kMinimized && state != kMaximized) {
    automation::Raise(automation::err::kInvalidPropertyValue,
                      "WindowState " + std::to_string(state) + " is none of 0, 1 and 2");
  }
  EnterState(state);
}

void Window::EnterState(int32_t state) {
  if (state == kMinimized && state_ != kMinimized) restoreTo_ = state_;
  state_ = state;
}

void Window::Show(int32_t command) {
  switch (command) {
    case platform::kSwHide:
      visible_ = false;
      break;
    case platform::kSwShowNormal:
      EnterState(kNormal);
      visible_ = true;
      break;
    case platform::kSwShowMinimized:
      EnterState(kMinimized);
      visible_ = true;
      break;
    case platform::kSwMinimize:
      EnterState(kMinimized);
      break;
    case platform::kSwShowMaximized:
      EnterState(kMaximized);
      visible_ = true;
      break;
    case platform::kSwRestore:
      EnterState(state_ == kMinimized ? restoreTo_ : kNormal);
      visible_ = true;
      break;
    default:
      break;
  }
}

void Window::TearDown() {
  if (hWnd_ != 0) platform::UnregisterWindow(hWnd_);
  vbe_.reset();
  caption_ = nullptr;
  onClose_ = nullptr;
}

}  // namespace ide::vbide
