// The XML of a certificate: its contents and, if the schema is at hand, its form.
// SPDX-License-Identifier: MIT
#include "dcc/dcc_writer.h"

#include "dcc/dcc_check.h"
#include "dcc/xml_tree.h"
#include "tests/dcc/sample_certificate.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace pelmora::dcc {
namespace {

using test::sampleCertificate;

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(dcc_writer, writes_what_the_schema_takes) {
  const char* schemas = std::getenv("PELMORA_DCC_SCHEMAS");
  if (schemas == nullptr || *schemas == '\0')
    GTEST_SKIP() << "PELMORA_DCC_SCHEMAS names no folder with dcc.xsd and catalog.xml";
  const test::ScratchFolder folder;
  const std::string file = (folder.path() / "certificate.xml").string();
  std::ofstream(file) << certificateXml(sampleCertificate());
  const std::string quotedFolder = "'" + std::string(schemas) + "'";
  const std::string command = "cd " + quotedFolder +
                              " && XML_CATALOG_FILES=\"$PWD/catalog.xml\" xmllint --nonet --noout "
                              "--schema dcc.xsd '" +
                              file + "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(dcc_writer, passes_its_own_rules) {
  EXPECT_TRUE(checkCertificate(certificateXml(sampleCertificate()), "").empty());
}

TEST(dcc_writer, keeps_the_printed_digits) {
  const std::string xml = certificateXml(sampleCertificate());
  EXPECT_TRUE(contains(xml, "<si:valueXMLList>1201.12 1305.50 1318.00</si:valueXMLList>"));
  EXPECT_TRUE(contains(xml, "<si:valueXMLList>10.1 100.0 1000</si:valueXMLList>"));
  EXPECT_TRUE(contains(xml, "<si:valueExpandedMUXMLList>0.65 0.60 0.66<"));
  EXPECT_TRUE(contains(xml, "<si:coverageFactorXMLList>2.00 2.03<"));
}

TEST(dcc_writer, states_units_outside_the_si_twice) {
  const XmlElement root = readXml(certificateXml(sampleCertificate()), "");
  const XmlElement* column = root.child("measurementResults");
  for (const char* name : {"measurementResult", "results", "result", "data", "list"}) {
    ASSERT_NE(column, nullptr);
    column = column->child(name);
  }
  ASSERT_NE(column, nullptr);
  ASSERT_EQ(column->children.size(), 2U);
  const XmlElement* hybrid = column->children[1].child("hybrid");
  ASSERT_NE(hybrid, nullptr);
  ASSERT_EQ(hybrid->children.size(), 2U);
  // 1201.12 pulses/gal / 0.003785411784 m3/gal.
  EXPECT_EQ(hybrid->children[0].child("unitXMLList")->text, "\\metre\\tothe{-3}");
  EXPECT_TRUE(hybrid->children[0].child("valueXMLList")->text.starts_with("317302.3"));
  EXPECT_EQ(hybrid->children[1].child("unitXMLList")->text, "pulses/gal");
}

TEST(dcc_writer, says_every_text_as_it_is) {
  const XmlElement root = readXml(certificateXml(sampleCertificate()), "");
  const XmlElement* contact =
      root.child("administrativeData")->child("calibrationLaboratory")->child("contact");
  EXPECT_EQ(contact->child("name")->child("content")->text, "Flow <laboratory> & sons");
}

// XML has no control characters; a reader sees that something stood there.
TEST(dcc_writer, marks_the_place_of_a_control_character) {
  Certificate certificate = sampleCertificate();
  certificate.customer.name =
      "Ab\x01"
      "c \"& Sons\"";
  const XmlElement root = readXml(certificateXml(certificate), "");
  const XmlElement* name = root.child("administrativeData")->child("customer")->child("name");
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(name->child("content")->text, "Ab\uFFFDc \"& Sons\"");
}

TEST(dcc_writer, refuses_a_certificate_with_gaps) {
  Certificate gap = sampleCertificate();
  gap.customer.city.clear();
  gap.signatories.clear();
  try {
    (void)certificateXml(gap);
    FAIL() << "nothing was refused";
  } catch (const calibration::BadData& failure) {
    EXPECT_STREQ(failure.what(),
                 "this is not a certificate yet: the city of the customer is missing, and 1 more");
  }
}

struct Gap {
  const char* name;
  void (*make)(Certificate&);
  const char* complaint;
};

class certificate_gaps : public testing::TestWithParam<Gap> {};

TEST_P(certificate_gaps, are_named) {
  Certificate certificate = sampleCertificate();
  GetParam().make(certificate);
  const auto gaps = missingFrom(certificate);
  ASSERT_EQ(gaps.size(), 1U);
  EXPECT_EQ(gaps.front(), GetParam().complaint);
}

std::string gapName(const testing::TestParamInfo<Gap>& gap) { return gap.param.name; }

INSTANTIATE_TEST_SUITE_P(
    of, certificate_gaps,
    testing::Values(
        Gap{"number", [](Certificate& c) { c.number.clear(); },
            "the certificate number is missing"},
        Gap{"date", [](Certificate& c) { c.firstDate = "20.11.2026"; },
            "the first date of the calibration is not a date like 2026-11-20"},
        Gap{"country", [](Certificate& c) { c.countryCode = "Germany"; },
            "the country is not a code such as DE or US"},
        Gap{"nan", [](Certificate& c) { c.results[0].columns[1].values[1] = "nan"; },
            "'nan' of column 'K factor' is not a finite number"},
        Gap{"unit", [](Certificate& c) { c.results[0].columns[1].unit = "banana"; },
            "'banana' is not a unit for column 'K factor'"},
        Gap{"length", [](Certificate& c) { c.results[1].columns[0].values.pop_back(); },
            "column 'quotient' differs in length from 'Roshko number'"},
        Gap{"uncertainties",
            [](Certificate& c) { c.results[0].columns[1].uncertainties->values.pop_back(); },
            "column 'K factor' does not have one uncertainty for each value"},
        Gap{"factors",
            [](Certificate& c) { c.results[0].columns[1].uncertainties->coverageFactors.clear(); },
            "column 'K factor' has neither one coverage factor nor one for each value"}),
    gapName);

}  // namespace
}  // namespace pelmora::dcc
