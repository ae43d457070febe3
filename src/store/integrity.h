// Whether the engine itself finds a database damaged.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/salvage.h>

#include <cstddef>
#include <vector>

namespace pelmora {

// A connection whose engine can check its own storage fills this role too.
class PELMORA_API IntegrityCheck {
 public:
  virtual ~IntegrityCheck() = default;
  // Nothing where the database is whole. The engine stops after `most` findings, which are then
  // grouped. Reads the whole database.
  [[nodiscard]] virtual std::vector<IntegrityProblem> integrityProblems(std::size_t most) = 0;
};

}  // namespace pelmora
