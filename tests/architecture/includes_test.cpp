// The direction of includes: who may look at whom.
// SPDX-License-Identifier: MIT
#include "tests/architecture/sources.h"
#include "tests/support/places.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

struct FolderRule {
  Names folders;    // folders of ours besides its own
  Names libraries;  // first parts of the <...> headers that are neither C++'s nor ours
};

// Includes point down this list. A new folder needs a line here.
const std::map<std::string, FolderRule>& rules() {
  static const std::map<std::string, FolderRule> table{
      {"base", {}},
      {"ui", {{"base"}, {}}},
      {"points", {{"base"}, {}}},
      {"store", {{"base", "points"}, {}}},
      {"curves", {{"base", "points"}, {}}},
      {"units", {{"base"}, {}}},
      {"uncertainty", {{"base", "curves", "units"}, {}}},
      {"sheets", {{"base", "units"}, {}}},
      {"tables", {{"base", "curves"}, {}}},
      {"flow", {{"base", "curves", "units", "uncertainty"}, {}}},
      {"drift", {{"base", "uncertainty"}, {}}},
      {"calibration/steps", {{"base", "points", "store", "curves"}, {}}},
      {"calibration",
       {{"base", "points", "store", "curves", "solver", "solver/equations", "solver/reference",
         "band", "history", "doctor", "units", "uncertainty", "flow", "drift", "tables",
         "calibration/steps"},
        {}}},
      {"component", {{"base", "ui", "points", "store", "curves", "calibration/steps"}, {}}},
      {"adapters/sql_dialect", {{"base"}, {}}},
      {"adapters/sql_engine", {{"base", "store", "adapters/sql_dialect"}, {}}},
      {"adapters/sqlite",
       {{"base", "store", "adapters/sql_dialect", "adapters/sql_engine"}, {"sqlite3.h", "posix"}}},
      {"adapters/access",
       {{"base", "store", "adapters/os", "adapters/sqlite"}, {"mdbtools.h", "posix"}}},
      {"adapters/postgresql",
       {{"base", "store", "adapters/os", "adapters/sql_dialect", "adapters/sql_engine"},
        {"posix", "pqxx"}}},
      {"adapters/postgresql/link", {{"adapters/postgresql"}, {"pqxx"}}},
      {"adapters/stand_csv", {{"base", "store", "adapters/sqlite"}, {}}},
      {"solver", {{"base"}, {"immintrin.h"}}},
      {"band", {{"base"}, {}}},
      {"adapters/dialog", {{"base", "ui", "adapters/os"}, {"FL", "posix", "windows"}}},
      {"adapters/os", {{"base", "ui", "programs"}, {"posix", "windows"}}},
      {"adapters/ado", {{"base", "store", "adapters/os"}, {"windows"}}},
      {"bindings/com",
       {{"base", "ui", "adapters/os", "adapters/ado"}, {"windows", "cxxabi.h", "xmmintrin.h"}}},
      {"bindings/python", {{}, {"pybind11"}}},
      {"wiring",
       {{"base", "ui", "store", "adapters/os", "adapters/sqlite", "adapters/stand_csv",
         "adapters/access", "adapters/postgresql", "solver", "band", "adapters/dialog",
         "adapters/ado"},
        {}}},
      {"history", {{"base", "store"}, {}}},
      {"doctor", {{"history", "store", "points"}, {}}},
      {"loading", {{}, {"posix"}}},
      {"programs", {{}, {"posix"}}},
      {"files", {{}, {"posix"}}},
      {"dcc", {{"base", "units", "loading"}, {"libxml"}}},
      {"report",
       {{"base", "curves", "dcc", "units", "loading", "programs", "files"},
        {"nlohmann", "xlsxwriter.h", "posix"}}},
      {"apps/pelmora",
       {{"base", "curves", "report", "loading", "programs", "files"},
        {"CLI", "nlohmann", "microhttpd.h", "posix"}}},
      {"include/pelmora", {}},
  };
  return table;
}

const Names& posixHeaders() {
  static const Names headers{"dlfcn.h",  "fcntl.h",   "poll.h",  "signal.h", "spawn.h",
                             "unistd.h", "sys",       "errno.h", "netinet",  "netdb.h",
                             "arpa",     "pthread.h", "time.h"};
  return headers;
}

const Names& windowsHeaders() {
  static const Names headers{"windows.h", "unknwn.h", "oaidl.h",   "ocidl.h",
                             "oleauto.h", "olectl.h", "initguid.h"};
  return headers;
}

const fs::path& sourceRoot() {
  static const fs::path root = pelmora::test::sourceFolder();
  return root;
}

// Where a folder of the rules lies.
fs::path placeOf(const std::string& folder) {
  const fs::path inside = sourceRoot() / "src" / folder;
  return fs::exists(inside) ? inside : sourceRoot() / folder;
}

struct Include {
  std::string file, target;
  bool quoted;
};

std::vector<Include> includesOf(const fs::path& folder) {
  static const std::regex pattern(R"rx(^\s*#\s*include\s*([<"])([^>"]+)[>"])rx");
  std::vector<Include> includes;
  for (const fs::path& file : pelmora::test::sourcesIn(folder)) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
      std::smatch match;
      if (line.find('#') != std::string::npos && std::regex_search(line, match, pattern)) {
        includes.push_back({fs::relative(file, sourceRoot()).string(), match[2], match[1] == "\""});
      }
    }
  }
  return includes;
}

std::string folderOf(const std::string& target) { return fs::path(target).parent_path().string(); }
std::string firstPart(const std::string& target) { return fs::path(target).begin()->string(); }

