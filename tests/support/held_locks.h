// What another process sees of the locks that this one holds on a database.
// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace pelmora::test {

// Whether this process holds SQLite's lock for writing, in a rollback journal's mode, as a new
// process sees it. A descriptor of the file may not even be opened here: closing it would end the
// lock.
inline bool holdsWriteLock(const std::string& path) {
  constexpr off_t reservedByte = 0x40000001;  // from SQLite's file format
  const pid_t child = fork();
  if (child == 0) {
    const int file = open(path.c_str(), O_RDWR);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = reservedByte;
    lock.l_len = 1;
    if (file < 0 || fcntl(file, F_GETLK, &lock) != 0) _exit(2);
    _exit(lock.l_type == F_UNLCK ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) std::abort();
  return WEXITSTATUS(status) == 1;
}

}  // namespace pelmora::test
