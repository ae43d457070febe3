// What the file of a stand's uncertainty says, and what is refused with its line.
// SPDX-License-Identifier: MIT
#include "uncertainty/stand_file.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace pelmora::uncertainty {
namespace {

constexpr const char* whole = R"(; Stand 3, liquids
[stand]
name = Stand 3
cmc = 0.05 %
quotient cmc = 0.02 %
probability = 95 %

[flow: master meter]
expanded = 0.04 %
k = 2
type = A
degrees of freedom = 60

[viscosity]
half-width = 0.3 cSt
distribution = triangular

[temperature]
half-width = 0.2 C
distribution = U-shaped
viscosity change = -2.1 %/C

[frequency]
standard = 20 ppm
rotors = independent
[reproducibility]
standard = 0.02 %
)";

TEST(stand_file, says_what_the_stand_contributes) {
  const StandUncertainty stand = readStandUncertainty(whole, "stand3.ini");
  EXPECT_EQ(stand.name, "Stand 3");
  EXPECT_EQ(stand.cmcPercent, 0.05);
  EXPECT_EQ(stand.quotientCmcPercent, 0.02);
  EXPECT_DOUBLE_EQ(stand.probability, 0.95);
  ASSERT_EQ(stand.components.size(), 5U);

  const Component& flow = stand.components[0];
  EXPECT_EQ(flow.cause, Cause::flow);
  EXPECT_EQ(flow.label, "master meter");
  EXPECT_DOUBLE_EQ(flow.standard.value, 0.02);
  EXPECT_EQ(flow.standard.unit->symbol, "%");
  EXPECT_EQ(flow.evaluation, Evaluation::a);
  EXPECT_EQ(flow.degreesOfFreedom, 60);
  EXPECT_EQ(flow.betweenRotors, 1);
  EXPECT_EQ(flow.betweenCalibrations, 1);

  const Component& viscosity = stand.components[1];
  EXPECT_DOUBLE_EQ(viscosity.standard.value, 0.3 / std::sqrt(6.0));
  EXPECT_EQ(viscosity.standard.unit->symbol, "cSt");

  const Component& temperature = stand.components[2];
  EXPECT_DOUBLE_EQ(temperature.standard.value, 0.2 / std::sqrt(2.0));
  EXPECT_NEAR(temperature.viscosityChange, -0.021 / 1.8, 1e-15);

  EXPECT_EQ(stand.components[3].betweenRotors, 0);
  EXPECT_EQ(stand.components[4].betweenRotors, 0);
  EXPECT_EQ(stand.components[4].betweenCalibrations, 0);
}

TEST(stand_file, may_come_from_another_system) {
  std::string text = "\xEF\xBB\xBF";
  for (const char c : std::string(whole))
    text += c == '\n' ? std::string("\r\n") : std::string(1, c);
  EXPECT_EQ(readStandUncertainty(text, "").components.size(), 5U);
}

TEST(stand_file, may_be_written_in_toml) {
  const StandUncertainty read = readStandUncertainty(
      "# our stand\n"
      "[stand] # of 2026\n"
      "name = 'Stand # 3'\n"
      "cmc = \"0.02 %\" # accredited\n"
      "[flow.\"master meter\"]\n"
      "expanded = \"0.06 %\"\n"
      "k = 2 # normal\n"
      "degrees_of_freedom = 30\n"
      "[viscosity]\n"
      "half_width = '1 %'\n"
      "distribution = 'rectangular'\n",
      "stand.toml");
  EXPECT_EQ(read.name, "Stand # 3");
  EXPECT_EQ(read.cmcPercent, 0.02);
  ASSERT_EQ(read.components.size(), 2U);
  EXPECT_EQ(read.components[0].label, "master meter");
  EXPECT_EQ(read.components[0].degreesOfFreedom, 30);
  EXPECT_NEAR(read.components[0].standard.value, 0.03, 1e-15);
  EXPECT_EQ(read.components[1].distribution, Distribution::rectangular);
  EXPECT_DOUBLE_EQ(read.components[1].standard.value, 1 / std::sqrt(3.0));
}

