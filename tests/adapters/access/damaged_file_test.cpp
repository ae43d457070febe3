// Damaged files: everything that is missing is listed, and only the reading program can crash.
// SPDX-License-Identifier: MIT
#include "base/file_text.h"
#include "tests/adapters/access/damage.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

namespace pelmora::test {
namespace {

constexpr std::uint32_t filesOfAKind = 16;  // the survey takes many more

class damaged_access_file : public testing::TestWithParam<std::pair<const char*, DamageKind>> {};

TEST_P(damaged_access_file, loses_nothing_in_silence) {
  const auto [name, kind] = GetParam();
  const std::string bytes = readWholeFile(accessData(name));
  const CollectedTables original = readAll(accessData(name));
  const ScratchFolder folder;
  const std::string path = folder.file("damaged.mdb");
  for (std::uint32_t seed = 1; seed <= filesOfAKind; ++seed) {
    writeBytes(path, damaged(bytes, kind, seed));
    const Outcome outcome = readDamaged(path, original);
    EXPECT_NE(outcome.ending, Ending::silent) << name << ", " << nameOf(kind) << ", seed " << seed;
    if (kind != DamageKind::flippedBits) {
      EXPECT_NE(outcome.ending, Ending::changed)
          << name << ", " << nameOf(kind) << ", seed " << seed;
    }
    const bool isReported = outcome.ending == Ending::refused || outcome.ending == Ending::listed;
    EXPECT_EQ(outcome.message.empty(), !isReported);
  }
}

INSTANTIATE_TEST_SUITE_P(files, damaged_access_file,
                         testing::Values(std::pair{"curves.mdb", DamageKind::cutOff},
                                         std::pair{"curves.mdb", DamageKind::flippedBits},
                                         std::pair{"curves.mdb", DamageKind::zeroedPages},
                                         std::pair{"stand.mdb", DamageKind::cutOff},
                                         std::pair{"stand.mdb", DamageKind::flippedBits},
                                         std::pair{"stand.mdb", DamageKind::zeroedPages}));

// Where the pages begin that hold the rows of the table that page `definition` defines.
std::vector<std::size_t> dataPagesOf(const std::string& bytes, char definition) {
  const std::string start("\x01\x01", 2);
  const std::string owner = definition + std::string(3, '\0');
  std::vector<std::size_t> pages;
  for (std::size_t at = 0; at < bytes.size(); at += 4096) {
    if (bytes.compare(at, start.size(), start) == 0 &&
        bytes.compare(at + 4, owner.size(), owner) == 0)
      pages.push_back(at);
  }
  return pages;
}

// Page 57 of this file defines the table series.
TEST(damaged_access_row, that_is_marked_as_deleted_is_missed_by_the_files_own_count) {
  std::string bytes = readWholeFile(accessData("curves.mdb"));
  const std::vector<std::size_t> pages = dataPagesOf(bytes, 57);
  ASSERT_EQ(pages.size(), 1U);
  char& entry = bytes[pages[0] + 14 + 1];
  entry = static_cast<char>(entry | 0xC0);
  const ScratchFolder folder;
  writeBytes(folder.file("a.mdb"), bytes);
  const CollectedTables read = readAll(folder.file("a.mdb"));
  ASSERT_EQ(read.tables.at("series").leftOut.size(), 1U);
  EXPECT_EQ(read.tables.at("series").leftOut[0].Reason, "the file counts 4 rows, but 3 were found");
  EXPECT_EQ(read.tables.at("series").leftOut[0].Rows, 1U);
  EXPECT_EQ(read.tables.at("series").rows.size(), 3U);
}

// Page 60 of this file defines the table raw1: three columns, no texts.
TEST(damaged_access_row, that_has_more_than_its_number_of_columns_is_listed) {
  std::string bytes = readWholeFile(accessData("curves.mdb"));
  const std::vector<std::size_t> pages = dataPagesOf(bytes, 60);
  ASSERT_FALSE(pages.empty());
  const std::size_t page = pages[0];
  const std::size_t row = page + static_cast<unsigned char>(bytes[page + 14]) +
                          256U * static_cast<unsigned char>(bytes[page + 15]);
  ASSERT_EQ(bytes[row], 3);
  bytes[row] = 1;
  const ScratchFolder folder;
  writeBytes(folder.file("a.mdb"), bytes);
  const CollectedTables read = readAll(folder.file("a.mdb"));
  const std::vector<LeftOut>& leftOut = read.tables.at("raw1").leftOut;
  ASSERT_EQ(leftOut.size(), 2U);
  EXPECT_NE(leftOut[0].Place.find("column Roshko"), std::string::npos) << leftOut[0].Place;
  EXPECT_EQ(leftOut[0].Reason, "its row's number of columns is damaged");
}

// The places, in the bytes of a file, of fields that refer to a long value in a row of its own: its
// length, the kind of storage, row and page, and four unused bytes.
std::vector<std::size_t> longFields(const std::string& bytes) {
  std::vector<std::size_t> fields;
  for (std::size_t at = 0; at + 12 <= bytes.size(); ++at) {
    if (bytes[at + 3] != 0x40 || bytes[at + 7] != 0 || bytes[at + 2] != 0) continue;
    const std::size_t page = 4096 * (static_cast<unsigned char>(bytes[at + 5]) +
                                     256U * static_cast<unsigned char>(bytes[at + 6]));
    if (page != 0 && page < bytes.size() && bytes.compare(page + 4, 4, "LVAL") == 0)
      fields.push_back(at);
  }
  return fields;
}

TEST(damaged_access_memo, that_two_rows_refer_to_is_read_once) {
  const std::string bytes = readWholeFile(accessData("types.mdb"));
  const std::vector<std::size_t> fields = longFields(bytes);
  ASSERT_GT(fields.size(), 4U);
  const CollectedTables original = readAll(accessData("types.mdb"));
  const ScratchFolder folder;
  std::size_t found = 0;
  for (std::size_t i = 1; i < fields.size(); ++i) {
    std::string damaged = bytes;
    damaged.replace(fields[i], 8, bytes, fields[i - 1], 8);
    writeBytes(folder.file("a.mdb"), damaged);
    const Outcome outcome = readDamaged(folder.file("a.mdb"), original);
    EXPECT_NE(outcome.ending, Ending::changed);
    EXPECT_NE(outcome.ending, Ending::silent);
    if (outcome.message.find("is used twice") != std::string::npos) ++found;
  }
  EXPECT_GT(found, 4U);
}

}  // namespace
}  // namespace pelmora::test
