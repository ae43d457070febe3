// Leaving points out of a series, and taking them back.
// SPDX-License-Identifier: MIT
#include "base/text_case.h"
#include "base/text_flaw.h"
#include "base/time_text.h"
#include "calibration/exclusions.h"
#include "calibration/names.h"
#include "calibration/part_jobs.h"
#include "calibration/point_selection.h"
#include "calibration/series_lookup.h"
#include "store/field_value.h"

#include <algorithm>

namespace pelmora::calibration {
namespace {

std::string cleanReason(const std::string& reason) {
  const auto first = reason.find_first_not_of(' ');
  if (first == std::string::npos)
    throw BadData({"a point is left out without a reason", "", "say why"});
  if (flawOf(reason) != TextFlaw::none)
    throw BadData({"the reason has a character that cannot be shown", "", "leave it out"});
  return reason.substr(first, reason.find_last_not_of(' ') - first + 1);
}

// One call of exclude() or include(): the same steps, the other way round.
class ExclusionEdit {
 public:
  // exclusion: absent to take points back.
  ExclusionEdit(Session& session, const Meter& meter, std::optional<Exclusion> exclusion)
      : session_(session), meter_(meter), exclusion_(std::move(exclusion)), jobs_(session, meter) {}

  ExclusionChange run(const std::string& series, const PointSelection& selection,
                      const ExclusionOptions& options) {
    const std::int32_t id = requireSeries(session_, meter_, series);
    const WholeParts parts = readParts(id);
    const SelectedNumbers selected = selectedNumbers(selection, parts, placeOf(meter_, series));
    std::vector<std::string> names;
    for (const std::string& other : options.alsoIn) add(names, series, cleanName("series", other));
    for (const std::string& other : derivedFrom(series)) {
      if (options.inDerivedSeries && sharesReadings(other, parts)) add(names, series, other);
    }
    edit(series, id, parts, selected);
    for (const std::string& name : names) {
      const std::int32_t otherId = requireSeries(session_, meter_, name);
      const WholeParts others = readParts(otherId);
      requireNumbers(name, others, selected);
      edit(name, otherId, others, selected);
    }
    for (const std::string& other : derivedFrom(series)) {
      const bool isNamed = std::ranges::any_of(
          names, [&](const std::string& name) { return equalNames(name, other); });
      if (!isNamed && sharesReadings(other, parts) && hasOtherState(other, selected))
        change_.sameReadings.push_back(other);
    }
    return std::move(change_);
  }

 private:
  static void add(std::vector<std::string>& names, const std::string& series,
                  const std::string& other) {
    const bool isKnown =
        equalNames(series, other) || std::ranges::any_of(names, [&](const std::string& name) {
          return equalNames(name, other);
        });
    if (!isKnown) names.push_back(other);
  }

  // Sum and ratio are made of the readings of both rotors: one of a rotor that is bad spoils them.
  // The other rotor has readings of its own.
  static std::vector<std::string> derivedFrom(const std::string& series) {
    std::vector<std::string> names;
    if (!isDerivedName(series)) return names;
    for (const char* name : {"Rotor Sum", "Ratio"}) {
      if (!equalNames(name, series)) names.emplace_back(name);
    }
    return names;
  }

  // Exclusions of points that are there again count; others end.
  WholeParts readParts(std::int32_t id) {
    WholeParts parts;
    for (std::size_t p = 0; p < parts.size(); ++p) {
      parts[p] = steps::readWholePart(session_.connection(), static_cast<int>(p + 1), id);
      std::vector<ExcludedRow> others;
      for (ExcludedRow& row : parts[p].Adrift) {
        if (steps::holds(parts[p], row)) {
          parts[p].Points[static_cast<std::size_t>(row.Number - 1)].Exclusion = std::move(row);
        } else {
          others.push_back(std::move(row));
        }
      }
      parts[p].Adrift = std::move(others);
    }
    return parts;
  }

  // Whether a series has as many points in each part: then the same numbers mean the same readings.
  bool sharesReadings(const std::string& name, const WholeParts& parts) {
    const auto id = findSeries(session_, meter_, name);
    if (!id) return false;
    const WholeParts others = readParts(*id);
    for (std::size_t p = 0; p < parts.size(); ++p) {
      if (others[p].Points.size() != parts[p].Points.size()) return false;
    }
    return true;
  }

