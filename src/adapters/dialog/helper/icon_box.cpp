// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper/icon_box.h"

#include <FL/fl_draw.H>

namespace pelmora::dialog {

namespace {

struct Sign {
  const char* letter;
  Fl_Color field, ink;
};

Sign signOf(WindowIcon icon) {
  switch (icon) {
    case WindowIcon::critical: return {"\u00d7", fl_rgb_color(196, 32, 32), FL_WHITE};
    case WindowIcon::exclamation: return {"!", fl_rgb_color(240, 180, 20), FL_BLACK};
    case WindowIcon::question: return {"?", fl_rgb_color(40, 96, 176), FL_WHITE};
    default: return {"i", fl_rgb_color(40, 96, 176), FL_WHITE};
  }
}

}  // namespace

IconBox::IconBox(int left, int top, WindowIcon icon)
    : Fl_Widget(left, top, size, size), icon_(icon) {}

void IconBox::draw() {
  const Sign sign = signOf(icon_);
  fl_color(sign.field);
  if (icon_ == WindowIcon::exclamation) {
    fl_polygon(x(), y() + size - 2, x() + size / 2, y(), x() + size, y() + size - 2);
  } else {
    fl_pie(x(), y(), size, size, 0, 360);
  }
  fl_color(sign.ink);
  fl_font(FL_HELVETICA_BOLD, icon_ == WindowIcon::critical ? 28 : 20);
  // The triangle's middle lies lower than that of its bounding box.
  const int lower = icon_ == WindowIcon::exclamation ? 4 : 0;
  fl_draw(sign.letter, x(), y() + lower, size, size, FL_ALIGN_CENTER, nullptr, 0);
}

}  // namespace pelmora::dialog
