// Inserting rows into a database of another engine.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/patience.h>

#include <functional>
#include <string>

namespace pelmora {

// The unopened connection to a location.
using OpenElsewhere =
    std::function<ConnectionPtr(const std::string& location, const Patience& patience)>;

// A connection whose INSERT ... IN 'location' can reach other engines' databases, once it knows how
// to open them, fills this role too.
class PELMORA_API InsertsElsewhere {
 public:
  virtual ~InsertsElsewhere() = default;
  virtual void setElsewhere(OpenElsewhere open) = 0;
};

}  // namespace pelmora
