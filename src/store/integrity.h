// Whether the engine itself finds a database damaged.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora {

// One kind of damage.
struct IntegrityProblem {
  std::string Text;       // for people: "Index raw1_series does not agree with its table"
  std::size_t Count = 0;  // how often it was found
  std::string Example;    // the engine's own words, once

  bool operator==(const IntegrityProblem&) const = default;
};

// A connection whose engine can check its own storage fills this role too.
class PELMORA_API IntegrityCheck {
 public:
  virtual ~IntegrityCheck() = default;
  // Nothing where the database is whole. The engine stops after `most` findings, which are then
  // grouped. Reads the whole database.
  [[nodiscard]] virtual std::vector<IntegrityProblem> integrityProblems(std::size_t most) = 0;
};

}  // namespace pelmora
