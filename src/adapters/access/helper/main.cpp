// pelmora-access MEMORY_MB SECONDS FILE: reads an Access file and writes its tables to standard
// output, in the form of adapters/access/message.h. Exit code: 0 if the last message was written.
// SPDX-License-Identifier: MIT
#include "adapters/access/helper/catalogue.h"
#include "adapters/access/helper/field_value.h"
#include "adapters/access/helper/limits.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>

namespace pelmora::access {
namespace {

constexpr std::size_t enoughToSend = 64 * 1024;

class Output {
 public:
  explicit Output(int file) : file_(file) {}

  void send(const Message& message) {
    bytes_ += encoded(message);
    if (bytes_.size() >= enoughToSend) flush();
  }
  void flush() {
    std::string_view left = bytes_;
    while (!left.empty()) {
      const ssize_t written = write(file_, left.data(), left.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) std::_Exit(EXIT_FAILURE);  // the host is gone
      left.remove_prefix(static_cast<std::size_t>(written));
    }
    bytes_.clear();
  }

 private:
  int file_;
  std::string bytes_;
};

void sendTable(const PageFile& file, const CatalogueEntry& entry, LongValues& longValues,
               Output& output) {
  const auto leftOut = [&](const LeftOutNote& note) { output.send(note); };
  AccessTable table;
  std::vector<AccessColumn> readable;
  std::vector<LeftOutNote> notes;
  TableStart start;
  start.name = entry.name;
  try {
    if (entry.page == 0) {
      notes.push_back(
          {LeftOutNote::Kind::unsupported, 0, "", "it is a link to a table in another file"});
    } else {
      table = readDefinition(file, entry.name, entry.page);
    }
  } catch (const Damage& damage) {
    notes.push_back({LeftOutNote::Kind::damage, 0, "", damage.what()});
  }
  start.rows = table.rows;
  for (const AccessColumn& column : table.columns) {
    if (const auto type = typeFor(column)) {
      readable.push_back(column);
      start.columns.push_back({column.name, *type});
    } else {
      notes.push_back({LeftOutNote::Kind::unsupported, 0, "column " + column.name,
                       "values of its type cannot be read"});
    }
  }
  output.send(start);
  for (const LeftOutNote& note : notes) leftOut(note);
  std::uint64_t sent = 0;
  if (!readable.empty()) {
    const auto row = [&](const TableRow& one) { output.send(one); };
    sent = readRows(file, table, readable, longValues, {row, leftOut});
  }
  output.send(TableEnd{sent});
}

void sendFile(const std::string& path, Output& output) {
  const PageFile file(path);
  const auto leftOut = [&](const LeftOutNote& note) { output.send(note); };
  if (file.trailingBytes() != 0) {
    leftOut({LeftOutNote::Kind::damage, 0, "the end of the file",
             "the file ends in the middle of page " + std::to_string(file.pageCount())});
  }
  const auto entries = readCatalogue(file, leftOut);
  LongValues longValues(file);
  for (const CatalogueEntry& entry : entries) sendTable(file, entry, longValues, output);
  if (file.hasChanged())
    throw Unreadable("another program changed it while it was read. Try again");
  output.send(AllRead{entries.size()});
}

std::size_t argumentNumber(const char* text) {
  std::size_t number = 0;
  const char* end = text + std::strlen(text);
  const auto result = std::from_chars(text, end, number);
  if (result.ec != std::errc() || result.ptr != end || number == 0)
    throw std::runtime_error(std::string("'") + text + "' is not a limit");
  return number;
}

// Keeps the library from printing between the messages, and the environment from changing how a
// file is read.
void isolateLibrary() {
  for (const char* name : {"MDBPATH", "MDBOPTS", "MDBICONV", "MDB_JET3_CHARSET", "MDB_ICONV"})
    unsetenv(name);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) dup2(nowhere, STDOUT_FILENO);
  if (nowhere >= 0) close(nowhere);
}

int run(char** arguments) {
  Output output(dup(STDOUT_FILENO));
  isolateLibrary();
  std::size_t memory = 0;
  try {
    memory = argumentNumber(arguments[1]);
    limitResources(memory, argumentNumber(arguments[2]));
    sendFile(arguments[3], output);
  } catch (const std::bad_alloc&) {
    output.send(
        FileFailure{"reading it takes more than " + std::to_string(memory) + " MB of memory"});
  } catch (const std::exception& error) {
    output.send(FileFailure{error.what()});
  }
  output.flush();
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace pelmora::access

int main(int count, char** arguments) {
  constexpr int expected = 4;
  if (count != expected) return EXIT_FAILURE;
  return pelmora::access::run(arguments);
}
