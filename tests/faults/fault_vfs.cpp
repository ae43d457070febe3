// SPDX-License-Identifier: MIT
#include "tests/faults/fault_vfs.h"

#include "tests/support/file_bytes.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>

namespace pelmora::test {
namespace {

constexpr std::size_t sectorSize = 512;

FaultVfs* active = nullptr;  // SQLite calls functions without an object

}  // namespace

FaultVfs::FaultVfs() : real_(sqlite3_vfs_find(nullptr)), own_(*real_), methods_(methods()) {
  own_.zName = "faults";
  own_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
  own_.pNext = nullptr;
  own_.xOpen = open;
  own_.xDelete = remove;
  active = this;
  sqlite3_vfs_register(&own_, 1);
}

FaultVfs::~FaultVfs() {
  sqlite3_vfs_unregister(&own_);
  sqlite3_vfs_register(real_, 1);
  active = nullptr;
}

void FaultVfs::arm(const FaultPlan& plan) {
  plan_ = plan;
  calls_ = 0;
  isOff_ = false;
  entries_.clear();
  inodes_.clear();
}

void FaultVfs::strike() {
  if (plan_.kind == FaultKind::kill || plan_.kind == FaultKind::tornKill ||
      plan_.kind == FaultKind::powerLoss)
    isOff_ = true;
}

std::mt19937 FaultVfs::chance() const {
  return std::mt19937(plan_.seed * 7919 + static_cast<std::uint32_t>(plan_.at));
}

FaultVfs::Verdict FaultVfs::verdict() {
  if (isOff_) return Verdict::fail;
  if (calls_++ != plan_.at || plan_.kind == FaultKind::none) return Verdict::goOn;
  strike();
  const bool isTorn = plan_.kind == FaultKind::tornError || plan_.kind == FaultKind::tornKill;
  return isTorn ? Verdict::tear : Verdict::fail;
}

FaultVfs::Inode* FaultVfs::inodeOf(const std::string& path) {
  std::vector<Inode*>& entry = entries_[path];
  if (!entry.empty() && entry.back() != nullptr) return entry.back();
  const bool isThere = std::filesystem::exists(path);
  inodes_.push_back(std::make_unique<Inode>());
  if (isThere) inodes_.back()->durable = bytesOf(path);
  if (entry.empty() && !isThere) entry.push_back(nullptr);
  entry.push_back(inodes_.back().get());
  return entry.back();
}

void FaultVfs::syncFolder() {
  for (auto& [path, entry] : entries_) entry.erase(entry.begin(), entry.end() - 1);
}

int FaultVfs::open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  File* const own = new (file) File{};
  if (active->isOff_) return SQLITE_CANTOPEN;
  const bool isTracked =
      name != nullptr &&
      (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_SUPER_JOURNAL)) != 0;
  const bool isNew = isTracked && !std::filesystem::exists(name);
  if (isTracked && (!isNew || (flags & SQLITE_OPEN_CREATE) != 0)) {
    own->inode = active->inodeOf(name);
    own->isNewJournal = isNew && (flags & SQLITE_OPEN_MAIN_DB) == 0;
  }
  const int code = active->real_->xOpen(active->real_, name, own->real(), flags, outFlags);
  if (own->real()->pMethods != nullptr) own->base.pMethods = &active->methods_;
  return code;
}

int FaultVfs::remove(sqlite3_vfs*, const char* name, int syncsFolder) {
  const bool wasOff = active->isOff_;
  if (active->verdict() != Verdict::goOn) {
    // Deletions that the power loss interrupts may have happened.
    if (!wasOff && active->entries_.contains(name)) active->entries_[name].push_back(nullptr);
    return SQLITE_IOERR_DELETE;
  }
  if (std::filesystem::exists(name)) {
    (void)active->inodeOf(name);
    active->entries_[name].push_back(nullptr);
  }
  const int code = active->real_->xDelete(active->real_, name, 0);
  if (syncsFolder != 0) active->syncFolder();
  return code;
}

int FaultVfs::close(sqlite3_file* file) {
  sqlite3_file* const real = fileOf(file).real();
  return real->pMethods->xClose(real);
}

int FaultVfs::read(sqlite3_file* file, void* into, int size, sqlite3_int64 at) {
  if (active->isOff_) return SQLITE_IOERR_READ;
  sqlite3_file* const real = fileOf(file).real();
  return real->pMethods->xRead(real, into, size, at);
}

void FaultVfs::note(File& file, Change change) {
  if (file.inode != nullptr) file.inode->pending.push_back(std::move(change));
}