std::string why(const std::string& folder, const FolderRule& rule, const Include& include) {
  if (include.quoted) {
    const std::string target = folderOf(include.target);
    const bool inside = target == folder || target.starts_with(folder + "/");
    return inside || rule.folders.contains(target) ? "" : folder + " may not include " + target;
  }
  if (include.target.starts_with("pelmora/")) return "";
  const bool ofTheLanguage = include.target.find_first_of("./") == std::string::npos;
  if (ofTheLanguage || rule.libraries.contains(firstPart(include.target))) return "";
  const auto allows = [&](const char* group, const Names& headers) {
    return rule.libraries.contains(group) && headers.contains(firstPart(include.target));
  };
  const bool ofTheSystem = allows("posix", posixHeaders()) || allows("windows", windowsHeaders());
  return ofTheSystem ? "" : folder + " may use the C++ library alone";
}

std::vector<std::string> violations(const std::string& folder) {
  std::vector<std::string> found;
  for (const Include& include : includesOf(placeOf(folder))) {
    const std::string reason = why(folder, rules().at(folder), include);
    if (!reason.empty()) found.push_back(include.file + ": " + include.target + ": " + reason);
  }
  return found;
}

class includes : public testing::TestWithParam<std::string> {};

TEST_P(includes, point_the_allowed_way) {
  ASSERT_TRUE(fs::exists(placeOf(GetParam()))) << GetParam() << " has a rule and is not there";
  for (const std::string& violation : violations(GetParam())) {
    ADD_FAILURE() << violation;
  }
}

std::vector<std::string> folders() {
  std::vector<std::string> names;
  for (const auto& [folder, rule] : rules()) names.push_back(folder);
  return names;
}

std::string testName(const testing::TestParamInfo<std::string>& info) {
  return std::regex_replace(info.param, std::regex("/"), "_");
}

INSTANTIATE_TEST_SUITE_P(of, includes, testing::ValuesIn(folders()), testName);

// Rooms of the command line that alone may include a header.
bool isInRoom(const Include& include, const std::string& room) {
  return include.file.starts_with("apps/pelmora/" + room + "/");
}

TEST(command_line, knows_its_parser_in_one_room) {
  for (const Include& include : includesOf(placeOf("apps/pelmora"))) {
    const bool isParser = !include.quoted && firstPart(include.target) == "CLI";
    EXPECT_TRUE(!isParser || isInRoom(include, "options"))
        << include.file << ": " << include.target;
  }
}

// It is loaded when a server is asked for: nothing else may need it.
TEST(postgresql, knows_its_client_library_in_one_room) {
  for (const Include& include : includesOf(placeOf("adapters/postgresql"))) {
    const bool isLibrary = !include.quoted && firstPart(include.target) == "pqxx";
    EXPECT_TRUE(!isLibrary || include.file == "src/adapters/postgresql/link/libpqxx.h")
        << include.file << ": " << include.target;
  }
}

// What reads requests of strangers is one source, and it loads the library through this header.
TEST(command_line, knows_its_web_server_in_one_place) {
  for (const Include& include : includesOf(placeOf("apps/pelmora"))) {
    const bool isServer = !include.quoted && include.target == "microhttpd.h";
    EXPECT_TRUE(!isServer || include.file == "apps/pelmora/workbench/http/microhttpd_library.h")
        << include.file << ": " << include.target;
  }
}

// What the hosts' component shows and keeps for its thread is not for commands: they call the
// service.
TEST(command_line, does_without_the_component) {
  const Names component{"pelmora/pelmora.h", "pelmora/raw_data.h", "pelmora/platform.h",
                        "pelmora/dialog.h"};
  for (const Include& include : includesOf(placeOf("apps/pelmora")))
    EXPECT_FALSE(component.contains(include.target)) << include.file << ": " << include.target;
}

// The last series and results of a thread belong to the hosts: our own code never changes them.
TEST(service_and_python, do_without_the_component) {
  const Names component{"pelmora/pelmora.h", "pelmora/raw_data.h"};
  for (const char* folder : {"calibration", "history", "doctor", "report", "bindings/python"}) {
    for (const Include& include : includesOf(placeOf(folder)))
      EXPECT_FALSE(component.contains(include.target)) << include.file << ": " << include.target;
  }
}

TEST(includes_check, finds_an_include_that_points_up) {
  const FolderRule& rule = rules().at("store");
  EXPECT_NE(why("store", rule, {"store/x.cpp", "component/start_fit.h", true}), "");
  EXPECT_NE(why("store", rule, {"store/x.cpp", "sqlite3.h", false}), "");
  EXPECT_NE(why("store", rule, {"store/x.cpp", "unistd.h", false}), "");
  EXPECT_NE(why("store", rule, {"store/x.cpp", "windows.h", false}), "");
  EXPECT_EQ(why("store", rule, {"store/x.cpp", "base/number_text.h", true}), "");
  EXPECT_EQ(why("store", rule, {"store/x.cpp", "vector", false}), "");
}

TEST(includes_check, reads_the_includes_of_a_folder) {
  EXPECT_GT(includesOf(placeOf("component")).size(), 10U);
}

TEST(folders, have_a_rule_and_a_readme) {
  for (const char* parent : {"src", "src/adapters", "bindings"}) {
    for (const auto& entry : fs::directory_iterator(sourceRoot() / parent)) {
      if (!entry.is_directory() || !fs::exists(entry.path() / "CMakeLists.txt")) continue;
      const fs::path under =
          parent == std::string("bindings") ? sourceRoot() : sourceRoot() / "src";
      const std::string name = fs::relative(entry.path(), under).string();
      EXPECT_TRUE(rules().contains(name)) << name << " has no rule";
      EXPECT_TRUE(fs::exists(entry.path() / "README.md")) << name << " has no README.md";
    }
  }
}

}  // namespace
