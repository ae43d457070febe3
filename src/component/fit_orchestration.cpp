// SPDX-License-Identifier: MIT
#include "component/fit_orchestration.h"

#include "base/number_text.h"
#include "calibration/steps/raw_points.h"
#include "component/merging.h"
#include "component/start_fit.h"
#include "component/raw_points.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "ui/message_box.h"

#include <array>
#include <optional>
#include <utility>

namespace pelmora {
namespace {

// What one fit keeps in the shared state. Every event, pump and box runs host code, which may fit
// another series or create an object; put() before the shared state is used next makes it this
// fit's again.
class SharedEntry {
 public:
  SharedEntry(SharedState& shared, const MeterInfo& found) : shared_(shared), found_(found) {
    put();
  }

  void setRaw(std::size_t part, const PointArray& points) {
    raw_[part] = RawSlot{points};
    put();
  }
  void put() const {
    shared_.foundSeries = found_;
    SeriesInfo& record = shared_.fitRecord();
    record.SeriesName = found_.Series.front().SeriesName;
    record.SeriesID = SeriesID();
    for (std::size_t part = 0; part < raw_.size(); ++part) {
      if (raw_[part]) record.Raw[part] = *raw_[part];
    }
  }
  [[nodiscard]] std::int32_t SeriesID() const { return found_.Series.front().SeriesID; }

 private:
  SharedState& shared_;
  const MeterInfo& found_;
  std::array<std::optional<RawSlot>, 4> raw_;  // of the parts read so far
};

// Reads and sorts a raw part (1 to 4) into its slot of the shared fit record; nothing if it is
// not usable.
std::optional<steps::MergedPoints> readPart(const OperationContext& context, std::int16_t part,
                                            const std::string& SeriesName, SharedEntry& entry,
                                            const ConnectionPtr& connection) {
  steps::MergedPoints points = steps::asPart(
      part, getRSvalues(context, "raw" + numberText(part), entry.SeriesID(), connection));
  const bool usable = sortPart(points, SeriesName, context.observer());
  entry.setRaw(static_cast<std::size_t>(part - 1), points.Points);
  if (!usable) return std::nullopt;
  return points;
}

// All raw parts of the series as one; nothing if the merge failed or must not be fitted.
std::optional<PointArray> mergedParts(const OperationContext& context, const FitHost& host,
                                      const FitRequest& request, SharedEntry& entry,
                                      const ConnectionPtr& connection, bool& ArrayIsEmpty) {
  steps::MergedPoints merged;
  for (std::int16_t part = 1; part <= steps::rawPartCount; ++part) {
    auto points = readPart(context, part, request.SeriesName, entry, connection);
    if (!points) continue;
    switch (steps::howToJoin(merged.Points, part)) {
      case steps::Joining::take: merged = std::move(*points); break;
      case steps::Joining::merge:
        merged = consolidateParts(context, std::move(merged), std::move(*points), ArrayIsEmpty,
                                  request.bInverted, host.settings().RatioCurve);
        if (ArrayIsEmpty) return std::nullopt;
        break;
      case steps::Joining::refuse: return std::nullopt;
    }
  }
  return std::move(merged.Points);
}

int askAboutRange(double xMin, double xMax, double rawMin, double rawMax) {
  return standardMessageBox(
      "Min/Max values are out of range of raw data\r\nMin X : " + numberText(xMin) +
          "\t\tMin Raw : " + numberText(rawMin) + "\r\nMax X : " + numberText(xMax) +
          "\tMax Raw : " + numberText(rawMax) +
          "\r\n\r\nPress 'Abort' to cancel, 'Retry' to set Min/Max to Raw min/max or 'Ignore' to "
          "continue.",
      box_style::abortRetryIgnore, "");
}

// Whether the fit may go on with the range, which Retry changes.
bool settleRange(const OperationContext& context, const FitHost& host, const PointArray& merged,
                 double& xMin, double& xMax) {
  if (merged.empty()) throw makeError(RunTimeError::outOfRange);
  const double rawMin = merged(0, 0);
  const double rawMax = merged(merged.size() - 1, 0);
  if (rawMin <= xMin && rawMax >= xMax) return true;
  const int answer =
      host.settings().Unattended ? box_answer::abort : askAboutRange(xMin, xMax, rawMin, rawMax);
  if (answer == box_answer::ignore) return true;
  if (answer == box_answer::retry) {
    xMin = rawMin;
    xMax = rawMax;
    return true;
  }
  context.raiseStatusUpdate("Aborted CurveFit MIN/MAX out of Raw range");
  return false;
}

}  // namespace

PointArray determineFittedCurve(const OperationContext& context, FitHost& host,
                                const FitRequest& request, bool& ArrayIsEmpty,
                                double& Predicted_Xmin, double& Predicted_Xmax) {
  PointArray curve;
  context.trap("Error in RawData:determineFittedCurve", [&] {
    OperationConnection connection(context, nullptr);
    SharedState& shared = context.shared();
    const MeterInfo found = getSeriesID(context, request.SeriesName, request.MeterSN,
                                        connection.pointer(), request.ReCalID);
    if (found.Series.empty()) {
      ArrayIsEmpty = true;
      return;
    }
    SharedEntry entry(shared, found);
    context.raiseStatusUpdate("Determining fitted data from saved raw data in series " +
                              request.SeriesName);
    const auto merged =
        mergedParts(context, host, request, entry, connection.pointer(), ArrayIsEmpty);
    if (!merged) {
      ArrayIsEmpty = true;
      return;
    }
    if (!settleRange(context, host, *merged, Predicted_Xmin, Predicted_Xmax)) {
      ArrayIsEmpty = true;
      return;
    }
    entry.put();
    curve = startFit(context, host, *merged, ArrayIsEmpty, Predicted_Xmin, Predicted_Xmax,
                     request.Label_Xaxis, request.Label_Yaxis);
    entry.put();
    shared.lastFittedSeries = found;
  });
  return curve;
}

}  // namespace pelmora
