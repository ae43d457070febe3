// Damage that the schema lets pass, and that the rules find.
// SPDX-License-Identifier: MIT
#include "dcc/dcc_check.h"

#include "dcc/dcc_writer.h"
#include "tests/dcc/sample_certificate.h"

#include <pelmora/calibration/failure.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace pelmora::dcc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Violation> checkAfter(const std::string& part, const std::string& replacement,
                                  const CheckRules& rules = {}) {
  std::string xml = certificateXml(test::sampleCertificate());
  const auto at = xml.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  xml.replace(at, part.size(), replacement);
  return checkCertificate(xml, "certificate.xml", rules);
}

struct Damage {
  const char *name, *part, *replacement, *complaint;
};

class dcc_damage : public testing::TestWithParam<Damage> {};

TEST_P(dcc_damage, is_found) {
  const auto found = checkAfter(GetParam().part, GetParam().replacement);
  ASSERT_FALSE(found.empty());
  const bool isNamed = std::any_of(found.begin(), found.end(), [](const Violation& each) {
    return each.what == GetParam().complaint && each.line > 0;
  });
  EXPECT_TRUE(isNamed) << found.front().what;
}

std::string damageName(const testing::TestParamInfo<Damage>& damage) { return damage.param.name; }

INSTANTIATE_TEST_SUITE_P(
    of, dcc_damage,
    testing::Values(
        Damage{"unit", "\\metre\\tothe{-3}", "banana", "'banana' is not an SI unit"},
        Damage{"no_unit", "<si:unitXMLList>\\one</si:unitXMLList>", "", "there is no unit"},
        Damage{"nan", "1305.50", "NaN", "'NaN' is not a finite value"},
        Damage{"infinity", "1305.50", "INF", "'INF' is not a finite value"},
        Damage{"comma", "1305.50", "1305,50", "'1305,50' is not a finite value"},
        Damage{"too_few", "1201.12 1305.50", "1201.12",
               "a quantity has 2 values and the first one 3"},
        Damage{"uncertainties", "0.65 0.60 0.66", "0.65 0.60", "3 values have 2 uncertainties"},
        Damage{"negative", "0.65 0.60", "0.65 -0.60", "an uncertainty is negative"},
        Damage{"no_factor", "<si:coverageFactorXMLList>2.00</si:coverageFactorXMLList>", "",
               "an expanded uncertainty has no coverage factor"},
        Damage{"no_probability",
               "<si:coverageProbabilityXMLList>0.9545</si:coverageProbabilityXMLList>", "",
               "an expanded uncertainty has no coverage probability"},
        Damage{"percent", "0.9545", "95.45", "a coverage probability is not between 0 and 1"},
        Damage{"factor", "<si:coverageFactorXMLList>2.00<", "<si:coverageFactorXMLList>0<",
               "a coverage factor is not above 0"},
        Damage{"factors", "2.00 2.03", "2.00 2.03 2.04", "2 values have 3 coverage factors"}),
    damageName);

// 0.60 / 1305.50 is 0.046 %.
TEST(dcc_check, finds_uncertainties_below_the_capability) {
  const std::string xml = certificateXml(test::sampleCertificate());
  EXPECT_TRUE(checkCertificate(xml, "", {.cmcPercent = 0.045}).empty());
  const auto found = checkCertificate(xml, "", {.cmcPercent = 0.048});
  ASSERT_EQ(found.size(), 2U);  // in both units
  EXPECT_EQ(found[1].what, "the uncertainty 0.6 of value 2 is below the CMC of 0.048 %");
}

std::vector<std::string> complaintsOf(const std::string& data) {
  std::vector<std::string> list;
  for (const Violation& each : checkCertificate(
           "<digitalCalibrationCertificate>" + data + "</digitalCalibrationCertificate>", ""))
    list.push_back(each.what);
  return list;
}

TEST(dcc_check, reads_single_values) {
  EXPECT_THAT(complaintsOf("<real><value>5</value><unit>\\metre</unit></real>"), IsEmpty());
  EXPECT_THAT(complaintsOf("<real><value>INF</value><unit>banana</unit></real>"),
              ElementsAre("'INF' is not a finite value", "'banana' is not an SI unit"));
  EXPECT_THAT(complaintsOf("<real><unit>\\metre</unit></real>"), ElementsAre("there is no value"));
  EXPECT_THAT(complaintsOf("<complex><valueReal>1</valueReal><valueImag>NaN</valueImag></complex>"),
              ElementsAre("'NaN' is not a finite value", "there is no unit"));
}

TEST(dcc_check, reads_uncertainties_in_the_earlier_form) {
  const std::string value = "<real><value>5</value><unit>\\metre</unit><expandedUnc>";
  EXPECT_THAT(complaintsOf(value + "<uncertainty>1</uncertainty><coverageFactor>2</coverageFactor>"
                                   "<coverageProbability>0.95</coverageProbability></expandedUnc>"
                                   "</real>"),
              IsEmpty());
  EXPECT_THAT(complaintsOf(value + "<uncertainty>NaN</uncertainty></expandedUnc></real>"),
              ElementsAre("'NaN' is not a finite uncertainty",
                          "an expanded uncertainty has no coverage factor",
                          "an expanded uncertainty has no coverage probability"));
}

TEST(dcc_check, takes_the_unit_of_a_list_for_its_values) {
  EXPECT_THAT(complaintsOf("<realList><listUnit>\\metre</listUnit><real><value>5</value></real>"
                           "</realList>"),
              IsEmpty());
  EXPECT_THAT(complaintsOf("<realList><listUnit>foot</listUnit><real><value>5</value></real>"
                           "</realList>"),
              ElementsAre("'foot' is not an SI unit"));
}

TEST(dcc_check, names_the_line) {
  const auto found = checkAfter("1305.50", "x");
  const std::string xml = certificateXml(test::sampleCertificate());
  const auto at = xml.find("1305.50");
  const auto line =
      1 + std::count(xml.begin(), xml.begin() + static_cast<std::ptrdiff_t>(at), '\n');
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].line, static_cast<std::size_t>(line));
}

TEST(dcc_check, refuses_what_is_not_a_certificate) {
  EXPECT_THROW((void)checkCertificate("<a/>", ""), calibration::BadData);
  EXPECT_THROW((void)checkCertificate("", ""), calibration::BadData);
  EXPECT_THROW((void)checkCertificate("{}", ""), calibration::BadData);
}

}  // namespace
}  // namespace pelmora::dcc