  bool hasOtherState(const std::string& name, const SelectedNumbers& selected) {
    const WholeParts parts = readParts(requireSeries(session_, meter_, name));
    for (std::size_t p = 0; p < parts.size(); ++p) {
      for (const std::size_t number : selected[p]) {
        if (parts[p].Points.at(number - 1).Exclusion.has_value() != exclusion_.has_value())
          return true;
      }
    }
    return false;
  }

  void requireNumbers(const std::string& name, const WholeParts& parts,
                      const SelectedNumbers& selected) const {
    for (std::size_t p = 0; p < parts.size(); ++p) {
      if (selected[p].empty() || *selected[p].rbegin() <= parts[p].Points.size()) continue;
      const std::string place = placeOf(meter_, name);
      throw BadData({place + ", raw part " + std::to_string(p + 1) + ": there is no point " +
                         std::to_string(*selected[p].rbegin()),
                     place, "list the points of the series"});
    }
  }

  void edit(const std::string& name, std::int32_t id, WholeParts parts,
            const SelectedNumbers& selected) {
    history::Scope scope{meter_.id, id, {}};
    WholeParts edited = std::move(parts);
    std::vector<std::size_t> toWrite;
    for (std::size_t p = 0; p < edited.size(); ++p) {
      if (!editPart(name, edited[p], selected[p])) continue;
      toWrite.push_back(p);
      const auto tables = history::rawPart(meter_.id, id, edited[p].Part).Tables;
      scope.Tables.insert(scope.Tables.end(), tables.begin(), tables.end());
    }
    if (toWrite.empty()) return;
    if (const HistoryEntryId entry = session_.keep(scope); entry != 0)
      change_.kept.push_back(entry);
    for (const std::size_t p : toWrite) steps::writeWholePart(session_.connection(), id, edited[p]);
  }

  // Whether any point has changed sides.
  bool editPart(const std::string& name, steps::WholePart& part,
                const std::set<std::size_t>& selected) {
    bool hasChanged = false;
    const PartJobs jobs = jobs_.of(name, part.Part, part.Points.size());
    for (const std::size_t number : selected) {
      steps::WholePoint& point = part.Points.at(number - 1);
      if (point.Exclusion.has_value() == exclusion_.has_value()) continue;
      hasChanged = true;
      point.Exclusion.reset();
      if (exclusion_) {
        point.Exclusion = ExcludedRow{};
        point.Exclusion->Job = jobs.jobs.empty() ? std::string() : jobs.jobs[number - 1];
        point.Exclusion->Reason = exclusion_->reason;
        point.Exclusion->ExcludedBy = exclusion_->userName;
        point.Exclusion->ExcludedAt = exclusion_->excludedAt;
      }
      change_.points.push_back(
          {name, part.Part, number, numberOrNan(point.Roshko), numberOrNan(point.Strouhal)});
    }
    if (!hasChanged) return false;
    for (const ExcludedRow& row : part.Adrift)
      change_.dropped.push_back(
          droppedExclusion(name, part.Part, row, "another program has replaced the points"));
    return true;
  }

  Session& session_;
  const Meter& meter_;
  std::optional<Exclusion> exclusion_;
  RunJobs jobs_;
  ExclusionChange change_;
};

}  // namespace

ExclusionChange Database::exclude(const Meter& meter, const std::string& series,
                                  const PointSelection& selection, const std::string& reason,
                                  const ExclusionOptions& options) {
  const std::string name = cleanName("series", series);
  Exclusion exclusion{cleanReason(reason), session_->userName(), utcText()};
  return session_->changing("exclude", "leaving points out of " + placeOf(meter, name), [&] {
    return ExclusionEdit(*session_, meter, std::move(exclusion)).run(name, selection, options);
  });
}

ExclusionChange Database::include(const Meter& meter, const std::string& series,
                                  const PointSelection& selection,
                                  const ExclusionOptions& options) {
  const std::string name = cleanName("series", series);
  return session_->changing("include", "taking points back into " + placeOf(meter, name), [&] {
    return ExclusionEdit(*session_, meter, std::nullopt).run(name, selection, options);
  });
}

}  // namespace pelmora::calibration
