// What a host's handler may do while an operation runs: destroy the object, or throw. Tried at
// every event of every operation that has events. SPDX-License-Identifier: MIT
#include "tests/support/host_test.h"
#include "tests/support/stand_export.h"

#include <functional>
#include <stdexcept>

namespace pelmora::test {
namespace {

struct Stage;

// Runs one operation; the text says what it returned.
struct Operation {
  std::string name;
  std::function<std::string(RawData&, Stage&)> run;
};
void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

constexpr double low = 10;
constexpr double high = 1000;

struct Stage {
  std::string path, resultFile, standFile;
  int meters = 0;

  // A result file is gone once it was read.
  std::string writeResultFile() const {
    std::ofstream(resultFile, std::ios::binary) << "1\r\n2\r\n3\r\n20 5\r\n10 6\r\n";
    return resultFile;
  }
};

std::string fit(RawData& data, Stage&) {
  bool isEmpty = true;
  double xMin = low;
  double xMax = high;
  const PointArray curve =
      data.determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "Roshko", "Strouhal", false);
  return std::to_string(isEmpty) + " " + std::to_string(curve.size()) + " " +
         (curve.empty() ? "" : std::to_string(curve(20, 1)));
}

std::string points(const MeterInfo& info) {
  if (info.Series.empty()) return "no series";
  const SeriesInfo& series = info.Series.front();
  return std::to_string(series.Raw[0].Points.size()) + " raw, " +
         std::to_string(series.Merged.size()) + " merged, " + std::to_string(series.Fitted.size());
}

std::vector<Operation> operations() {
  return {
      {"setMeterSN",
       [](RawData& data, Stage& stage) {
         return std::to_string(data.setMeterSN("New " + std::to_string(++stage.meters)) > 0);
       }},
      {"SetRaw",
       [](RawData& data, Stage&) {
         return std::to_string(data.SetRaw("Other", "M1", {{1, 2}, {3, 4}}, 3, false));
       }},
      {"GetRaw", [](RawData& data, Stage&) { return points(data.GetRaw("S", "M1", 1)); }},
      {"determineFittedCurve", fit},
      {"SetFitted",
       [](RawData& data, Stage&) {
         return std::to_string(
             data.SetFitted("S", "M1", {{1, 2}, {3, 4}}, {{1, 2}, {3, 4}}, "details", false));
       }},
      {"SetLastFitted",
       [](RawData& data, Stage&) { return std::to_string(data.SetLastFitted(false)); }},
      {"getFittedCurve",
       [](RawData& data, Stage&) { return points(data.getFittedCurve("S", "M1")); }},
      {"GetAllInfo", [](RawData& data, Stage&) { return points(data.GetAllInfo("S", "M1")); }},
      {"readTCresults",
       [](RawData& data, Stage& stage) {
         bool isEmpty = true;
         return std::to_string(data.readTCresults(stage.writeResultFile(), isEmpty).size());
       }},
      {"ImportCurvedData",
       [](RawData& data, Stage& stage) {
         bool isEmpty = true;
         return std::to_string(
             data.ImportCurvedData(stage.writeResultFile(), "Other", "M1", isEmpty).size());
       }},
      {"importCaldb",
       [](RawData& data, Stage& stage) {
         const MeterInfo meter = data.importCaldb("Import " + std::to_string(++stage.meters),
                                                  openDatabase(stage.standFile), {"1001"}, {"1001"},
                                                  {"Oil"}, {"Me"}, true, true, true, true);
         return std::to_string(meter.Series.size());
       }},
  };
}

class host_handler : public HostTest, public testing::WithParamInterface<Operation> {
 protected:
  host_handler() : stage{path, scratch.file("results.txt"), scratch.file("stand.csv")} {
    std::ofstream(stage.standFile) << standHeader() << '\n'
                                   << exportLine("1001") << '\n'
                                   << exportLine("1001", {{4, "5"}}) << '\n';
    const auto object = newObject();
    object->setMeterSN("M1");
    object->SetRaw("S", "M1", ripplingPoints(low, high, 20, 1000), 0, false);
    object->SetRaw("S", "M1", ripplingPoints(20, 500, 20, 1000), 1, false);
    object->SetRaw("Other", "M1", {{1, 2}, {3, 4}}, 0, false);
    fit(*object, stage);
    object->SetLastFitted(false);
    EXPECT_THAT(boxes, testing::IsEmpty());
  }

  // Runs the operation on `object` with `action` at its event number `event`, counted from 1. Empty
  // where there was no such event.
  std::string runWith(std::unique_ptr<RawData>& object, int event,
                      const std::function<void()>& action) {
    int seen = 0;
    const auto handler = [&] {
      if (++seen == event) action();
    };
    object->StatusUpdate = [&](const std::string&) { handler(); };
    object->FittingProgress = [&](std::int16_t, std::int16_t) { handler(); };
    const std::string result = GetParam().run(*object, stage);
    return seen < event ? std::string() : result;
  }

  void expectDatabaseIsFree() const { EXPECT_NO_THROW(requireWritable(openDatabase(path))); }

  Stage stage;
};

TEST_P(host_handler, may_destroy_the_object_at_any_event) {
  const std::string undisturbed = GetParam().run(*newObject(), stage);
  int event = 1;
  for (;; ++event) {
    auto object = newObject();
    const std::string result = runWith(object, event, [&] { object.reset(); });
    if (result.empty()) break;
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(result, undisturbed) << "event " << event;
    EXPECT_THAT(boxes, testing::IsEmpty()) << "event " << event;
  }
  EXPECT_GT(event, 1) << "the operation raised nothing";
  expectDatabaseIsFree();
}

TEST_P(host_handler, that_throws_ends_in_one_box_at_any_event) {
  struct Kind {
    std::function<void()> raise;
    std::string text;
  };
  const std::vector<Kind> kinds{
      {[] { throw std::runtime_error("the status bar is gone"); }, "the status bar is gone"},
      {[] { throw Error(1234, "Host", "cancelled by the host"); }, "cancelled by the host"},
      {[] { throw 42; }, "Invalid procedure call or argument"}};
  for (const Kind& kind : kinds) {
    int event = 1;
    for (;; ++event) {
      boxes.clear();
      auto object = newObject();
      std::string result;
      EXPECT_NO_THROW(result = runWith(object, event, kind.raise)) << "event " << event;
      if (result.empty()) break;
      EXPECT_THAT(boxes, testing::ElementsAre(testing::AllOf(testing::StartsWith("Error in "),
                                                             testing::HasSubstr(kind.text))))
          << "event " << event;
    }
    EXPECT_GT(event, 1) << "the operation raised nothing";
    EXPECT_THAT(boxes, testing::IsEmpty()) << "undisturbed after all the failures";
  }
  expectDatabaseIsFree();
}

INSTANTIATE_TEST_SUITE_P(of, host_handler, testing::ValuesIn(operations()),
                         [](const auto& operation) { return operation.param.name; });

}  // namespace
}  // namespace pelmora::test
