// The pages of a database file that may be damaged.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/lock_wait.h"

#include <pelmora/patience.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_file;

namespace pelmora::sqlite::salvage {

using Bytes = std::span<const std::uint8_t>;
using PageNumber = std::uint32_t;  // from 1; 0: none

// Big-endian whole numbers of a page.
[[nodiscard]] inline std::uint32_t twoBytes(Bytes page, std::size_t at) {
  return static_cast<std::uint32_t>(page[at]) << 8U | page[at + 1];
}
[[nodiscard]] inline std::uint32_t fourBytes(Bytes page, std::size_t at) {
  return twoBytes(page, at) << 16U | twoBytes(page, at + 2);
}

// Reads through SQLite's own descriptor: closing a second one would drop the locks that this
// process holds on the file. While it lives nobody else can change the file, unless its header is
// so damaged that no other program can use it either.
class PageFile {
 public:
  // Reading ends with error operationStopped when the patience asks for it.
  //
  // Errors: Error 53 missing, 70 or 75 if it cannot be read, 321 if nothing in it looks like a
  //         page of a database, genericFailure if another user has locked it.
  explicit PageFile(const std::string& path, Patience patience = {});

  // Bytes of a page that rows may use.
  [[nodiscard]] std::uint32_t usableSize() const { return usableSize_; }
  [[nodiscard]] PageNumber pageCount() const { return pageCount_; }
  // Whether the file's first bytes are those of a database.
  [[nodiscard]] bool hasHeader() const { return hasHeader_; }
  // Whole pages alone: false for a page that the file does not have. `page` is usableSize() long.
  [[nodiscard]] bool read(PageNumber number, std::vector<std::uint8_t>& page) const;

 private:
  struct Close {
    void operator()(sqlite3* database) const noexcept;
  };
  [[nodiscard]] bool readBytes(std::uint64_t offset, std::size_t size,
                               std::vector<std::uint8_t>& bytes) const;
  void settle(const std::string& path);
  [[nodiscard]] std::uint64_t plausiblePages(std::uint32_t pageSize) const;
  void findPageSize(const std::string& path);

  std::string path_;
  std::function<bool()> stopRequested_;
  LockWait lockWait_;
  std::unique_ptr<sqlite3, Close> database_;
  sqlite3_file* file_ = nullptr;
  std::uint64_t size_ = 0;
  std::uint32_t pageSize_ = 0, usableSize_ = 0;
  PageNumber pageCount_ = 0;
  bool hasHeader_ = false;
};

}  // namespace pelmora::sqlite::salvage
