// What a refit tells, for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/refit/refit_all.h"

#include <string>
#include <vector>

namespace pelmora::cli {

struct RefitSummary {
  std::string database;
  RefitRequest request;
  std::vector<RefitResult> results;
  double seconds = 0;
  bool isDryRun = false;
  bool hasReplaced = false;  // curves that the history keeps
};

[[nodiscard]] std::string refitText(const RefitSummary& summary);
[[nodiscard]] std::string refitJson(const RefitSummary& summary);

}  // namespace pelmora::cli
