// SPDX-License-Identifier: MIT
#include "adapters/sqlite/careful_files.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>
#include <shared_mutex>
#include <utility>

namespace pelmora::sqlite {

namespace {

using Header = std::array<unsigned char, 100>;

// SQLite allocates it.
struct File {
  sqlite3_file base;
  sqlite3_file* real;  // null while it is closed for a while
  const char* name;
  int flags, outFlags;
  Header header;  // when it was closed for a while
};

// Above those that SQLite reserves.
enum Control { closeForAWhile = 20'731, reopen };

// Held by all who take a lock, which never waits, or by one who closes a file. Never destroyed:
// databases may be closed while the process ends.
std::shared_mutex& closing() {
  static auto* const mutex = new std::shared_mutex();
  return *mutex;
}

sqlite3_vfs* realVfs() { return sqlite3_vfs_find(nullptr); }
File& fileOf(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
sqlite3_file* realFile(sqlite3_file* file) { return fileOf(file).real; }

// A method of a file or of a file system that only asks the real one. A file that is closed for a
// while knows no answer.
template <auto method>
struct Passed;
template <class Result, class... Values,
          Result (*sqlite3_io_methods::*method)(sqlite3_file*, Values...)>
struct Passed<method> {
  static Result on(sqlite3_file* file, Values... values) {
    sqlite3_file* real = realFile(file);
    return real == nullptr ? Result(SQLITE_NOTFOUND) : (real->pMethods->*method)(real, values...);
  }
};
template <class Result, class... Values, Result (*sqlite3_vfs::*method)(sqlite3_vfs*, Values...)>
struct Passed<method> {
  static Result on(sqlite3_vfs* /*own*/, Values... values) {
    sqlite3_vfs* real = realVfs();
    return (real->*method)(real, values...);
  }
};

int closeReal(File& file) {
  sqlite3_file* real = std::exchange(file.real, nullptr);
  if (real == nullptr) return SQLITE_OK;
  int code = SQLITE_OK;
  {
    const std::unique_lock lock(closing());
    code = real->pMethods->xClose(real);
  }
  sqlite3_free(real);
  return code;
}

int close(sqlite3_file* file) {
  file->pMethods = nullptr;
  return closeReal(fileOf(file));
}

int openReal(File& file, int flags, int* outFlags) {
  sqlite3_vfs* vfs = realVfs();
  file.real = nullptr;
  auto* real = static_cast<sqlite3_file*>(sqlite3_malloc(vfs->szOsFile));
  if (real == nullptr) return SQLITE_NOMEM;
  real->pMethods = nullptr;
  const int code = vfs->xOpen(vfs, file.name, real, flags, outFlags);
  if (real->pMethods != nullptr) {
    file.real = real;
  } else {
    sqlite3_free(real);
  }
  return code;
}

bool readHeader(const File& file, Header& header) {
  return file.real->pMethods->xRead(file.real, header.data(), static_cast<int>(header.size()), 0) ==
         SQLITE_OK;
}

// Both "file format version" numbers are 1 unless the database has a write-ahead log.
bool hasRollbackJournal(const Header& header) { return header[18] == 1 && header[19] == 1; }

// Without the numbers that count changes and pages: the size of a page, the encoding of texts ...
bool isSameFormat(const Header& a, const Header& b) {
  return std::equal(a.begin(), a.begin() + 24, b.begin()) &&
         std::equal(a.begin() + 44, a.begin() + 92, b.begin() + 44);
}

int closeDatabaseForAWhile(File& file) {
  if (!readHeader(file, file.header) || !hasRollbackJournal(file.header)) return SQLITE_BUSY;
  return closeReal(file);
}

int reopenDatabase(File& file) {
  constexpr int making = SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE;
  int outFlags = 0;
  Header header{};
  if (openReal(file, file.flags & ~making, &outFlags) == SQLITE_OK && outFlags == file.outFlags &&
      readHeader(file, header) && isSameFormat(header, file.header)) {
    return SQLITE_OK;
  }
  closeReal(file);
  return SQLITE_CANTOPEN;
}

int control(sqlite3_file* file, int operation, void* value) {
  if (operation == closeForAWhile) return closeDatabaseForAWhile(fileOf(file));
  if (operation == reopen) return reopenDatabase(fileOf(file));
  return Passed<&sqlite3_io_methods::xFileControl>::on(file, operation, value);
}

int takeLock(sqlite3_file* file, int level) {
  const std::shared_lock lock(closing());
  return Passed<&sqlite3_io_methods::xLock>::on(file, level);
}

sqlite3_io_methods methodsOf(int version) {
  using Methods = sqlite3_io_methods;
  Methods methods{};
  methods.iVersion = version;
  methods.xClose = close;
  methods.xRead = Passed<&Methods::xRead>::on;
  methods.xWrite = Passed<&Methods::xWrite>::on;
  methods.xTruncate = Passed<&Methods::xTruncate>::on;
  methods.xSync = Passed<&Methods::xSync>::on;
  methods.xFileSize = Passed<&Methods::xFileSize>::on;
  methods.xLock = takeLock;
  methods.xUnlock = Passed<&Methods::xUnlock>::on;
  methods.xCheckReservedLock = Passed<&Methods::xCheckReservedLock>::on;
  methods.xFileControl = control;
  methods.xSectorSize = Passed<&Methods::xSectorSize>::on;
  methods.xDeviceCharacteristics = Passed<&Methods::xDeviceCharacteristics>::on;
  if (version < 2) return methods;
  methods.xShmMap = Passed<&Methods::xShmMap>::on;
  methods.xShmLock = Passed<&Methods::xShmLock>::on;
  methods.xShmBarrier = Passed<&Methods::xShmBarrier>::on;
  methods.xShmUnmap = Passed<&Methods::xShmUnmap>::on;
  if (version < 3) return methods;
  methods.xFetch = Passed<&Methods::xFetch>::on;
  methods.xUnfetch = Passed<&Methods::xUnfetch>::on;
  return methods;
}

// A file can do what the real one can.
const sqlite3_io_methods* methodsLike(const sqlite3_io_methods& real) {
  static const std::array all{methodsOf(1), methodsOf(2), methodsOf(3)};
  const bool hasSharedMemory = real.iVersion >= 2 && real.xShmMap != nullptr;
  const bool hasMapping = hasSharedMemory && real.iVersion >= 3 && real.xFetch != nullptr;
  return &all[hasMapping ? 2 : hasSharedMemory ? 1 : 0];
}

int open(sqlite3_vfs* /*own*/, const char* name, sqlite3_file* opened, int flags, int* outFlags) {
  opened->pMethods = nullptr;
  File& file = fileOf(opened);
  file.name = name;
  file.flags = flags;
  file.outFlags = 0;
  const int code = openReal(file, flags, &file.outFlags);
  if (outFlags != nullptr) *outFlags = file.outFlags;
  if (file.real != nullptr) opened->pMethods = methodsLike(*file.real->pMethods);
  return code;
}

// Known to SQLite for as long as the library is loaded.
class Registered {
 public:
  Registered() {
    using Vfs = sqlite3_vfs;
    vfs_.iVersion = 2;
    vfs_.szOsFile = sizeof(File);
    vfs_.mxPathname = realVfs()->mxPathname;
    vfs_.zName = "pelmora";
    vfs_.xOpen = open;
    vfs_.xDelete = Passed<&Vfs::xDelete>::on;
    vfs_.xAccess = Passed<&Vfs::xAccess>::on;
    vfs_.xFullPathname = Passed<&Vfs::xFullPathname>::on;
    vfs_.xRandomness = Passed<&Vfs::xRandomness>::on;
    vfs_.xSleep = Passed<&Vfs::xSleep>::on;
    vfs_.xCurrentTime = Passed<&Vfs::xCurrentTime>::on;
    vfs_.xGetLastError = Passed<&Vfs::xGetLastError>::on;
    vfs_.xCurrentTimeInt64 = Passed<&Vfs::xCurrentTimeInt64>::on;
    sqlite3_vfs_register(&vfs_, 0);
  }
  ~Registered() { sqlite3_vfs_unregister(&vfs_); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

  [[nodiscard]] sqlite3_vfs* vfs() { return &vfs_; }

 private:
  sqlite3_vfs vfs_{};
};

}  // namespace

sqlite3_vfs* carefulFiles() {
  static Registered registered;
  return registered.vfs();
}

bool closeFileForAWhile(sqlite3* database) {
  return sqlite3_file_control(database, "main", closeForAWhile, nullptr) == SQLITE_OK;
}

bool reopenFile(sqlite3* database) {
  return sqlite3_file_control(database, "main", reopen, nullptr) == SQLITE_OK;
}

}  // namespace pelmora::sqlite
