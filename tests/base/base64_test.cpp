// SPDX-License-Identifier: MIT
#include "base/base64.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace pelmora {
namespace {

// The test vectors of RFC 4648, section 10, and bytes that need the last letters.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> vectors{
    {{"", ""},
     {"f", "Zg=="},
     {"fo", "Zm8="},
     {"foo", "Zm9v"},
     {"foob", "Zm9vYg=="},
     {"fooba", "Zm9vYmE="},
     {"foobar", "Zm9vYmFy"},
     {"\xFB\xEF\xFF", "++//"}}};

TEST(base64, is_that_of_the_standard) {
  for (const auto& [bytes, text] : vectors) {
    EXPECT_EQ(base64Text(bytes), text);
    EXPECT_EQ(bytesOfBase64(text), bytes);
  }
}

TEST(base64, is_read_across_line_ends) { EXPECT_EQ(bytesOfBase64("\nZm9v\r\nYmFy\n"), "foobar"); }

}  // namespace
}  // namespace pelmora
