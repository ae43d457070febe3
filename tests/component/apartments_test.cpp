// Two threads are two apartments and never meet.
// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

#include <barrier>
#include <thread>

namespace pelmora {
namespace {

using test::Journal;

// One thread's world: its platform, its script, its journal.
struct Apartment {
  std::shared_ptr<test::Log> log = std::make_shared<test::Log>();
  test::FakeFitScript engine{*log};
  test::FakeBandScript band{*log};
  std::shared_ptr<test::Script> script = std::make_shared<test::Script>();
  std::string location;
  PointArray fitted, merged;
  int pumps = 0;
};

class apartments : public ComponentFixture {
 protected:
  // Fits a curve of this height, in step with the other thread.
  void live(Apartment& own, const std::string& location, double height, std::barrier<>& step) {
    test::RecordingPlatform recording(*own.log);
    platform().componentFolder = folder_.path().string();
    platform().createFitEngine = [&] { return std::make_unique<test::FakeFitEngine>(own.engine); };
    platform().createBandTester = [&] { return std::make_unique<test::FakeBandTester>(own.band); };
    platform().createConnection = [&](const std::string&) -> ConnectionPtr {
      return std::make_shared<test::RecordingConnection>(
          std::make_shared<test::ScriptedConnection>(own.script), own.log);
    };
    own.engine.otherwise.curve = [height](double) { return height; };
    own.script->answer(
        fitStatement(),
        {{"id", "name", "meterid", "recalid", "serialnumberadjusted"},
         {{std::int64_t{7}, std::string("Rotor A"), std::int64_t{3}, std::int64_t{2}, Value()}}});
    own.script->answer(partStatement(1), test::pointRows({{1, height}, {10, height}}));

    RawData data;
    data.NumberOfFittedPoints = 2;
    data.dbDirSetByString(location);
    data.FittingProgress = [&](std::int16_t, std::int16_t) { step.arrive_and_wait(); };
    step.arrive_and_wait();
    double from = 1, to = 10;
    bool isEmpty = true;
    data.determineFittedCurve("Rotor A", "4711", isEmpty, from, to, "Roshko", "Strouhal", false);
    step.arrive_and_wait();
    own.location = data.dbDir().FullPath;
    own.fitted = data.LastFittedArray();
    own.merged = data.LastMergedArray();
    own.pumps = recording.pumps;
  }
};

TEST_F(apartments, fits_on_two_threads_keep_to_themselves) {
  Apartment first, second;
  std::barrier<> step(2);
  data_->dbDirSetByString("of the main thread");
  std::thread a([&] { live(first, "first.db", 3, step); });
  std::thread b([&] { live(second, "second.db", 4, step); });
  a.join();
  b.join();
  EXPECT_EQ(first.location, "first.db");
  EXPECT_EQ(second.location, "second.db");
  ASSERT_EQ(first.fitted.size(), 2U);
  ASSERT_EQ(second.fitted.size(), 2U);
  EXPECT_EQ(first.fitted(0, 1), 3);
  EXPECT_EQ(second.fitted(0, 1), 4);
  EXPECT_EQ(first.merged, (PointArray{{1, 3}, {10, 3}}));
  EXPECT_EQ(second.merged, (PointArray{{1, 4}, {10, 4}}));
  EXPECT_EQ(test::linesOf(*first.log, "fit: "), Journal{"A"});
  EXPECT_EQ(test::linesOf(*second.log, "fit: "), Journal{"A"});
  EXPECT_GT(first.pumps, 0);
  EXPECT_EQ(first.pumps, second.pumps);
  EXPECT_EQ(recording_.pumps, 0);
  EXPECT_EQ(data_->dbDir().FullPath, "of the main thread");
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
}

TEST_F(apartments, object_of_another_thread_resets_nothing_here) {
  haveFit();
  fit();
  data_->dbDirSetByString("d:\\curves.db");
  std::thread([] { const RawData other; }).join();
  EXPECT_EQ(data_->LastFittedArray().size(), 3U);
  EXPECT_EQ(data_->dbDir().FullPath, "d:\\curves.db");
}

TEST_F(apartments, platform_of_another_thread_starts_on_its_own) {
  bool hasFactory = true;
  std::thread([&] { hasFactory = static_cast<bool>(platform().createFitEngine); }).join();
  EXPECT_FALSE(hasFactory);
}

}  // namespace
}  // namespace pelmora
