// SPDX-License-Identifier: MIT
#include "bindings/com/host_platform.h"

#include "bindings/com/host_arithmetic.h"
#include "ui/form_presenter.h"

#include <pelmora/dialog.h>
#include <pelmora/platform.h>

#include <windows.h>

#include <memory>
#include <utility>

namespace pelmora::com {
namespace {

class HostTurnPresenter : public FormPresenter {
 public:
  explicit HostTurnPresenter(std::unique_ptr<FormPresenter> presenter)
      : presenter_(std::move(presenter)) {}
  void showModal(frmMessage& form) override {
    const HostTurn hostTurn;
    presenter_->showModal(form);
  }

 private:
  std::unique_ptr<FormPresenter> presenter_;
};

// Everything that waits now; what handlers add meanwhile is processed too.
void pumpWindowMessages() {
  const HostTurn hostTurn;
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));  // the host's own loop must see it
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace

void preparePlatform() {
  thread_local bool isPrepared = false;
  if (std::exchange(isPrepared, true)) return;
  Platform& own = platform();
  useDialogs(own);
  own.messageBox = [box = own.messageBox](const std::string& text, int style,
                                          const std::string& title) {
    const HostTurn hostTurn;
    return box(text, style, title);
  };
  own.createFormPresenter = [create = own.createFormPresenter] {
    return std::make_unique<HostTurnPresenter>(create());
  };
  own.pumpMessages = pumpWindowMessages;
}

}  // namespace pelmora::com
