// SPDX-License-Identifier: MIT
#include "component/operation_context.h"

#include "component/sort_watch.h"
#include "ui/message_box.h"

namespace pelmora {

void OperationContext::pumpMessages() const {
  if (auto pump = platform_.pumpMessages) pump();
}

steps::Observer OperationContext::observer() const {
  return {[this](const std::string& text) { raiseStatusUpdate(text); },
          {},
          [this] { pumpMessages(); },
          hostsSortWatch().failed};
}

void OperationContext::closeLeftovers() const {
  // In the order in which the scopes ended: record sets before their connection.
  auto leftovers = std::exchange(leftovers_, {});
  for (std::shared_ptr<void>& opened : leftovers) opened.reset();
}

void OperationContext::showError(std::string_view operation, const Error& error,
                                 const std::string& title) {
  standardMessageBox(std::string(operation) + "\r\n" + error.what(), box_style::critical, title);
}

}  // namespace pelmora
