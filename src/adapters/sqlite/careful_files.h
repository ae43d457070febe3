// Files whose locks no other thread of the process can lose.
// SPDX-License-Identifier: MIT
#pragma once

struct sqlite3;
struct sqlite3_vfs;

namespace pelmora::sqlite {

// The file system through which every database is opened here. It is SQLite's default one, but
// never closes a database's file while another thread is taking a lock, and closes files for a
// while.
//
// With POSIX locks, closing any descriptor of a file drops all locks that the process has on it.
// SQLite therefore keeps a descriptor open while it counts a lock on the file. It counts first and
// closes later (up to 3.51 at least), and a lock that another thread takes in between is lost
// silently: two processes then write at once, and the database is damaged.
[[nodiscard]] sqlite3_vfs* carefulFiles();

// Closes the file of a database that is open through carefulFiles() and has no transaction, but not
// the database. Until reopenFile() the database can only be closed. False where that is impossible,
// because the database is in memory or has a write-ahead log; its file is open then.
[[nodiscard]] bool closeFileForAWhile(sqlite3* database);

// Opens what has the name of the file now. The database's pages and schema may be other ones.
// False if nothing can be opened, or not with the same rights or a database of the same format; the
// database can then only be closed.
[[nodiscard]] bool reopenFile(sqlite3* database);

}  // namespace pelmora::sqlite
