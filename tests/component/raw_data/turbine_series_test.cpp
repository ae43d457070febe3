// Series derived from the example stand data against values computed elsewhere.
// SPDX-License-Identifier: MIT
#include "component/import_caldb.h"
#include "component/raw_points.h"
#include "tests/support/curve_database.h"
#include "tests/support/places.h"

#include <map>
#include <sstream>

namespace pelmora::test {
namespace {

// The expected values carry 12 significant digits: half a unit of the last one is at most 5E-12.
constexpr double tolerance = 1E-9;

const std::string folder = test::sourceFolder() + "/examples/data/";

using Record = std::map<std::string, std::string>;

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream stream(line + ",");
  for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
  return fields;
}

std::vector<Record> truthOf(const std::string& job) {
  std::ifstream file(folder + "stand-dual-rotor-truth.csv");
  std::string line;
  std::getline(file, line);
  const std::vector<std::string> names = fieldsOf(line);
  std::vector<Record> records;
  while (std::getline(file, line)) {
    const std::vector<std::string> fields = fieldsOf(line);
    if (fields.front() != job) continue;
    Record record;
    for (std::size_t i = 0; i < names.size(); ++i) record[names[i]] = fields[i];
    records.push_back(record);
  }
  return records;
}

class turbine_series : public CurveDatabaseTest, public testing::WithParamInterface<std::string> {
 protected:
  void importJob(bool both) {
    CalibrationImport wanted{"M1", {GetParam()}, {""}, {"fluid"}, {"Ada"}};
    wanted.Create_RotorA = true;
    wanted.Create_RotorB = wanted.Create_RotorAB = wanted.Create_Ratio = both;
    (void)importCaldb(context, wanted, openDatabase(folder + "stand-dual-rotor.csv"), nullptr);
    EXPECT_THAT(boxes, testing::IsEmpty());
  }
  void expectSeries(const std::string& series, const std::string& roshko,
                    const std::string& strouhal) {
    const std::vector<Record> truth = truthOf(GetParam());
    const MeterInfo record = GetRaw(context, series, "M1", 1, nullptr, -1);
    const PointArray& points = record.Series.at(0).Raw[0].Points;
    ASSERT_GE(truth.size(), 12U);
    ASSERT_EQ(points.size(), truth.size()) << series;
    for (std::size_t i = 0; i < truth.size(); ++i) {
      expectValue(points(i, 0), truth[i].at(roshko), series, i);
      expectValue(points(i, 1), truth[i].at(strouhal), series, i);
    }
  }

 private:
  static void expectValue(double actual, const std::string& expected, const std::string& series,
                          std::size_t point) {
    const double value = std::stod(expected);
    EXPECT_NEAR(actual, value, tolerance * std::abs(value)) << series << " point " << point;
  }
};

std::string nameOf(const testing::TestParamInfo<std::string>& info) { return "job_" + info.param; }

class turbine_series_of_both_rotors : public turbine_series {};

TEST_P(turbine_series_of_both_rotors, are_those_computed_elsewhere) {
  importJob(true);
  expectSeries("Rotor A", "roshko_a", "strouhal_a");
  expectSeries("Rotor B", "roshko_b", "strouhal_b");
  expectSeries("Rotor Sum", "roshko_sum", "quotient_a_over_b");
  expectSeries("Ratio", "roshko_sum", "quotient_b_over_a");
}

INSTANTIATE_TEST_SUITE_P(of, turbine_series_of_both_rotors,
                         testing::Values("1001", "1002", "1007", "1008", "1009"), nameOf);

class turbine_series_of_rotor_A_alone : public turbine_series {};

TEST_P(turbine_series_of_rotor_A_alone, are_those_computed_elsewhere) {
  importJob(false);
  expectSeries("Rotor A", "roshko_a", "strouhal_a");
}

INSTANTIATE_TEST_SUITE_P(of, turbine_series_of_rotor_A_alone, testing::Values("1003", "1005"),
                         nameOf);

class turbine_series_of_rotor_B_alone : public turbine_series {};

TEST_P(turbine_series_of_rotor_B_alone, come_from_the_columns_of_rotor_A) {
  importJob(false);
  expectSeries("Rotor A", "roshko_b", "strouhal_b");
}

INSTANTIATE_TEST_SUITE_P(of, turbine_series_of_rotor_B_alone, testing::Values("1004", "1006"),
                         nameOf);

}  // namespace
}  // namespace pelmora::test
