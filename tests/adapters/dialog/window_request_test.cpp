// SPDX-License-Identifier: MIT
#include "adapters/dialog/window_request.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::dialog {
namespace {

WindowRequest everyFieldDifferent() {
  WindowRequest request;
  request.title = "Calibration 5:5";
  request.text = std::string("line\r\nµ 3:abc \0 end", 21);
  request.width = 420;
  request.height = 152;
  request.textArea = {1, -2, 3, 4};
  request.icon = WindowIcon::exclamation;
  request.growsWithText = true;
  request.focusedButton = 1;
  request.buttons = {{"&Yes", 6, {5, 6, 7, 8}}, {"&No", 7, {9, 10, 11, 12}}};
  return request;
}

std::string bodyOf(const WindowRequest& request) { return toWire(request).substr(wireHeaderSize); }

TEST(window_request, comes_back_as_it_was_sent) {
  const std::string wire = toWire(everyFieldDifferent());
  const auto size = bodySizeFromWire(wire.substr(0, wireHeaderSize));
  ASSERT_TRUE(size);
  ASSERT_EQ(wire.size(), wireHeaderSize + *size);
  EXPECT_EQ(bodyFromWire(wire.substr(wireHeaderSize)), everyFieldDifferent());
}

TEST(window_request, is_a_header_and_length_prefixed_fields) {
  WindowRequest request;
  request.title = "T";
  request.text = "a:b";
  request.width = 40;
  request.buttons = {{"&OK", 1, {2, 3, 4, 5}}};
  EXPECT_EQ(toWire(request),
            "pelmora-dialog 1 00000059\n"
            "1:T3:a:b2:401:01:01:01:01:01:01:01:01:1"
            "3:&OK1:11:21:31:41:5");
}

TEST(window_request, body_that_is_cut_anywhere_is_refused) {
  const std::string body = bodyOf(everyFieldDifferent());
  for (std::size_t size = 0; size < body.size(); ++size) {
    EXPECT_FALSE(bodyFromWire(body.substr(0, size))) << size;
  }
}

TEST(window_request, bytes_behind_the_body_are_refused) {
  EXPECT_FALSE(bodyFromWire(bodyOf(everyFieldDifferent()) + "1:x"));
}

TEST(window_request, malformed_fields_are_refused) {
  EXPECT_FALSE(bodyFromWire("-1:T"));
  EXPECT_FALSE(bodyFromWire("99999999999999999999:T"));
  EXPECT_FALSE(bodyFromWire("x:T"));
  EXPECT_FALSE(bodyFromWire("1:T1:t1:x"));
  WindowRequest request = everyFieldDifferent();
  request.icon = static_cast<WindowIcon>(5);
  EXPECT_FALSE(bodyFromWire(bodyOf(request)));
  request = everyFieldDifferent();
  request.buttons.resize(9);
  EXPECT_FALSE(bodyFromWire(bodyOf(request)));
}

TEST(window_request, headers_of_others_are_refused) {
  EXPECT_TRUE(bodySizeFromWire("pelmora-dialog 1 00000059\n"));
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 2 00000059\n"));
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 1 00000059 "));
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 1 000000x8\n"));
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 1 -0000068\n"));
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 1 68\n"));
}

TEST(window_request, body_longer_than_the_limit_is_refused) {
  EXPECT_EQ(bodySizeFromWire("pelmora-dialog 1 01048576\n"), wireBodyLimit);
  EXPECT_FALSE(bodySizeFromWire("pelmora-dialog 1 01048577\n"));
}

}  // namespace
}  // namespace pelmora::dialog
