// SPDX-License-Identifier: MIT
#include "calibration/refit/portion.h"

#include "calibration/stored_fit.h"
#include "store/curve_settings_rows.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace pelmora::calibration {
namespace {

// Longer no curve waits to be stored.
constexpr std::chrono::seconds longestWait{1};

}  // namespace

Portion::Portion(const Database& lab, Session& session, const RefitOptions& options,
                 ForeignWatch& watch, std::shared_mutex& file, RefitOutcome& outcome)
    : lab_(lab),
      session_(session),
      options_(options),
      watch_(watch),
      file_(file),
      outcome_(outcome) {}

Portion::~Portion() {
  if (session_.hasChange()) session_.rollback();
}

void Portion::add(RefitCurve curve) {
  // One transaction replaces a series once.
  const auto isSameSeries = [&](const RefitCurve& other) {
    return other.fit.seriesID == curve.fit.seriesID;
  };
  if (std::ranges::any_of(curves_, isSameSeries)) store();
  if (curves_.empty()) end_ = Clock::now() + longestWait;
  keepOnlyWhatIsStored(curve.fit);
  curves_.push_back(std::move(curve));
}

bool Portion::isDue() const {
  return !curves_.empty() && (curves_.size() >= options_.portion || Clock::now() >= end_);
}

// Whether the series must still be what it was when it was read.
bool Portion::isCertain(const RefitCurve& curve) const {
  return curve.noticed == watch_.noticed() && !storedSeries_.contains(curve.fit.seriesID);
}

std::vector<const Fit*> Portion::fitsToStore() {
  std::vector<const Fit*> fits;
  for (RefitCurve& curve : curves_) {
    if (!isCertain(curve)) bringUpToDate(lab_, session_, options_, curve);
    if (!curve.isToBeStored()) continue;
    curve.result.isStored = true;
    fits.push_back(&curve.fit);
  }
  return fits;
}

void Portion::store() {
  if (curves_.empty()) return;
  session_.begin("refit");
  session_.asking("storing curves in '" + session_.location() + "'", [&] {
    watch_.look();
    const auto fits = fitsToStore();
    if (!fits.empty()) createSettingsTable(session_.curves());
    storeFits(session_, fits, thoseWithResults(session_, fits));
    end(fits);
  });
  for (RefitCurve& curve : curves_) outcome_.results[curve.index] = std::move(curve.result);
  curves_.clear();
}

void Portion::end(const std::vector<const Fit*>& fits) {
  const std::lock_guard alone(file_);
  if (options_.isDryRun) return session_.rollback();
  const auto kept = session_.kept();
  session_.commit();
  outcome_.kept.insert(outcome_.kept.end(), kept.begin(), kept.end());
  for (const Fit* fit : fits) storedSeries_.insert(fit->seriesID);
  stored_ += fits.size();
  if (options_.portionStored) options_.portionStored(stored_);
}

}  // namespace pelmora::calibration
