// A host that calls back into the component while an operation of it runs.
// SPDX-License-Identifier: MIT
#include "tests/support/host_test.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/stand_export.h"

#include <optional>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Fit {
  PointArray curve;
  bool isEmpty = true;
};

class re_entrance : public HostTest {
 protected:
  re_entrance() {
    const auto object = newObject();
    object->setMeterSN("M1");
    object->SetRaw("S", "M1", first, 0, false);
    object->SetRaw("S", "M1", ripplingPoints(20, 500, 20, 1000), 1, false);
    object->SetRaw("T", "M1", second, 0, false);
  }

  static Fit fit(RawData& data, const std::string& series) {
    Fit result;
    double xMin = 10;
    double xMax = 1000;
    result.curve = data.determineFittedCurve(series, "M1", result.isEmpty, xMin, xMax, "Roshko",
                                             "Strouhal", false);
    return result;
  }
  // Runs `action` once, at the first status text that begins so.
  static void once(RawData& data, const std::string& beginning,
                   const std::function<void()>& action) {
    data.StatusUpdate = [done = std::make_shared<bool>(false), beginning,
                         action](const std::string& text) {
      if (*done || !text.starts_with(beginning)) return;
      *done = true;
      action();
    };
  }
  ConnectionPtr stand() {
    std::ofstream(scratch.file("stand.csv")) << standHeader() << '\n' << exportLine("1001") << '\n';
    return openDatabase(scratch.file("stand.csv"));
  }

  const PointArray first = ripplingPoints(10, 1000, 20, 1000);
  const PointArray second = ripplingPoints(5, 2000, 25, 500);
};

TEST_F(re_entrance, a_fit_in_a_fit_leaves_both_curves_right) {
  const PointArray aloneS = fit(*newObject(), "S").curve;
  const PointArray aloneT = fit(*newObject(), "T").curve;
  const auto data = newObject();
  Fit inner;
  once(*data, "Started fitting", [&] { inner = fit(*data, "T"); });
  const Fit outer = fit(*data, "S");
  EXPECT_EQ(outer.curve, aloneS);
  EXPECT_EQ(inner.curve, aloneT);
  EXPECT_THAT(boxes, IsEmpty());
}

// Whatever another fit left in the shared record meanwhile: the fit that ends last fills it, all of
// it.
TEST_F(re_entrance, the_fit_that_ends_last_is_the_last_fit) {
  const auto data = newObject();
  fit(*data, "S");
  const PointArray merged = data->LastMergedArray();
  const std::string details = data->DataFitResultDetails;
  for (const std::string event : {"Determining fitted data", "Sorting raw1", "Sorting merged",
                                  "Started fitting", "Determined bestfit"}) {
    const auto object = newObject();
    once(*object, event, [&] { fit(*object, "T"); });
    const Fit outer = fit(*object, "S");
    EXPECT_EQ(object->LastFittedArray(), outer.curve) << event;
    EXPECT_EQ(object->LastMergedArray(), merged) << event;
    EXPECT_EQ(object->DataFitResultDetails, details) << event;
    ASSERT_TRUE(object->SetLastFitted(false)) << event;
    const MeterInfo stored = object->GetAllInfo("S", "M1");
    ASSERT_EQ(stored.Series.size(), 1U);
    EXPECT_EQ(stored.Series.front().Merged, merged) << event;
    EXPECT_EQ(stored.Series.front().Summary, details) << event;
  }
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, an_object_made_in_a_fit_does_not_disturb_it) {
  const auto data = newObject();
  const PointArray alone = fit(*data, "S").curve;
  const PointArray merged = data->LastMergedArray();
  for (const std::string event : {"Determining fitted data", "Sorting merged", "Started fitting"}) {
    once(*data, event, [] { const RawData other; });
    EXPECT_EQ(fit(*data, "S").curve, alone) << event;
    EXPECT_EQ(data->LastFittedArray(), alone) << event;
    EXPECT_EQ(data->LastMergedArray(), merged) << event;
    EXPECT_EQ(data->dbDir().FileName, "Pelmora.mdb")
        << event;  // creating an object resets the location
    data->dbDirSetByString(path);
  }
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, raw_points_stored_in_a_fit_are_there) {
  const auto data = newObject();
  bool written = false;
  once(*data, "Started fitting", [&] {
    written = data->SetRaw("U", "M1", {{1, 2}, {3, 4}}, 0, false);
  });
  EXPECT_FALSE(fit(*data, "S").isEmpty);
  EXPECT_TRUE(written);
  const MeterInfo read = data->GetRaw("U", "M1", 1);
  ASSERT_EQ(read.Series.size(), 1U);
  EXPECT_EQ(read.Series.front().Raw[0].Points, (PointArray{{1, 2}, {3, 4}}));
}

TEST_F(re_entrance, an_object_made_in_a_pump_of_a_sort_does_not_disturb_a_fit) {
  const auto data = newObject();
  const PointArray alone = fit(*data, "S").curve;
  platform().pumpMessages = [] { const RawData other; };
  EXPECT_EQ(fit(*data, "S").curve, alone);
  EXPECT_EQ(data->LastFittedArray(), alone);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, an_object_made_in_an_import_sends_the_copy_elsewhere) {
  const auto data = newObject();
  platform().pumpMessages = [] { const RawData other; };
  data->importCaldb("M1", stand(), {"1001"}, {""}, {"Oil"}, {"Me"}, true);
  EXPECT_THAT(boxes, ElementsAre(StartsWith("Error in RawData:copyCaldb\r\n")));
  EXPECT_EQ(data->dbDir().FileName, "Pelmora.mdb");
}

