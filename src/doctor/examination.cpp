// SPDX-License-Identifier: MIT
#include "doctor/examination.h"

#include "doctor/checks.h"

#include <algorithm>

namespace pelmora::doctor {

std::vector<Finding> examine(const ConnectionPtr& curves) {
  Findings findings;
  for (const auto check : {checkSalvagedParts, checkNumbers, checkNaming, checkNames, checkOrphans,
                           checkPoints, checkCurveAges, checkIndexes, checkTables}) {
    check(curves, findings);
  }
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.severity > b.severity; });
  return findings;
}

}  // namespace pelmora::doctor
