// SPDX-License-Identifier: MIT
#include "adapters/access/helper/page_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>

namespace pelmora::access {

PageFile::Stamp PageFile::stampOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) throw Unreadable(std::strerror(errno));
  if (!S_ISREG(status.st_mode)) throw Unreadable("it is not a regular file");
  return {status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

PageFile::PageFile(const std::string& path) : path_(path), stamp_(stampOf(path)) {
  handle_.reset(mdb_open(path.c_str(), MDB_NOFLAGS));
  if (!handle_) throw Unreadable("it is not an Access database, or of a version later than 2019");
  // In that version pages are laid out differently, and texts depend on a code page.
  if (handle_->f->jet_version == MDB_VER_JET3) {
    throw Unreadable(
        "it is in the format of Access 97. Open it in Access and save it in the format of Access "
        "2000 or later");
  }
  if (handle_->f->db_key != 0) {
    throw Unreadable("it is encrypted. Open it in Access and save it without encryption");
  }
  pageCount_ = static_cast<std::uint32_t>(static_cast<std::uint64_t>(stamp_.size) / pageSize);
  trailingBytes_ = static_cast<std::size_t>(static_cast<std::uint64_t>(stamp_.size) % pageSize);
}

Page PageFile::page(std::uint32_t number, PageKind kind) const {
  if (number == 0 || number >= pageCount_)
    throw Damage("page " + std::to_string(number) + " is not in the file");
  if (mdb_read_pg(handle_.get(), number) != static_cast<ssize_t>(pageSize))
    throw Damage("page " + std::to_string(number) + " cannot be read");
  Page page;
  std::ranges::copy(std::span(handle_->pg_buf).first<pageSize>(), page.begin());
  if (page[0] != static_cast<unsigned char>(kind))
    throw Damage("page " + std::to_string(number) + " is damaged");
  return page;
}

bool PageFile::hasChanged() const { return stampOf(path_) != stamp_; }

}  // namespace pelmora::access
