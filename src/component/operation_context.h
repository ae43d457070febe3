// What an operation gets to work with: the host's events, the platform, the shared state of the
// apartment, and the one error trap.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/run_time_error.h"
#include "calibration/steps/observer.h"
#include "component/shared_state.h"

#include <pelmora/platform.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora {

// Lives on the stack of one operation. It stays usable when a host's handler destroys the RawData
// object that started the operation: status texts then go nowhere.
class OperationContext {
 public:
  using StatusUpdate = std::function<void(const std::string& sMessage)>;

  OperationContext(SharedState& shared, Platform& platform, StatusUpdate raiseStatusUpdate)
      : shared_(shared), platform_(platform), raiseStatusUpdate_(std::move(raiseStatusUpdate)) {}

  [[nodiscard]] SharedState& shared() const { return shared_; }
  [[nodiscard]] Platform& platform() const { return platform_; }

  void raiseStatusUpdate(const std::string& message) const { raiseStatusUpdate_(message); }
  // Lets pending host messages be processed once.
  void pumpMessages() const;
  // The host as a building block sees it. Lives as long as this context.
  [[nodiscard]] steps::Observer observer() const;

  // Keeps what a failing operation had opened until its error has been shown: hosts see the box
  // first, then the closing.
  void closeAfterReport(std::shared_ptr<void> opened) const {
    leftovers_.push_back(std::move(opened));
  }

  // Runs `body`. Any error is shown as `operation`, a line break and the description, and is then
  // gone. Returns whether the body ran to its end.
  template <class Body>
  bool trap(std::string_view operation, Body&& body) const {
    return trapTitled(operation, std::forward<Body>(body),
                      [](const Error&) { return std::string(); });
  }
  // The same with a title for the box, made from the error.
  template <class Body, class Title>
  bool trapTitled(std::string_view operation, Body&& body, Title&& title) const {
    try {
      std::forward<Body>(body)();
      return true;
    } catch (...) {
      const Error error = currentError();
      showError(operation, error, title(error));
      closeLeftovers();
      return false;
    }
  }

 private:
  void closeLeftovers() const;
  static void showError(std::string_view operation, const Error& error, const std::string& title);

  SharedState& shared_;
  Platform& platform_;
  StatusUpdate raiseStatusUpdate_;
  mutable std::vector<std::shared_ptr<void>> leftovers_;
};

}  // namespace pelmora
