// The bytes of a file as UTF-8 text.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/sheet.h>

#include <string>

namespace pelmora::sheets {

struct DecodedText {
  std::string text;  // without a byte order mark
  Encoding encoding = Encoding::utf8;
  bool hasByteOrderMark = false;
};

// UTF-16 is recognised by its mark, or by zeros in every other byte. Other text that is not UTF-8
// is taken for Windows-1252, or left as it is if it cannot be that either.
//
// Errors: SheetError for files of another kind, for broken UTF-16, and for a NUL.
[[nodiscard]] DecodedText decoded(std::string bytes);

}  // namespace pelmora::sheets
