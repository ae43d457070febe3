// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/page_file.h"

#include "adapters/sqlite/careful_files.h"
#include "adapters/sqlite/salvage/tree_page.h"
#include "adapters/sqlite/sqlite_error.h"
#include "base/file_text.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace pelmora::sqlite::salvage {
namespace {

constexpr std::uint32_t smallestPage = 512, largestPage = 65536;
// Enough to tell page sizes apart.
constexpr std::uint64_t probedPages = 200;

Error failure(RunTimeError number, const std::string& description) {
  return {static_cast<std::int32_t>(number), "Pelmora", description};
}

}  // namespace

void PageFile::Close::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }

PageFile::PageFile(const std::string& path, Patience patience)
    : path_(path), stopRequested_(patience.stopRequested), lockWait_(std::move(patience)) {
  requireRegularFile(
      path, {.folder = "Name the database file inside it.", .other = "Name a database file."});
  const std::string name = utf8Text(std::filesystem::absolute(filePath(path)));
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(
      name.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, carefulFiles()->zName);
  database_.reset(opened);
  if (code != SQLITE_OK)
    throw failure(RunTimeError::permissionDenied,
                  "Could not open file '" + path + "': it cannot be read. Check its permissions.");
  settle(name);
  sqlite3_int64 size = 0;
  if (sqlite3_file_control(opened, "main", SQLITE_FCNTL_FILE_POINTER, &file_) != SQLITE_OK ||
      file_ == nullptr || file_->pMethods == nullptr ||
      file_->pMethods->xFileSize(file_, &size) != SQLITE_OK)
    throw failure(RunTimeError::pathAccess, "Could not read file '" + path + "'.");
  size_ = static_cast<std::uint64_t>(size);
  findPageSize(path);
}

// An interrupted change is undone first, and what waits in a log beside the file is brought into
// it, as any other program that opens the file would do. Then the file is locked for reading.
void PageFile::settle(const std::string& path) {
  lockWait_.handle(database_.get());
  sqlite3_exec(database_.get(), "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
  const int code = sqlite3_exec(database_.get(), "BEGIN; SELECT 1 FROM sqlite_master LIMIT 1",
                                nullptr, nullptr, nullptr);
  if ((code & 0xFF) == SQLITE_BUSY) throw sqliteError(code, database_.get(), path);
}

bool PageFile::readBytes(std::uint64_t offset, std::size_t size,
                         std::vector<std::uint8_t>& bytes) const {
  if (offset + size > size_) return false;
  if (stopRequested_ && stopRequested_()) throw stoppedReading("file '" + path_ + "'");
  bytes.resize(size);
  return file_->pMethods->xRead(file_, bytes.data(), static_cast<int>(size),
                                static_cast<sqlite3_int64>(offset)) == SQLITE_OK;
}

bool PageFile::read(PageNumber number, std::vector<std::uint8_t>& page) const {
  if (number < 1 || number > pageCount_) return false;
  return readBytes((number - std::uint64_t{1}) * pageSize_, usableSize_, page);
}

// How many of the file's first pages look like pages of that size.
std::uint64_t PageFile::plausiblePages(std::uint32_t pageSize) const {
  std::vector<std::uint8_t> page;
  std::uint64_t plausible = 0;
  const std::uint64_t most = std::max<std::uint64_t>(probedPages * 4096 / pageSize, 1);
  for (std::uint64_t i = 0; i < std::min(size_ / pageSize, most); ++i) {
    if (!readBytes(i * pageSize, pageSize, page)) break;
    const auto number = static_cast<PageNumber>(i + 1);
    const auto tree = readTreePage(page, number);
    if (tree && !tree->cells.empty()) plausible += pageSize;
  }
  return plausible;
}

// The header says how long pages are; where it is damaged, the pages themselves do.
void PageFile::findPageSize(const std::string& path) {
  constexpr std::string_view magic("SQLite format 3\0", 16);
  constexpr std::size_t headerSize = 100;
  std::vector<std::uint8_t> header;
  std::uint32_t told = 0, reserved = 0;
  if (readBytes(0, headerSize, header)) {
    hasHeader_ = std::equal(magic.begin(), magic.end(), header.begin(), [](char a, std::uint8_t b) {
      return static_cast<std::uint8_t>(a) == b;
    });
    told = twoBytes(header, 16) == 1 ? largestPage : twoBytes(header, 16);
    if (hasHeader_) reserved = header[20];
  }
  std::uint64_t best = 0;
  for (std::uint32_t size = smallestPage; size <= largestPage; size *= 2) {
    const std::uint64_t plausible = plausiblePages(size);
    if (plausible < best || plausible == 0 || (plausible == best && size != told)) continue;
    best = plausible;
    pageSize_ = size;
  }
  if (pageSize_ == 0)
    throw failure(RunTimeError::invalidFileFormat,
                  "Unrecognized database format '" + path +
                      "': nothing in the file can be read as a database. Name another file.");
  usableSize_ = pageSize_ == told && reserved <= 255 && reserved + 480 <= pageSize_
                    ? pageSize_ - reserved
                    : pageSize_;
  pageCount_ = static_cast<PageNumber>(std::min<std::uint64_t>(size_ / pageSize_, 0xFFFFFFFEU));
}

}  // namespace pelmora::sqlite::salvage
