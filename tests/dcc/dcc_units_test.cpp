// SPDX-License-Identifier: MIT
#include "dcc/dcc_units.h"

#include "units/unit.h"

#include <gtest/gtest.h>

namespace pelmora::dcc {
namespace {

TEST(dcc_units, exist_for_every_unit_of_ours) {
  for (const units::Unit& unit : units::knownUnits()) {
    ASSERT_TRUE(isCertificateUnit(unit.symbol)) << unit.symbol;
    const CertificateUnit& stated = certificateUnit(unit.symbol);
    EXPECT_TRUE(isSiUnit(stated.si)) << stated.si;
    EXPECT_EQ(units::unitOf(stated.convertedTo).quantity, unit.quantity);
    // The notation is that of the unit in which the numbers are.
    EXPECT_EQ(stated.si, certificateUnit(stated.convertedTo).si) << unit.symbol;
  }
}

TEST(dcc_units, are_names_prefixes_and_powers) {
  EXPECT_TRUE(isSiUnit("\\milli\\metre\\tothe{2}\\second\\tothe{-1}"));
  EXPECT_TRUE(isSiUnit("\\kilo\\gram\\per\\metre\\tothe{3}"));
  for (const char* unit :
       {"", "banana", "\\banana", "metre", "\\milli", "\\tothe{2}", "\\milli\\kilo\\metre",
        "\\metre\\tothe{x}", "\\metre\\tothe{2", "\\metre\\tothe{2}\\tothe{2}", "\\metre second"}) {
    EXPECT_FALSE(isSiUnit(unit)) << unit;
  }
}

}  // namespace
}  // namespace pelmora::dcc
