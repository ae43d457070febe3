// Files whose locks no other thread of the process can lose.
// SPDX-License-Identifier: MIT
#pragma once

struct sqlite3_vfs;

namespace pelmora::sqlite {

// The file system through which every database is opened here. It is SQLite's default one, but
// never closes a database's file while another thread is taking a lock.
//
// With POSIX locks, closing any descriptor of a file drops all locks that the process has on it.
// SQLite therefore keeps a descriptor open while it counts a lock on the file. It counts first and
// closes later (up to 3.51 at least), and a lock that another thread takes in between is lost
// silently: two processes then write at once, and the database is damaged.
[[nodiscard]] sqlite3_vfs* carefulFiles();

}  // namespace pelmora::sqlite
