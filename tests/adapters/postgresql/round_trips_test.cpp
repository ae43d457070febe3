// How often the server is asked. On a slow network that is what an operation costs.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"
#include "store/meter_registry.h"
#include "tests/adapters/postgresql/server_test.h"

#include <pelmora/calibration/database.h>

#include <gtest/gtest.h>

#include <array>

namespace pelmora {
namespace {

using test::ServerCurves;

class round_trips : public test::ServerTest {
 protected:
  template <class Action>
  static std::size_t of(Action&& action) {
    const std::size_t before = postgres::requestsSent();
    action();
    return postgres::requestsSent() - before;
  }
  static void addPoints(const ServerCurves& curves, std::int64_t count) {
    const auto rows = curves.connection->openRecordset(
        "Select * from raw1 where seriesID = 1", CursorType::dynamic, LockType::batchOptimistic);
    constexpr std::array<std::string_view, 3> fields{"seriesID", "Roshko", "Strouhal"};
    for (std::int64_t i = 0; i < count; ++i) {
      rows->addRow(fields, std::array<Value, 3>{std::int64_t{1}, static_cast<double>(i), 0.25});
    }
    rows->updateBatch();
  }
};

TEST_F(round_trips, of_statements_are_one_each) {
  const ServerCurves curves;
  EXPECT_EQ(curves.count("raw1"), 0);  // all tables are known now
  EXPECT_EQ(of([&] { (void)curves.select("Select * from meter where SerialNumber = 'x'"); }), 1U);
  EXPECT_EQ(of([&] { curves.execute("Delete from raw1 where seriesID = 5"); }), 1U);
  EXPECT_EQ(of([&] { curves.execute("Insert into series (name, meterid) VALUES ('a', 1)"); }), 1U);
}

TEST_F(round_trips, of_points_do_not_grow_with_their_number) {
  const ServerCurves curves;
  EXPECT_EQ(curves.count("raw1"), 0);
  EXPECT_EQ(of([&] { addPoints(curves, 40); }), 2U);  // the record set's rows, and the new ones
  const std::size_t many = of([&] { addPoints(curves, 1000); });
  EXPECT_LE(many, 5U);
  EXPECT_EQ(of([&] { addPoints(curves, 32000); }), many);
  EXPECT_EQ(curves.count("raw1"), 33040);
}

// Every run of a meter is looked at, to warn of a wrong unit.
TEST_F(round_trips, of_stored_points_do_not_grow_with_the_series_of_the_meter) {
  const ServerCurves curves;
  calibration::Database lab = calibration::open(curves.path);
  const calibration::Meter meter = lab.registerMeter("M1");
  const PointArray points{{1, 2}, {2, 2.1}};
  const auto store = [&](int number) {
    (void)lab.storeRaw(meter, "S" + std::to_string(number), 1, points);
  };
  store(0);
  const std::size_t few = of([&] { store(1); });
  for (int i = 2; i < 9; ++i) store(i);
  EXPECT_EQ(of([&] { store(9); }), few);
}

TEST_F(round_trips, of_a_new_series_are_few) {
  const ServerCurves curves;
  EXPECT_EQ(curves.count("series"), 0);
  EXPECT_LE(
      of([&] { (void)findOrAddSeriesRow(*curves.connection, NameText::quoted("Rotor A"), 1); }),
      5U);
}

}  // namespace
}  // namespace pelmora
