// SPDX-License-Identifier: MIT
#include "report/json_uncertainty.h"

#include "report/budget_json.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

namespace pelmora::report {
namespace {

using nlohmann::json;

json spanJson(const UncertaintySpan& span) {
  return {{"lowestPercent", span.lowestPercent},
          {"highestPercent", span.highestPercent},
          {"lowestCoverageFactor", span.lowestFactor},
          {"highestCoverageFactor", span.highestFactor},
          {"probability", span.probability}};
}

}  // namespace

void addUncertainty(json& value, const std::optional<StatedUncertainty>& uncertainty) {
  const auto number = [&](double StatedUncertainty::*member) {
    return uncertainty ? json(*uncertainty.*member) : json();
  };
  value["expandedUncertainty"] = number(&StatedUncertainty::expanded);
  value["expandedUncertaintyPercent"] = number(&StatedUncertainty::percent);
  value["coverageFactor"] = number(&StatedUncertainty::coverageFactor);
  value["probability"] = number(&StatedUncertainty::probability);
}

json uncertaintyJson(const UncertaintyStatement& statement,
                     const std::optional<UncertaintySpan>& ofPoints) {
  json budgets = json::array();
  for (const UncertaintyStatement::Place& place : statement.budgets) {
    json each{{"roshko", place.roshko}, {"strouhal", place.strouhal}};
    addBudget(each, place.budget);
    budgets.push_back(std::move(each));
  }
  return {{"stated", statement.isStated()},
          {"text", uncertaintyText(statement)},
          {"stand", orNull(statement.stand)},
          {"containsStand", statement.hasStand},
          {"cmcPercent", statement.cmcPercent > 0 ? json(statement.cmcPercent) : json()},
          {"curve", statement.isStated() ? spanJson(statement.span) : json()},
          {"points", ofPoints ? spanJson(*ofPoints) : json()},
          {"budgets", budgets}};
}

}  // namespace pelmora::report
