// Pipes, devices, folders and very large files where a file is expected; long bad fields.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <sys/stat.h>

namespace pelmora::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

class unusual_file : public CommandTest {
 protected:
  unusual_file() { init(); }
  Arguments raw(const std::string& points) const {
    return {"raw", curves, points, "--meter", "P", "--register", "--series", "S"};
  }
  std::string pipe(const std::string& name) const {
    EXPECT_EQ(mkfifo(scratch.file(name).c_str(), 0600), 0);
    return scratch.file(name);
  }
};

TEST_F(unusual_file, is_refused_as_points) {
  EXPECT_THAT(trouble(5, raw(pipe("points.csv"))), HasSubstr("points.csv' is a pipe"));
  EXPECT_THAT(trouble(5, raw("/dev/zero")), HasSubstr("'/dev/zero' is a device"));
  EXPECT_THAT(trouble(5, raw(scratch.path().string())), HasSubstr("is a folder"));
}

TEST_F(unusual_file, is_refused_as_database) {
  for (const std::string& path : {pipe("pipe.db"), std::string("/dev/zero")}) {
    EXPECT_THAT(trouble(3, {"show", path}), HasSubstr("regular file")) << path;
    EXPECT_THAT(trouble(3, {"init", path}), HasSubstr("exists already")) << path;
  }
}

TEST_F(unusual_file, is_refused_as_stand) {
  for (const std::string& path : {pipe("stand.csv"), std::string("/dev/zero")}) {
    EXPECT_THAT(trouble(3, {"import", curves, "--meter", "M1", "--stand", path, "--job", "1001",
                            "--fluid", "f"}),
                HasSubstr("regular file"))
        << path;
  }
}

TEST_F(unusual_file, is_refused_as_configuration_and_as_equations) {
  const std::string path = pipe("pipe");
  EXPECT_THAT(trouble(2, {"--config", path, "show", curves}), HasSubstr("it is a pipe"));
  done({"--config", "/dev/null", "show", curves});
  done(raw(write("p.csv", "1,2\n3,4\n")));
  EXPECT_THAT(trouble(5, {"fit", curves, "--meter", "P", "--series", "S", "--equations", path}),
              HasSubstr("is a pipe"));
}

TEST_F(unusual_file, larger_than_100_MB_is_refused) {
  const std::string points = write("points.csv", "Roshko,Strouhal\n1,2\n");
  fs::resize_file(points, 100'000'001);
  EXPECT_THAT(trouble(5, raw(points)), HasSubstr("is larger than 100 MB"));
  const std::string stand = write("stand.csv", "JobRecordID,V1\n1,2\n");
  fs::resize_file(stand, 100'000'001);
  EXPECT_THAT(trouble(5, {"import", curves, "--meter", "M1", "--stand", stand, "--job", "1",
                          "--fluid", "f"}),
              HasSubstr("is larger than 100 MB"));
}

TEST_F(unusual_file, with_a_long_bad_field_is_quoted_in_part) {
  // 59 letters, then one of two bytes: the cut is behind it.
  const std::string field = std::string(59, 'a') + "\xC3\xA4" + std::string(200'000, 'b');
  const std::string line = trouble(5, raw(write("p.csv", "x,y\n1,2\n" + field + ",2\n")));
  EXPECT_THAT(line, AllOf(HasSubstr("line 3, column x"),
                          HasSubstr("'" + std::string(59, 'a') + "\xC3\xA4...' is not a number")));
  EXPECT_THAT(trouble(5, raw(write("p.csv", field + ",y,z\n1,2,3\n"))),
              HasSubstr(std::string(59, 'a') + "\xC3\xA4..., y, z"));
  EXPECT_LT(trouble(2, {"restore", curves, field.substr(0, 100'000)}).size(), 300U);
}

TEST_F(unusual_file, with_bytes_that_are_no_text_shows_none_of_them) {
  EXPECT_THAT(trouble(5, raw(write("p.csv", "x,y\n1,2\n\xFF\xE2\x80\xAE\x1B[31m,2\n"))),
              HasSubstr("'???[31m' is not a number"));
}

}  // namespace
}  // namespace pelmora::test