int FaultVfs::write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 at) {
  File& own = fileOf(file);
  const bool wasOff = active->isOff_;
  const Verdict verdict = active->verdict();
  Change change{false, static_cast<std::size_t>(at),
                std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size))};
  if (verdict == Verdict::fail) {
    if (!wasOff) note(own, std::move(change));  // on its way when the power went
    return SQLITE_IOERR_WRITE;
  }
  const bool isTorn = verdict == Verdict::tear;
  if (isTorn) size = static_cast<int>(active->chance()() % static_cast<unsigned>(size));
  change.bytes.resize(static_cast<std::size_t>(size));
  note(own, std::move(change));
  const int code =
      size == 0 ? SQLITE_OK : own.real()->pMethods->xWrite(own.real(), bytes, size, at);
  return isTorn ? SQLITE_FULL : code;
}

int FaultVfs::truncate(sqlite3_file* file, sqlite3_int64 size) {
  File& own = fileOf(file);
  if (active->verdict() != Verdict::goOn) return SQLITE_IOERR_TRUNCATE;
  note(own, {true, static_cast<std::size_t>(size), {}});
  return own.real()->pMethods->xTruncate(own.real(), size);
}

int FaultVfs::sync(sqlite3_file* file, int /*flags*/) {
  File& own = fileOf(file);
  if (active->verdict() != Verdict::goOn) return SQLITE_IOERR_FSYNC;
  if (own.inode == nullptr) return SQLITE_OK;
  for (const Change& change : own.inode->pending) apply(change, own.inode->durable);
  own.inode->pending.clear();
  if (own.isNewJournal) active->syncFolder();
  own.isNewJournal = false;
  return SQLITE_OK;
}

int FaultVfs::lock(sqlite3_file* file, int level) {
  switch (active->verdict()) {
    case Verdict::fail: return SQLITE_IOERR_LOCK;
    case Verdict::tear: return SQLITE_BUSY;
    case Verdict::goOn: break;
  }
  sqlite3_file* const real = fileOf(file).real();
  return real->pMethods->xLock(real, level);
}

// Version 1: without shared memory and mapped files, which a curve database does not use.
sqlite3_io_methods FaultVfs::methods() {
  sqlite3_io_methods methods{};
  methods.iVersion = 1;
  methods.xClose = close;
  methods.xRead = read;
  methods.xWrite = write;
  methods.xTruncate = truncate;
  methods.xSync = sync;
  methods.xLock = lock;
  methods.xFileSize = [](sqlite3_file* file, sqlite3_int64* size) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xFileSize(real, size);
  };
  methods.xUnlock = [](sqlite3_file* file, int level) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xUnlock(real, level);
  };
  methods.xCheckReservedLock = [](sqlite3_file* file, int* result) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xCheckReservedLock(real, result);
  };
  methods.xFileControl = [](sqlite3_file* file, int operation, void* argument) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xFileControl(real, operation, argument);
  };
  methods.xSectorSize = [](sqlite3_file* file) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xSectorSize(real);
  };
  methods.xDeviceCharacteristics = [](sqlite3_file* file) {
    sqlite3_file* const real = fileOf(file).real();
    return real->pMethods->xDeviceCharacteristics(real);
  };
  return methods;
}

void FaultVfs::apply(const Change& change, std::string& content) {
  if (change.isTruncation) return content.resize(std::min(content.size(), change.at));
  if (change.bytes.empty()) return;
  content.resize(std::max(content.size(), change.at + change.bytes.size()));
  content.replace(change.at, change.bytes.size(), change.bytes);
}

std::string FaultVfs::survivorOf(const Inode& inode, std::mt19937& random) {
  std::string content = inode.durable;
  const auto keptOf8 = random() % 9;  // from none to all
  for (const Change& change : inode.pending) {
    if (random() % 8 >= keptOf8) continue;
    if (change.isTruncation || random() % 3 != 0) {
      apply(change, content);
      continue;
    }
    for (std::size_t at = 0; at < change.bytes.size(); at += sectorSize) {
      if (random() % 2 == 0)
        apply({false, change.at + at, change.bytes.substr(at, sectorSize)}, content);
    }
  }
  return content;
}

void FaultVfs::losePower() {
  std::mt19937 random = chance();
  for (const auto& [path, entry] : entries_) {
    const Inode* const inode = entry[random() % entry.size()];
    std::filesystem::remove(path);
    if (inode != nullptr) putBytes(path, survivorOf(*inode, random));
  }
  arm({});
}

}  // namespace pelmora::test
