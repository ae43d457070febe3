// Curves in another curve database.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <set>
#include <sstream>
#include <string>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class copy_command : public CommandTest {
 protected:
  void SetUp() override {
    init();
    done({"raw", curves, write("points.csv", "roshko,strouhal\n1,2\n3,4\n5,6\n"), "--meter", "M1",
          "--register", "--series", "K"});
  }
  [[nodiscard]] std::string target() const { return scratch.file("copy.db"); }
};

TEST_F(copy_command, proves_that_nothing_is_missing) {
  EXPECT_THAT(done({"copy", curves, target()}).output,
              AllOf(HasSubstr("raw1"), HasSubstr("Nothing is missing.")));
  EXPECT_EQ(done({"show", target(), "--meter", "M1", "--series", "K", "--json"}).json(),
            done({"show", curves, "--meter", "M1", "--series", "K", "--json"}).json());
}

TEST_F(copy_command, tells_all_tables_apart) {
  std::istringstream lines(done({"copy", curves, target()}).output);
  std::set<std::string> names;
  int tables = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t end = line.find("  ");
    if (end == std::string::npos) continue;
    names.insert(line.substr(0, end));
    ++tables;
  }
  EXPECT_GT(tables, 30);
  EXPECT_EQ(names.size(), static_cast<std::size_t>(tables));
}

TEST_F(copy_command, ends_with_5_if_something_is_missing) {
  const PlainDatabase database(curves);
  database.run(R"(UPDATE raw1 SET "Roshko" = )" + database.infinity() + R"( WHERE "Roshko" = 1)");
  const CommandResult result = run({"copy", curves, target()});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.output, HasSubstr("column Roshko: 'inf' cannot be stored there"));
  EXPECT_THAT(result.error, HasSubstr("not everything in '" + curves + "' was copied"));
}

TEST_F(copy_command, says_what_is_in_the_way) {
  done({"copy", curves, target()});
  EXPECT_THAT(trouble(3, {"copy", curves, target()}), HasSubstr("already holds rows"));
  EXPECT_THAT(trouble(3, {"copy", curves, target(), "--meter", "M1", "--new-ids"}),
              HasSubstr("already has meter 'M1', calibration 0"));
  EXPECT_THAT(trouble(4, {"copy", curves, target(), "--meter", "M9"}), HasSubstr("M9"));
  const std::string others = scratch.file("others.db");
  done({"init", others});
  PlainSqlite(others).run("INSERT INTO meter VALUES (1, 'N', 'N', 0)");
  EXPECT_THAT(trouble(3, {"copy", curves, others, "--meter", "M1"}),
              HasSubstr("give the rows new ids with --new-ids"));
  EXPECT_THAT(trouble(5, {"copy", curves, curves}), HasSubstr("cannot be copied into itself"));
}

}  // namespace
}  // namespace pelmora::test
