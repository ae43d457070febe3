// SPDX-License-Identifier: MIT
#include "report/paper_picture.h"

#include <gmock/gmock.h>

namespace pelmora::report::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(paper_picture, draws_each_mark_around_its_place) {
  const std::string picture = paperPicture(
      "<svg><path class=\"dots cut2\" d=\"M10 20l5-2 1 1\"/>\n<path class=\"line curve\" "
      "d=\"M1 2\"/><path class=\"dots merged\" d=\"M8 9\"/></svg>");
  // A cross from (6, 16) to (14, 24), around (10, 20) ...
  EXPECT_THAT(picture, HasSubstr("<path class=\"k2\" d=\"M6 16l8 8m-8 0l8-8M11 14l8 8m-8 0l8-8"
                                 "M12 15l8 8m-8 0l8-8\"/>"));
  EXPECT_THAT(picture, HasSubstr("<path class=\"km\" d=\"M6.5 9a1.5"));
  EXPECT_THAT(picture, HasSubstr("<path class=\"line curve\" d=\"M1 2\"/>"));
}

TEST(paper_picture, has_plain_colours_of_its_own) {
  const std::string picture = paperPicture("<svg></svg>");
  EXPECT_THAT(picture, HasSubstr("<style>"));
  EXPECT_THAT(picture, HasSubstr(".k1{stroke:#0b62a8}"));
  EXPECT_THAT(picture, Not(HasSubstr("var(")));
  EXPECT_EQ(paperPicture(""), "");
}

}  // namespace
}  // namespace pelmora::report::test
