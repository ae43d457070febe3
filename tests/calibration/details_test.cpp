// What certificates state in addition to the measured numbers: stored, restored and refused.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/calibration/service_fixture.h"

#include <pelmora/own_tables.h>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class CertificateDetails : public ServiceTest {
 protected:
  CertificateDetails() : db_(lab()), meter_(db_.registerMeter("M1")) {}

  [[nodiscard]] std::string refusal(const Details& changes) {
    const auto failure = failureOf<BadData>([&] { db_.setDetails(meter_, changes); });
    return std::string(failure.what()) + "; " + failure.remedy();
  }

  Database db_;
  Meter meter_;
};

TEST_F(CertificateDetails, are_kept_as_they_are_written_with_known_units) {
  db_.setDetails(meter_, {{"maker", " O'Neil & \"Sons\" "},
                          {"diameter", "25.40mm"},
                          {"ambient-temperature", "70.5 °F"},
                          {"strouhal-unit", "1/gal"},
                          {"date", "2024-02-29"},
                          {"remark", "first\nsecond"}});
  const Details kept = open(path()).details(meter_);
  EXPECT_THAT(kept,
              ElementsAre(Pair("ambient-temperature", "70.5 F"), Pair("date", "2024-02-29"),
                          Pair("diameter", "25.40 mm"), Pair("maker", "O'Neil & \"Sons\""),
                          Pair("remark", "first\nsecond"), Pair("strouhal-unit", "pulses/gal")));
}

TEST_F(CertificateDetails, replace_the_named_ones_and_clear_the_empty_ones) {
  db_.setDetails(meter_, {{"maker", "A"}, {"model", "T-1"}});
  EXPECT_NE(db_.setDetails(meter_, {{"maker", ""}, {"size", "1 in"}}), 0);
  EXPECT_THAT(db_.details(meter_), ElementsAre(Pair("model", "T-1"), Pair("size", "1 in")));
}

TEST_F(CertificateDetails, of_the_meter_hold_for_later_calibrations) {
  db_.setDetails(meter_, {{"maker", "A"}, {"customer", "C"}, {"certificate-number", "1"}});
  const Meter second = db_.registerMeter("M1", true);
  EXPECT_THAT(db_.details(second), ElementsAre(Pair("customer", "C"), Pair("maker", "A")));
  db_.setDetails(second, {{"customer", "D"}, {"maker", ""}, {"certificate-number", "2"}});
  EXPECT_THAT(db_.details(second),
              ElementsAre(Pair("certificate-number", "2"), Pair("customer", "D")));
  EXPECT_EQ(db_.details(meter_).at("customer"), "C");
}

TEST_F(CertificateDetails, of_the_laboratory_hold_for_the_database) {
  EXPECT_THAT(db_.laboratory(), IsEmpty());
  db_.setLaboratory({{"name", "Flow lab"}, {"country", "DE"}, {"nominal-flow-column", "v14"}});
  EXPECT_THAT(open(path()).laboratory(),
              ElementsAre(Pair("country", "DE"), Pair("name", "Flow lab"),
                          Pair("nominal-flow-column", "V14")));
}

TEST_F(CertificateDetails, are_removed_and_restored_with_their_calibration) {
  db_.setDetails(meter_, {{"maker", "A"}});
  const HistoryEntry removed = db_.remove(meter_);
  EXPECT_EQ(removed.rows.at("pelmora_detail"), 1U);
  EXPECT_THAT(db_.details(db_.registerMeter("M1")), IsEmpty());
  db_.remove(db_.meter("M1"));
  db_.restore(removed.id);
  EXPECT_THAT(db_.details(db_.meter("M1")), ElementsAre(Pair("maker", "A")));
}

TEST_F(CertificateDetails, come_back_from_the_history) {
  db_.setDetails(meter_, {{"maker", "A"}});
  const HistoryEntryId entry = db_.setDetails(meter_, {{"maker", "B"}});
  db_.restore(entry);
  EXPECT_EQ(db_.details(meter_).at("maker"), "A");
}

TEST_F(CertificateDetails, that_belong_to_no_calibration_are_found_and_repaired) {
  db_.setDetails(meter_, {{"maker", "A"}});
  db_.connection()->execute("Delete * from meter where ID=" + std::to_string(meter_.id));
  const auto orphans = [&] {
    const auto findings = db_.examine();
    return std::ranges::count_if(
        findings, [](const Finding& f) { return f.id == "orphaned-rows" && f.count == 1; });
  };
  EXPECT_EQ(orphans(), 1);
  (void)db_.repair();
  EXPECT_EQ(orphans(), 0);
}

TEST_F(CertificateDetails, are_refused_where_they_are_not_of_their_kind) {
  EXPECT_THAT(refusal({{"makr", "A"}}), HasSubstr("did you mean 'maker'"));
  EXPECT_THAT(refusal({{"name", "A"}}), HasSubstr("is a detail of the laboratory"));
  EXPECT_THAT(refusal({{"date", "2026-02-29"}}), HasSubstr("is not a valid date"));
  EXPECT_THAT(refusal({{"date", "20.11.2026"}}), HasSubstr("write a day as 2026-11-20"));
  EXPECT_THAT(refusal({{"customer-country", "Germany"}}), HasSubstr("two capital letters"));
  EXPECT_THAT(refusal({{"ambient-temperature", "21.5"}}), HasSubstr("has no unit"));
  EXPECT_THAT(refusal({{"ambient-temperature", "21.5 bar"}}), HasSubstr("is a unit of pressure"));
  EXPECT_THAT(refusal({{"strouhal-unit", "banana"}}), HasSubstr("is not a known unit"));
  EXPECT_THAT(refusal({{"maker", "a\tb"}}), HasSubstr("character that cannot be shown"));
  EXPECT_THAT(refusal({{"maker", "\xFF"}}), HasSubstr("character that cannot be shown"));
  // A server's curve database has all tables from the start.
  EXPECT_EQ(hasTable(db_.connection(), "pelmora_detail"), pelmora::test::isRunOnServer());
  const auto column = failureOf<BadData>([&] {
    db_.setLaboratory({{"nominal-flow-column", "V38"}});
  });
  EXPECT_THAT(column.remedy(), HasSubstr("V1 to V37"));
}

}  // namespace
}  // namespace pelmora::calibration::test
