// A fit whose curve is stored for the points that were fitted, and for no others.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/stored_change.h"

#include <functional>
#include <memory>
#include <string>

namespace pelmora::cli {

// What the session reads is of one moment, until its operator is asked something: others shall not
// wait for the answer.
class OneMoment {
 public:
  // Errors: Trouble database.
  explicit OneMoment(CurveSession& session);
  ~OneMoment();
  OneMoment(const OneMoment&) = delete;
  OneMoment& operator=(const OneMoment&) = delete;

 private:
  MessageRecorder& messages_;
  std::function<RangeAnswer(const std::string&)> askBefore_;
  std::unique_ptr<ReadView> view_;
};

// While it lives, nobody is asked: the range question is answered by the options alone.
class NoQuestions {
 public:
  explicit NoQuestions(MessageRecorder& messages);
  ~NoQuestions();
  NoQuestions(const NoQuestions&) = delete;
  NoQuestions& operator=(const NoQuestions&) = delete;

 private:
  MessageRecorder& messages_;
  std::function<RangeAnswer(const std::string&)> askBefore_;
};

// As trySeries, and stores the curve with its settings in place of the old ones, which `change`
// keeps. Where no equation passes, these stay. Nothing is final before change.finish().
//
// The fit holds nobody up. Once nobody else can write, the calibration, the series and its raw
// points are compared with what was fitted, bit by bit; where another program has changed them
// meanwhile, the series of that name is fitted again as it is now, and `changedMeanwhile` says so.
//
// Errors: Trouble, of the second fit too; nothing is stored then.
[[nodiscard]] SeriesFit fitSeries(StoredChange& change, const MeterInfo& meter,
                                  const std::string& series, const FitOptions& options);

// The number to compare of rows that were read. Errors: Trouble badInput.
[[nodiscard]] std::uint64_t readFingerprint(CurveSession& session, const history::Scope& scope,
                                            const std::string& series);

// "... has changed while it was fitted: why; nothing was stored, remedy"
[[nodiscard]] Trouble changedTrouble(const MeterInfo& meter, const std::string& series,
                                     const Trouble& why);

}  // namespace pelmora::cli