TEST(stand_file, keeps_a_number_sign_in_a_name_without_quotes) {
  for (const std::string name : {"Stand #3", "3rd stand #2", "-1 # basement"}) {
    const std::string text = "[stand]\nname = " + name + "\n[flow]\nstandard = 0.1 % # yearly\n";
    EXPECT_EQ(readStandUncertainty(text, "").name, name);
  }
}

TEST(stand_file, ends_a_section_at_its_own_bracket) {
  const StandUncertainty read = readStandUncertainty(
      "[stand] # of [2026]\n"
      "name = S\n"
      "[flow.\"meter [2] # old\"] # replaces [flow]\n"
      "standard = 0.1 %\n"
      "[flow: master's meter [3]]\n"
      "standard = 0.1 %\n",
      "");
  EXPECT_EQ(read.name, "S");
  ASSERT_EQ(read.components.size(), 2U);
  EXPECT_EQ(read.components[0].label, "meter [2] # old");
  EXPECT_EQ(read.components[1].label, "master's meter [3]");
}

TEST(stand_file, keeps_colons_and_points_in_a_label) {
  const StandUncertainty read = readStandUncertainty(
      "[flow.\"master: 2\"]\nstandard = 0.1 %\n[flow: v1.2]\nstandard = 0.1 %\n", "");
  ASSERT_EQ(read.components.size(), 2U);
  EXPECT_EQ(read.components[0].label, "master: 2");
  EXPECT_EQ(read.components[1].label, "v1.2");
}

TEST(stand_file, takes_two_standard_deviations_by_default) {
  EXPECT_EQ(readStandUncertainty("[flow]\nstandard = 0.1 %\n", "").probability,
            twoSigmaProbability);
  const char* text = "[stand]\nprobability = 95.45 %\n[flow]\nstandard = 0.1 %\n";
  EXPECT_EQ(readStandUncertainty(text, "").probability, twoSigmaProbability);
}

std::string refusal(const std::string& text) {
  try {
    (void)readStandUncertainty(text, "s.ini");
  } catch (const calibration::BadData& failure) {
    EXPECT_EQ(failure.where(), "s.ini");
    EXPECT_FALSE(failure.remedy().empty());
    return std::string(failure.what()) + "; " + failure.remedy();
  }
  return "nothing was refused";
}

struct Refused {
  const char* name;
  std::string text;
  const char* complaint;
};

class stand_file_refusals : public testing::TestWithParam<Refused> {};

TEST_P(stand_file_refusals, name_line_thing_and_remedy) {
  EXPECT_EQ(refusal(GetParam().text), GetParam().complaint);
}

