// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/suggested_exclusion.h"

#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/output/text_table.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace pelmora::cli {
namespace {

std::string reasonOf(const std::vector<SuspectPoint>& points) {
  double most = 0;
  for (const SuspectPoint& point : points) most = std::max(most, std::fabs(point.sigmas));
  const std::string sigmas = sigmasText(most) + " sigma off ";
  return points.size() == 1 ? sigmas + "its neighbours" : "up to " + sigmas + "their neighbours";
}

}  // namespace

std::vector<std::string> exclusionCommands(const NamedSeries& series,
                                           const std::vector<SuspectPoint>& points) {
  if (points.size() > mostSuggestedPoints) return {};
  std::map<int, std::vector<SuspectPoint>> byPart;
  for (const SuspectPoint& point : points) byPart[point.part].push_back(point);
  std::vector<std::string> commands;
  for (const auto& [part, ofPart] : byPart) {
    std::vector<std::string> words{"exclude", series.database};
    addSeriesWords(words, series.meter, series.calibration, series.series);
    words.insert(words.end(), {"--part", std::to_string(part)});
    for (const SuspectPoint& point : ofPart)
      words.insert(words.end(), {"--point", std::to_string(point.number)});
    words.insert(words.end(), {"--reason", reasonOf(ofPart)});
    commands.push_back(suggestedCommand(words));
  }
  return commands;
}

std::string manyPointsAdvice() {
  return "Look for what so many points have in common, such as a raw part or a range of Roshko "
         "numbers, before you leave them out together with 'pelmora exclude' (--part N --all, "
         "--point N-M, --all-between LOW:HIGH)";
}

}  // namespace pelmora::cli
