// SPDX-License-Identifier: MIT
#include "dcc/xml_tree.h"

#include <pelmora/calibration/failure.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace pelmora::dcc {
namespace {

TEST(xml_tree, has_elements_and_texts) {
  const XmlElement root = readXml(
      "<?xml version=\"1.0\"?>\n<!-- a --><x:a xmlns:x='urn:x' b='1' c=\"&lt;&#65;&#x20AC;\">\n "
      "<d/>t<![CDATA[<u>]]>"
      "<e>&amp;</e></x:a>\n",
      "");
  EXPECT_EQ(root.name, "x:a");
  EXPECT_EQ(root.localName(), "a");
  EXPECT_EQ(root.line, 2U);
  EXPECT_EQ(root.text, "\n t<u>");
  ASSERT_NE(root.child("e"), nullptr);
  EXPECT_EQ(root.child("e")->text, "&");
  EXPECT_EQ(root.child("d")->line, 3U);
  EXPECT_EQ(root.child("f"), nullptr);
}

std::string refusal(const std::string& text) {
  try {
    (void)readXml(text, "c.xml");
  } catch (const calibration::BadData& failure) {
    EXPECT_EQ(failure.where(), "c.xml");
    return failure.what();
  }
  return "nothing was refused";
}

TEST(xml_tree, refuses_what_is_not_well_formed) {
  EXPECT_THAT(refusal("<a>\n<b></a>"), testing::StartsWith("line 2: Opening and ending tag"));
  for (const char* text : {"", "text", "{}", "<a>", "<a/><b/>", "<a b/>", "<a b=c/>", "<a>&x;</a>",
                           "<a>&</a>", "<a><!-- </a>", "<a>\xFF</a>"}) {
    EXPECT_THAT(refusal(text), testing::StartsWith("line 1: ")) << text;
  }
}

TEST(xml_tree, refuses_how_xml_attacks_its_readers) {
  EXPECT_EQ(refusal("<!DOCTYPE a [<!ENTITY b SYSTEM 'file:///etc/passwd'>]><a>&b;</a>"),
            "line 1: document types are not allowed");
  EXPECT_EQ(refusal("\n<!DOCTYPE a SYSTEM 'http://localhost/a.dtd'><a/>"),
            "line 2: document types are not allowed");
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<a>";
  EXPECT_THAT(refusal(deep), testing::HasSubstr("depth"));
}

}  // namespace
}  // namespace pelmora::dcc
