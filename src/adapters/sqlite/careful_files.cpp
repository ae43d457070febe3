// SPDX-License-Identifier: MIT
#include "adapters/sqlite/careful_files.h"

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <shared_mutex>

namespace pelmora::sqlite {

#ifdef _WIN32

// Locks belong to a handle there.
sqlite3_vfs* carefulFiles() { return sqlite3_vfs_find(nullptr); }

#else

namespace {

// SQLite allocates it.
struct File {
  sqlite3_file base;
  sqlite3_file* real;
};

// Held by all who take a lock, which never waits, or by one who closes a file. Never destroyed:
// databases may be closed while the process ends.
std::shared_mutex& closing() {
  static auto* const mutex = new std::shared_mutex();
  return *mutex;
}

sqlite3_vfs* realVfs() { return sqlite3_vfs_find(nullptr); }
sqlite3_file* realFile(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real; }

// A method of a file or of a file system that only asks the real one.
template <auto method>
struct Passed;
template <class Result, class... Values,
          Result (*sqlite3_io_methods::*method)(sqlite3_file*, Values...)>
struct Passed<method> {
  static Result on(sqlite3_file* file, Values... values) {
    sqlite3_file* real = realFile(file);
    return (real->pMethods->*method)(real, values...);
  }
};
template <class Result, class... Values, Result (*sqlite3_vfs::*method)(sqlite3_vfs*, Values...)>
struct Passed<method> {
  static Result on(sqlite3_vfs* /*own*/, Values... values) {
    sqlite3_vfs* real = realVfs();
    return (real->*method)(real, values...);
  }
};

int close(sqlite3_file* file) {
  sqlite3_file* real = realFile(file);
  int code = SQLITE_OK;
  {
    const std::unique_lock lock(closing());
    code = real->pMethods->xClose(real);
  }
  sqlite3_free(real);
  file->pMethods = nullptr;
  return code;
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
  methods.xFileControl = Passed<&Methods::xFileControl>::on;
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

int open(sqlite3_vfs* /*own*/, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  sqlite3_vfs* vfs = realVfs();
  file->pMethods = nullptr;
  auto* real = static_cast<sqlite3_file*>(sqlite3_malloc(vfs->szOsFile));
  if (real == nullptr) return SQLITE_NOMEM;
  real->pMethods = nullptr;
  const int code = vfs->xOpen(vfs, name, real, flags, outFlags);
  if (real->pMethods == nullptr) {
    sqlite3_free(real);
    return code;
  }
  reinterpret_cast<File*>(file)->real = real;
  file->pMethods = methodsLike(*real->pMethods);
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

#endif

}  // namespace pelmora::sqlite
