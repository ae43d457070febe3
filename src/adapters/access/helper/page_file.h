// An Access file as pages.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/bytes.h"

#include <mdbtools.h>

#include <array>
#include <memory>
#include <string>

namespace pelmora::access {

// Why a file cannot be read at all, for people.
struct Unreadable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline constexpr std::size_t pageSize = 4096;
using Page = std::array<unsigned char, pageSize>;

// The first byte of a page.
enum class PageKind : std::uint8_t { data = 1, table = 2, usageMap = 5 };

class PageFile {
 public:
  // Errors: Unreadable for a file that is not an Access file, or that has an unsupported version.
  explicit PageFile(const std::string& path);

  // The library's handle on the file.
  [[nodiscard]] MdbHandle* library() const { return handle_.get(); }
  // Whole pages only; a file that was cut off in the middle of a page has trailing bytes.
  [[nodiscard]] std::uint32_t pageCount() const { return pageCount_; }
  [[nodiscard]] std::size_t trailingBytes() const { return trailingBytes_; }
  // Errors: Damage if the file has no such page or it is of another kind.
  [[nodiscard]] Page page(std::uint32_t number, PageKind kind) const;
  // Whether the file's size or time has changed since it was opened.
  [[nodiscard]] bool hasChanged() const;

 private:
  struct Close {
    void operator()(MdbHandle* handle) const noexcept { mdb_close(handle); }
  };
  struct Stamp {
    std::int64_t size = 0, seconds = 0, nanoseconds = 0;
    bool operator==(const Stamp&) const = default;
  };
  [[nodiscard]] static Stamp stampOf(const std::string& path);

  std::string path_;
  Stamp stamp_;
  std::uint32_t pageCount_ = 0;
  std::size_t trailingBytes_ = 0;
  std::unique_ptr<MdbHandle, Close> handle_;
};

}  // namespace pelmora::access
