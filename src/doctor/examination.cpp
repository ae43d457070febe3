// SPDX-License-Identifier: MIT
#include "doctor/examination.h"

#include "doctor/checks.h"
#include "store/table_design.h"

#include <algorithm>

namespace pelmora::doctor {

namespace {

void offerNoRepairs(Findings& findings) {
  for (Finding& finding : findings) {
    if (!finding.canBeRepaired) continue;
    finding.canBeRepaired = false;
    finding.remedy = "copy it into a new curve database and repair that";
  }
}

}  // namespace

std::vector<Finding> examine(const ConnectionPtr& curves) {
  Findings findings;
  for (const auto check : {checkSalvagedParts, checkNumbers, checkNaming, checkNames, checkOrphans,
                           checkPoints, checkExclusions, checkCurveAges}) {
    check(curves, findings);
  }
  if (isReadOnly(curves)) {  // what cannot be changed needs neither indexes nor tables of ours
    offerNoRepairs(findings);
  } else {
    checkIndexes(curves, findings);
    checkTables(curves, findings);
  }
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.severity > b.severity; });
  return findings;
}

}  // namespace pelmora::doctor
