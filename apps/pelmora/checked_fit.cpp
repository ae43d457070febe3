// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"

#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/output/fit_advice.h"
#include "apps/pelmora/output/text_table.h"

namespace pelmora::cli {
namespace {

using calibration::FitSettings;
using calibration::RangePolicy;
using calibration::RoshkoRange;

std::string shown(const RoshkoRange& range) {
  return significantText(range.min, 15) + " to " + significantText(range.max, 15);
}

bool isEmpty(const RoshkoRange& range) { return range.min >= range.max; }

std::string rangeText(const calibration::OutOfRange& failure, const std::string& series) {
  return "range from " + shown(*failure.requested()) +
         " extends beyond the raw points of series '" + series + "', which reach from " +
         shown(*failure.merged());
}

Trouble rangeTrouble(const calibration::OutOfRange& failure, const std::string& series) {
  if (!failure.requested()) return troubleOf(failure);
  const RoshkoRange& requested = *failure.requested();
  if (isEmpty(requested)) {
    return {ExitCode::usage,
            "--min " + significantText(requested.min, 15) + " is not below --max " +
                significantText(requested.max, 15),
            "give a range from small to large"};
  }
  return {ExitCode::rangeRefused, "the " + rangeText(failure, series),
          "leave --min and --max out or use --on-range retry to fit the raw range; --on-range "
          "ignore extrapolates"};
}

// What to do about the range; nothing if it stays refused.
std::optional<RangePolicy> answerTo(const calibration::OutOfRange& failure,
                                    const std::string& series, const RangeQuestion& ask) {
  if (!ask || !failure.requested() || isEmpty(*failure.requested())) return std::nullopt;
  const RangePolicy answer = ask("The " + rangeText(failure, series) +
                                 ".\nRetry fits the range of the points, Ignore extrapolates.");
  return answer == RangePolicy::refuse ? std::nullopt : std::optional(answer);
}

calibration::Fit fitInRange(Session& session, const calibration::StoredSeries& stored,
                            FitSettings settings, const RangeQuestion& ask) {
  try {
    return session.database().fit(stored, settings, session.observer());
  } catch (const calibration::OutOfRange& failure) {
    session.progress().clear();
    const auto answer = answerTo(failure, stored.name, ask);
    if (!answer) throw rangeTrouble(failure, stored.name);
    settings.outside = *answer;
  }
  return session.database().fit(stored, settings, session.observer());
}

CheckedFit tryFit(Session& session, const calibration::Meter& meter, const std::string& series,
                  const FitWish& wish, const RangeQuestion& ask) {
  const calibration::StoredSeries stored = session.database().series(meter, series);
  CheckedFit result;
  try {
    result.fit = fitInRange(session, stored, wish.settings, ask);
    if (!result.fit.accepted()) {
      result.trouble = noCurveTrouble(result.fit);
    } else if (wish.isStrict && !result.fit.outcome.Warnings.empty()) {
      result.trouble = warningTrouble(result.fit);
    }
  } catch (const calibration::NoFit& failure) {
    result.fit.meter = meter;
    result.fit.series = series;
    result.fit.seriesID = stored.id;
    result.fit.settings = wish.settings;
    const Trouble why = troubleOf(failure);
    result.trouble = Trouble(why.code(), why.what(), why.remedy() + "; no curve was stored");
  }
  return result;
}

Trouble changedTrouble(const calibration::Meter& meter, const std::string& series,
                       const Trouble& why) {
  const std::string head = "another program has changed series '" + series + "' of meter '" +
                           meter.serial + "', calibration " + std::to_string(meter.calibration) +
                           ", during the fit";
  const std::string remedy = why.remedy().empty() ? "" : "; " + why.remedy();
  return {why.code(), head + ", and as it is now, " + why.what(), "nothing was stored" + remedy};
}

// The calibration and the series may have been deleted and made anew: their names count.
CheckedFit fittedAgain(Session& session, const calibration::Meter& meter, const std::string& series,
                       const FitWish& wish) {
  try {
    const calibration::Meter now = session.database().meter(meter.serial, meter.calibration);
    CheckedFit result = tryFit(session, now, series, wish, {});
    result.changedMeanwhile = true;
    return result;
  } catch (const calibration::Failure& failure) {
    throw changedTrouble(meter, series, troubleOf(failure));
  } catch (const Trouble& trouble) {
    throw changedTrouble(meter, series, trouble);
  }
}

}  // namespace

CheckedFit fitSeries(CommandChange& change, const calibration::Meter& meter,
                     const std::string& series, const FitWish& wish, const RangeQuestion& ask) {
  Session& session = change.session();
  CheckedFit result = tryFit(session, meter, series, wish, ask);
  if (result.trouble) return result;
  change.begin();
  try {
    (void)session.database().store(result.fit);
  } catch (const calibration::Changed&) {
    FitWish again = wish;
    // The operator's word for the range of the points, whatever it is, still counts.
    if (result.fit.settings.outside == RangePolicy::wholeRange)
      again.settings.outside = RangePolicy::wholeRange;
    result = fittedAgain(session, meter, series, again);
    if (result.trouble) return result;
    (void)session.database().store(result.fit);
  }
  result.isStored = true;
  return result;
}

}  // namespace pelmora::cli
