// A file system for SQLite that fails, tears writes, ends the process or loses power at a chosen
// call.
// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace pelmora::test {

enum class FaultKind {
  none,
  error,      // the call fails and does nothing
  tornError,  // a write stops in the middle and fails; a lock is held by somebody else
  kill,       // nothing happens from this call on, as if the process had been killed
  tornKill,   // the same in the middle of a write
  powerLoss   // the same, and of what was not synced any part may be missing
};

// Calls are writes, truncations, syncs, deletions and locks, counted from 0.
struct FaultPlan {
  FaultKind kind = FaultKind::none;
  std::size_t at = 0;
  std::uint32_t seed = 0;
};

// The default file system of SQLite in this process while the object lives; one at a time.
//
// What counts as durable: the content of a file at its last sync; the entries of the folder when a
// deletion asked for it, or when a new journal was first synced. Between two syncs, the disk may
// have stored any of the writes, each whole or in some of its 512-byte sectors.
class FaultVfs {
 public:
  FaultVfs();
  ~FaultVfs();
  FaultVfs(const FaultVfs&) = delete;
  FaultVfs& operator=(const FaultVfs&) = delete;

  // Forgets everything about files; no database may be open.
  void arm(const FaultPlan& plan);
  [[nodiscard]] std::size_t calls() const { return calls_; }
  // The fault happens now, if it has not happened yet: between two calls.
  void strike();
  // Puts the files into a state that they may have after the power loss, and disarms. No database
  // may be open.
  void losePower();

 private:
  struct Change {
    bool isTruncation = false;
    std::size_t at = 0;  // the new size of a truncation
    std::string bytes;
  };
  struct Inode {
    std::string durable;
    std::vector<Change> pending;
  };
  // SQLite allocates it, with the file of the real system behind it.
  struct File {
    sqlite3_file base;
    Inode* inode;
    bool isNewJournal;
    [[nodiscard]] sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };
  enum class Verdict { goOn, fail, tear };

  static File& fileOf(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
  static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags);
  static int remove(sqlite3_vfs*, const char* name, int syncsFolder);
  static int close(sqlite3_file* file);
  static int read(sqlite3_file* file, void* into, int size, sqlite3_int64 at);
  static int write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 at);
  static int truncate(sqlite3_file* file, sqlite3_int64 size);
  static int sync(sqlite3_file* file, int flags);
  static int lock(sqlite3_file* file, int level);
  static sqlite3_io_methods methods();

  [[nodiscard]] Verdict verdict();
  // The same numbers for the same plan.
  [[nodiscard]] std::mt19937 chance() const;
  static void note(File& file, Change change);
  Inode* inodeOf(const std::string& path);
  void syncFolder();
  static void apply(const Change& change, std::string& content);
  [[nodiscard]] static std::string survivorOf(const Inode& inode, std::mt19937& random);

  sqlite3_vfs* real_;
  sqlite3_vfs own_;
  sqlite3_io_methods methods_;
  FaultPlan plan_;
  std::size_t calls_ = 0;
  bool isOff_ = false;
  std::vector<std::unique_ptr<Inode>> inodes_;
  // What each name has stood for since the folder was last synced; null: for no file.
  std::map<std::string, std::vector<Inode*>> entries_;
};

}  // namespace pelmora::test
