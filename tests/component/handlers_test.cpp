// Handlers of a host that throw, destroy the object or call back into the component.
// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

#include <stdexcept>

namespace pelmora {
namespace {

using test::Journal;

class handlers : public ComponentFixture {
 protected:
  // Destroys the object at the first text that begins with this.
  void destroyAt(const std::string& beginning) {
    data_->StatusUpdate = [this, beginning](const std::string& text) {
      ++heard_;
      if (text.starts_with(beginning)) data_.reset();
    };
  }
  int heard_ = 0;
};

TEST_F(handlers, throwing_status_handler_ends_an_operation_in_its_error_box) {
  haveRawTarget();
  data_->StatusUpdate = [](const std::string&) { throw std::runtime_error("window closed"); };
  EXPECT_FALSE(data_->SetRaw("Rotor A", "4711", {{1, 2}}, 0, false));
  EXPECT_EQ(boxes(), Journal{"Error in RawData:SetRaw\r\nwindow closed|16|"});
  EXPECT_EQ(executed(), Journal());
  EXPECT_TRUE(isClosed());
}

TEST_F(handlers, throwing_handler_before_the_fit_is_reported_by_the_orchestration) {
  haveFit();
  data_->StatusUpdate = [](const std::string&) { throw 42; };
  EXPECT_EQ(fit(), PointArray());
  EXPECT_EQ(boxes(), Journal{"Error in RawData:determineFittedCurve\r\nInvalid procedure call or "
                             "argument|16|"});
}

TEST_F(handlers, throwing_handler_during_the_fit_is_reported_by_the_fit) {
  haveFit();
  data_->FittingProgress = [](std::int16_t, std::int16_t) { throw Error(18, "host", "interrupt"); };
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in clsDataFit:fitCurve 18: interrupt|16|Error in Equation A"});
}

TEST_F(handlers, throwing_pump_during_the_fit_is_reported_by_the_fit) {
  haveFit();
  recording_.onPump = [&] {
    if (!engine_.fits.empty()) throw std::runtime_error("no more messages");
  };
  EXPECT_EQ(fit(), PointArray());
  EXPECT_EQ(boxes().at(0),
            "Error in clsDataFit:fitCurve 5: no more messages|16|Error in Equation A");
}

TEST_F(handlers, handler_may_replace_itself) {
  haveFit();
  data_->StatusUpdate = [this](const std::string&) {
    ++heard_;
    data_->StatusUpdate = nullptr;
  };
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(heard_, 1);
}

TEST_F(handlers, object_destroyed_before_the_fit_hears_no_more) {
  haveFit();
  destroyAt("Determining");
  const PointArray curve = fit();
  EXPECT_EQ(heard_, 1);
  EXPECT_EQ(curve.size(), 3U);  // as many as the object asked for
  EXPECT_TRUE(isClosed());
}

TEST_F(handlers, object_destroyed_during_the_fit_hears_no_more) {
  haveFit();
  destroyAt("Started");
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(heard_, 3);
  EXPECT_EQ(boxes(), Journal());
  EXPECT_EQ(RawData().LastFittedArray(), PointArray());  // a new object, an empty record
}

TEST_F(handlers, object_destroyed_by_a_progress_handler) {
  haveFit();
  data_->FittingProgress = [&](std::int16_t, std::int16_t) { data_.reset(); };
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(statusTexts().back(), "Sorting raw1 data in series Rotor A");
}

TEST_F(handlers, object_destroyed_by_a_message_pump) {
  haveFit();
  recording_.onPump = [&] { data_.reset(); };
  EXPECT_EQ(fit().size(), 3U);
}

TEST_F(handlers, object_destroyed_while_the_operator_is_asked) {
  haveFit();
  recording_.answer = [&](const std::string&) {
    data_.reset();
    return 4;
  };
  double from = 0.5, to = 99;
  const PointArray curve = data_->determineFittedCurve("Rotor A", "4711", isEmpty_, from, to,
                                                       "Roshko", "Strouhal", false);
  EXPECT_EQ(curve.size(), 3U);
  EXPECT_EQ(from, 1);
}

TEST_F(handlers, object_destroyed_while_raw_points_are_written) {
  haveRawTarget();
  destroyAt("Querying");
  EXPECT_TRUE(data_->SetRaw("Rotor A", "4711", {{1, 2}, {3, 4}}, 0, false));
  EXPECT_EQ(heard_, 1);
  EXPECT_EQ(test::linesOf(journal_, "add ").size(), 2U);
  EXPECT_TRUE(isClosed());
}

TEST_F(handlers, object_destroyed_while_its_own_details_are_stored) {
  haveSeries();
  data_->DataFitResultDetails = "a report that is longer than any text kept in place";
  destroyAt("Removing");
  EXPECT_TRUE(data_->SetFitted("Rotor A", "4711", {}, {}, data_->DataFitResultDetails, false));
  EXPECT_EQ(test::linesOf(journal_, "add "),
            Journal{"seriesID=7 summary=a report that is longer than any text kept in place"});
}

TEST_F(handlers, object_destroyed_by_its_error_box) {
  script_->fail("open", Error(-1, "driver", "no file"));
  recording_.answer = [&](const std::string&) {
    data_.reset();
    return 1;
  };
  EXPECT_EQ(data_->findMeterInfo("4711").Source, -1);
  EXPECT_EQ(data_, nullptr);
}

TEST_F(handlers, look_up_from_within_a_fit_is_allowed) {
  haveFit();
  haveSeries();
  std::int32_t found = 0;
  data_->FittingProgress = [&](std::int16_t, std::int16_t) {
    found = data_->findMeterInfo("4711", {}, -1, "Rotor A").MeterID;
  };
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(found, 3);
  EXPECT_TRUE(isClosed());
}

TEST_F(handlers, fit_from_within_a_fit_is_allowed) {
  haveFit();
  PointArray inner;
  data_->FittingProgress = [&](std::int16_t, std::int16_t) {
    data_->FittingProgress = nullptr;
    inner = fit();
  };
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(inner.size(), 3U);
  EXPECT_EQ(engine_.modelsAlive, 0);
  EXPECT_EQ(boxes(), Journal());
}

TEST_F(handlers, object_made_during_a_fit_does_not_spoil_it) {
  haveFit();
  std::unique_ptr<RawData> other;
  data_->FittingProgress = [&](std::int16_t, std::int16_t) { other = std::make_unique<RawData>(); };
  const PointArray curve = fit();
  EXPECT_EQ(curve.size(), 3U);
  EXPECT_EQ(other->LastFittedArray(), curve);
}

TEST_F(handlers, ratio_sort_survives_an_object_made_by_the_pump) {
  haveFit();
  fit();
  std::unique_ptr<RawData> other;
  recording_.onPump = [&] { other = std::make_unique<RawData>(); };
  EXPECT_FALSE(data_->LastFittedRatioSort());
  EXPECT_EQ(boxes(), Journal{"Subscript out of range|0|"});
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
}

}  // namespace
}  // namespace pelmora
