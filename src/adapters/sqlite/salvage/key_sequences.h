// Which ids a new row must not get.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/stored_schema.h"

#include <cstdint>
#include <map>
#include <string>

namespace pelmora::sqlite {
class DatabaseHandle;
}

namespace pelmora::sqlite::salvage {

// A new series must not get the id of one that is lost: points of that one may still be there.
class KeySequences {
 public:
  void read(const StoredTable& sequences, const PageFile& file, PageClaims& claims);
  // An id that a row of the table has or had.
  void note(const std::string& table, std::int64_t id);
  // Adds the ids that other rows name, and stores all.
  void store(const DatabaseHandle& output);

 private:
  std::map<std::string, std::int64_t> largest_;
};

}  // namespace pelmora::sqlite::salvage
