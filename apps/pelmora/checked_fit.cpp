// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"

#include "history/fingerprint.h"

#include <utility>

namespace pelmora::cli {
namespace {

struct CheckedFit {
  SeriesFit fit;
  std::uint64_t basis = 0;  // fingerprint of what was fitted
};

CheckedFit fitOfOneMoment(CurveSession& session, const MeterInfo& meter, const std::string& series,
                          const FitOptions& options) {
  const OneMoment moment(session);
  const MeterInfo stored = session.requireSeries(meter, series);
  const SeriesInfo& entry = stored.Series.front();
  const auto basis =
      readFingerprint(session, history::fittedPoints(stored.MeterID, entry.SeriesID), series);
  return {tryStored(session, stored, entry, options), basis};
}

SeriesFit fittedAgain(CurveSession& session, const MeterInfo& meter, const std::string& series,
                      const FitOptions& options) {
  const NoQuestions nobodyIsAsked(session.messages());
  try {
    SeriesFit fit = trySeries(session, meter, series, options);
    fit.changedMeanwhile = true;
    return fit;
  } catch (const Trouble& trouble) {
    throw changedTrouble(meter, series, trouble);
  }
}

}  // namespace

OneMoment::OneMoment(CurveSession& session)
    : messages_(session.messages()), askBefore_(messages_.askOperator) {
  try {
    view_ = std::make_unique<ReadView>(session.connection());
  } catch (const Error& error) {
    throw databaseTrouble("'" + session.path() + "' cannot be read now", error);
  }
  if (!askBefore_) return;
  messages_.askOperator = [this](const std::string& text) {
    view_.reset();
    return askBefore_(text);
  };
}

OneMoment::~OneMoment() { messages_.askOperator = std::move(askBefore_); }

NoQuestions::NoQuestions(MessageRecorder& messages)
    : messages_(messages), askBefore_(std::exchange(messages.askOperator, nullptr)) {}

NoQuestions::~NoQuestions() { messages_.askOperator = std::move(askBefore_); }

std::uint64_t readFingerprint(CurveSession& session, const history::Scope& scope,
                              const std::string& series) {
  try {
    return history::fingerprint(session.connection(), scope);
  } catch (const Error& error) {
    throw Trouble(
        ExitCode::badInput,
        "series '" + series + "' in '" + session.path() + "' cannot be read: " + error.what(),
        lookForCause);
  }
}

Trouble changedTrouble(const MeterInfo& meter, const std::string& series, const Trouble& why) {
  const std::string head = "another program has changed series '" + series + "' of meter '" +
                           meter.SerialNumber + "', calibration " + std::to_string(meter.ReCalID) +
                           ", during the fit";
  const std::string remedy = why.remedy().empty() ? "" : "; " + why.remedy();
  return {why.code(), head + ", and as it is now, " + why.what(), "nothing was stored" + remedy};
}

SeriesFit fitSeries(StoredChange& change, const MeterInfo& meter, const std::string& series,
                    const FitOptions& options) {
  CurveSession& session = change.session();
  SeriesFit fit;
  if (change.hasBegun()) {
    fit = trySeries(session, meter, series, options);
  } else {
    CheckedFit checked = fitOfOneMoment(session, meter, series, options);
    fit = std::move(checked.fit);
    if (fit.trouble) return fit;
    change.begin();
    const auto now =
        readFingerprint(session, history::fittedPoints(fit.meterID, fit.seriesID), series);
    if (now != checked.basis) {
      FitOptions again = options;
      // The operator's word for the raw range, whatever it is, still counts.
      if (!again.onRange && fit.isWholeRange) again.onRange = RangeAnswer::retry;
      fit = fittedAgain(session, meter, series, again);
    }
  }
  if (!fit.trouble) storeCurve(change, meter, fit);
  return fit;
}

}  // namespace pelmora::cli
