// How far a copy in portions has come, kept in the target together with each portion.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/proof.h>
#include <pelmora/database.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct UnfinishedCopy {
  std::string source;                 // empty: no copy has begun
  std::string owner;                  // of the group of tables that comes next, or has begun
  std::optional<std::int64_t> after;  // the last owner of it that is copied
  std::map<std::string, ProofTable> tables;
  std::vector<ProofGap> gaps;
};

[[nodiscard]] UnfinishedCopy unfinishedCopy(const ConnectionPtr& curves);
// Needs a transaction: what is kept is what is stored.
void keepUnfinished(const ConnectionPtr& curves, const UnfinishedCopy& copy);
void forgetUnfinished(const ConnectionPtr& curves);

}  // namespace pelmora::calibration
