// Examples of FIPS 180-4's companion page of the National Institute of Standards and Technology.
// SPDX-License-Identifier: MIT
#include "base/sha256.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(sha256, matches_the_published_examples) {
  EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(sha256, of_nothing_and_of_a_million_letters) {
  EXPECT_EQ(sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256Hex(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// printf abc | openssl dgst -sha256 -binary | base64
TEST(sha256, as_base64) {
  EXPECT_EQ(sha256Base64("abc"), "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
}

}  // namespace
}  // namespace pelmora