std::string refusalName(const testing::TestParamInfo<Refused>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    of, stand_file_refusals,
    testing::Values(
        Refused{"section", "[flow]\nstandard = 0.1 %\n[viscositty]\nstandard = 0.1 %\n",
                "line 3: [viscositty] is not a section of this file; did you mean 'viscosity'?"},
        Refused{"setting", "[flow]\nstandart = 0.1 %\n",
                "line 2: 'standart': [flow] has no such setting; did you mean 'standard'?"},
        Refused{"stand_setting", "[stand]\ncmd = 0.1 %\n",
                "line 2: 'cmd': [stand] has no such setting; did you mean 'cmc'?"},
        Refused{"unit", "[flow]\nstandard = 0.1 C\n",
                "line 1: [flow] is stated in 'C'; write it in % or in a unit of volume flow"},
        Refused{"temperature_unit", "[temperature]\nstandard = 0.1 %\n",
                "line 1: [temperature] is stated in '%'; write it in C, K or F"},
        Refused{"relative_only", "[model]\nstandard = 0.1 gpm\n",
                "line 1: [model] is stated in 'gpm'; write it in %, relative to the Strouhal "
                "number"},
        Refused{"no_unit", "[flow]\n\nstandard = 0.1\n",
                "line 3: 'standard': '0.1' has no unit; write the unit behind the number"},
        Refused{"comma", "[flow]\nstandard = abc %\n",
                "line 2: 'standard': 'abc %' does not start with a number; write a number with a "
                "decimal point and its unit, such as 0.05 %"},
        Refused{"negative", "[flow]\nstandard = -0.1 %\n",
                "line 2: 'standard': an uncertainty is never negative; write 0 or more"},
        Refused{"two_ways", "[flow]\nstandard = 0.1 %\nhalf-width = 0.1 %\n",
                "line 3: 'half-width': 'standard' is given as well; keep one of them"},
        Refused{"no_way", "[flow]\ntype = B\n",
                "line 1: [flow] states no uncertainty; write standard, expanded or half-width = "
                "... %"},
        Refused{"no_k", "[flow]\nexpanded = 0.1 %\n",
                "line 2: 'expanded': its coverage factor is missing; add a line such as k = 2"},
        Refused{"k_alone", "[flow]\nstandard = 0.1 %\nk = 2\n",
                "line 3: 'k': only an expanded uncertainty has one; leave it out"},
        Refused{"half_width_of_normal", "[flow]\nhalf-width = 0.1 %\n",
                "line 2: 'half-width': a normal distribution has no half-width; add distribution "
                "= rectangular, triangular or U-shaped"},
        Refused{"distribution", "[flow]\nstandard = 1 %\ndistribution = rectangle\n",
                "line 3: 'distribution': 'rectangle' is not one of its values; did you mean "
                "'rectangular'?"},
        Refused{"type_a", "[flow]\nstandard = 1 %\ntype = A\n",
                "line 3: 'type': a type A evaluation has degrees of freedom; add a line such as "
                "degrees of freedom = 9"},
        Refused{"degrees", "[flow]\nstandard = 1 %\ndegrees of freedom = 0\n",
                "line 3: 'degrees of freedom': '0' is too small; write 1 or more"},
        Refused{"degrees_text", "[flow]\nstandard = 1 %\ndegrees of freedom = many\n",
                "line 3: 'degrees of freedom': 'many' is not a number; write a plain number with "
                "a decimal point"},
        Refused{"change", "[temperature]\nstandard = 1 C\nviscosity change = 2 %\n",
                "line 3: 'viscosity change': '2 %' is not a change per degree; write it like 2.1 "
                "%/C"},
        Refused{"probability", "[stand]\nprobability = 0.95 %\n",
                "line 2: 'probability': '0.95 %' is not usual; write 50 % to 99.99 %, usually "
                "95 % or 95.45 %"},
        Refused{"cmc", "[stand]\ncmc = 0.1 C\n",
                "line 2: 'cmc': '0.1 C' is not relative; write it in %"},
        Refused{"twice", "[flow]\nstandard = 1 %\n[flow]\nstandard = 1 %\n",
                "line 3: section 'flow' is already in line 1; remove one of them, or give it "
                "another name"},
        Refused{"setting_twice", "[flow]\nstandard = 1 %\nstandard = 2 %\n",
                "line 3: setting 'standard' is already in line 2; remove one of them, or "
                "give it another name"},
        Refused{"outside", "standard = 1 %\n",
                "line 1: 'standard' comes before the first section; write [stand] or the "
                "section that it belongs to above it"},
        Refused{"bracket", "[flow\n", "line 1: '[flow' has no closing bracket; write [SECTION]"},
        Refused{"no_value", "[flow]\nstandard =\n",
                "line 2: 'standard' has no value; write NAME = VALUE, or leave the line out"},
        Refused{"no_name", "[flow]\n= 3\n",
                "line 2: there is no name; write NAME = VALUE, or leave the line out"},
        Refused{"neither", "[flow]\nhello\n",
                "line 2: 'hello' is neither a section nor a setting; write [SECTION] or NAME = "
                "VALUE"},
        Refused{"encoding", "[flow]\nstandard = 1 \xB0\n",
                "line 2: the text is not UTF-8; save the file as plain UTF-8 text"},
        Refused{"control", std::string("[flow]\nstandard = 1 %\0\n", 24),
                "line 2: there is a control character; save the file as plain UTF-8 text"},
        Refused{"empty", "; nothing\n",
                "the file states no uncertainty; add sections such as [flow], [viscosity] and "
                "[frequency]"}),
    refusalName);

}  // namespace
}  // namespace pelmora::uncertainty
