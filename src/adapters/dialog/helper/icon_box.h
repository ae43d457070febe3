// The icon of a standard message box.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_request.h"

#include <FL/Fl_Widget.H>

namespace pelmora::dialog {

class IconBox : public Fl_Widget {
 public:
  static constexpr int size = 32;

  // `icon` is not none.
  IconBox(int left, int top, WindowIcon icon);

 protected:
  void draw() override;

 private:
  WindowIcon icon_;
};

}  // namespace pelmora::dialog