TEST_F(re_entrance, a_fit_in_the_pumps_of_an_import_disturbs_neither) {
  const auto data = newObject();
  const PointArray alone = fit(*data, "S").curve;
  std::optional<Fit> inner;
  platform().pumpMessages = [&] {
    if (inner) return;
    inner.emplace();
    *inner = fit(*data, "S");
  };
  const MeterInfo imported =
      data->importCaldb("M1", stand(), {"1001"}, {""}, {"Oil"}, {"Me"}, true);
  platform().pumpMessages = nullptr;
  ASSERT_TRUE(inner.has_value());
  EXPECT_EQ(inner->curve, alone);
  ASSERT_EQ(imported.Series.size(), 4U);
  const MeterInfo derived = data->GetRaw("Rotor A", "M1", 1);
  ASSERT_EQ(derived.Series.size(), 1U);
  EXPECT_EQ(derived.Series.front().Raw[0].Points.size(), 1U);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, a_pump_that_throws_ends_the_copy_in_its_box) {
  const auto data = newObject();
  platform().pumpMessages = [] { throw 1; };
  EXPECT_FALSE(data->copyCaldb(1, "1001", "", stand(), openDatabase(path)));
  EXPECT_THAT(boxes,
              ElementsAre("Error in RawData:copyCaldb\r\nInvalid procedure call or argument"));
}

TEST_F(re_entrance, a_message_box_that_throws_answers_without_change) {
  const auto data = newObject();
  platform().messageBox = [](const std::string&, int, const std::string&) -> int { throw 1; };
  bool isEmpty = false;
  double xMin = 1;
  double xMax = 1e6;
  std::vector<std::string> texts;
  data->StatusUpdate = [&](const std::string& text) { texts.push_back(text); };
  EXPECT_TRUE(data->determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "X", "Y", false).empty());
  EXPECT_TRUE(isEmpty);
  EXPECT_EQ(texts.back(), "Aborted CurveFit MIN/MAX out of Raw range");
}

TEST_F(re_entrance, an_operator_may_be_asked_while_another_fit_runs_in_the_box) {
  const auto data = newObject();
  const PointArray aloneT = fit(*data, "T").curve;
  Fit inner;
  platform().messageBox = [&](const std::string& text, int, const std::string&) {
    boxes.push_back(text);
    inner = fit(*data, "T");
    return 4;  // Retry
  };
  bool isEmpty = true;
  double xMin = 1;
  double xMax = 1e6;
  const PointArray curve =
      data->determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "Roshko", "Strouhal", false);
  EXPECT_FALSE(isEmpty);
  EXPECT_EQ(inner.curve, aloneT);
  EXPECT_EQ(xMin, 10);
  EXPECT_EQ(data->LastFittedArray(), curve);
  EXPECT_THAT(data->DataFitResultDetails, HasSubstr("Series Name: S\r\n"));
  EXPECT_THAT(boxes, ElementsAre(StartsWith("Min/Max values")));
}

// Long enough to live on the heap, where a text that is gone is noticed.
const std::string longName = "a name that is longer than any text that is kept inside its object";

TEST_F(re_entrance, arguments_may_be_fields_of_an_object_that_is_destroyed) {
  auto data = newObject();
  data->ExternalID = longName;
  once(*data, "Saving meter", [&] { data.reset(); });
  EXPECT_NE(data->setMeterSN(data->ExternalID), 0);
  EXPECT_EQ(newObject()->findMeterInfo(longName).SerialNumber, longName);

  data = newObject();
  data->DataFitResultDetails = longName;
  once(*data, "Removing old fitted", [&] { data.reset(); });
  EXPECT_TRUE(data->SetFitted("S", "M1", {}, {}, data->DataFitResultDetails, false));
  EXPECT_EQ(newObject()->getFittedCurve("S", "M1").Series.front().Summary, longName);

  data = newObject();
  data->ExternalID = longName;
  once(*data, "Querying series name", [&] { data.reset(); });
  EXPECT_TRUE(data->SetRaw(data->ExternalID, "M1", first, 0, false));
  EXPECT_EQ(newObject()->findMeterInfo("M1", {}, -1, longName).Series.size(), 1U);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, a_handler_may_let_go_of_the_connections) {
  const auto data = newObject();
  ConnectionPtr curves = openDatabase(path);
  ConnectionPtr calibrations = stand();
  platform().pumpMessages = [&] {
    curves.reset();
    calibrations.reset();
  };
  EXPECT_TRUE(data->copyCaldb(1, "1001", "", calibrations, curves));
  EXPECT_EQ(curves, nullptr);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, the_wait_for_a_lock_survives_the_end_of_its_object) {
  auto data = newObject();
  const ConnectionPtr curves = openDatabase(path);
  PlainSqlite other(path);
  other.run("BEGIN EXCLUSIVE");
  int texts = 0;
  data->StatusUpdate = [&](const std::string&) {
    ++texts;
    data.reset();
    other.run("COMMIT");
  };
  RawData& object = *data;
  EXPECT_TRUE(object.copyCaldb(1, "1001", "", stand(), curves));
  EXPECT_EQ(texts, 1);
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(re_entrance, a_handler_that_throws_ends_the_wait_for_a_lock) {
  const auto data = newObject();
  const ConnectionPtr curves = openDatabase(path);
  PlainSqlite other(path);
  other.run("BEGIN EXCLUSIVE");
  data->StatusUpdate = [](const std::string&) { throw Error(1, "Host", "enough"); };
  EXPECT_FALSE(data->copyCaldb(1, "1001", "", stand(), curves));
  EXPECT_THAT(boxes, ElementsAre("Error in RawData:copyCaldb\r\nenough"));
}

}  // namespace
}  // namespace pelmora::test
