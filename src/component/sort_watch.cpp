// SPDX-License-Identifier: MIT
#include "component/sort_watch.h"

#include "ui/show_message.h"

#include <pelmora/platform.h>

namespace pelmora {

SortWatch hostsSortWatch() {
  return {[] {
            if (auto pump = platform().pumpMessages) pump();
          },
          [](const Error& error) {
            std::int32_t okOnly = 0;
            showMessageForm(error.what(), okOnly, "");
          }};
}

}  // namespace pelmora
