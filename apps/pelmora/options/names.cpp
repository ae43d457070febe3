// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/names.h"

#include "apps/pelmora/trouble.h"
#include "base/server_address.h"
#include "base/text_flaw.h"

#include <filesystem>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

void refuse(const std::string& what, const std::string& why, const std::string& remedy) {
  throw Trouble(ExitCode::usage, what + ": " + why, remedy);
}

// `thing`: "name" or "path".
void requirePlainText(const std::string& what, const std::string& thing, const std::string& text) {
  const std::string start = "the " + thing + " '" + shortened(text) + "' ";
  switch (flawOf(text)) {
    case TextFlaw::none: return;
    case TextFlaw::malformed:
      return refuse(what, start + "is not valid UTF-8", "write it in UTF-8");
    case TextFlaw::control:
      return refuse(what, start + "holds control characters", "leave them out");
    case TextFlaw::bidirectional:
      return refuse(what,
                    start +
                        "holds characters that turn the reading direction, so that it reads as "
                        "another one",
                    "leave them out");
  }
}

}  // namespace

void requireName(const std::string& what, const std::string& name) {
  if (name.find_first_not_of(' ') == std::string::npos)
    refuse(what, "the name is empty", "give a name");
  if (name.find('\'') != std::string::npos) {
    refuse(what,
           "'" + shortened(name) +
               "' holds an apostrophe, which the database's statements cannot carry",
           "leave it out");
  }
  if (flawOf(name) == TextFlaw::control) requirePlainText(what, "name", name);
}

void requireNewName(const std::string& what, const std::string& name) {
  requireName(what, name);
  requirePlainText(what, "name", name);
}

void requirePath(const std::string& what, const std::string& path) {
  requirePlainText(what, "path", path);
  if (!hasPassword(path)) return;
  refuse(what,
         "the address '" + shownLocation(path) +
             "' holds a password, which everybody can read in the list of processes",
         "leave it out and give it in PGPASSWORD, in ~/.pgpass or in a service file");
}

void requireDatabasePath(const std::string& what, const std::string& path) {
  requirePath(what, path);
  if (isServerAddress(path)) return;
  std::error_code code;
  fs::path whole = fs::weakly_canonical(path, code);
  if (code) whole = fs::absolute(path, code);
  const std::size_t length = std::max(path.size(), whole.native().size());
  if (length <= longestDatabasePath) return;
  throw Trouble(ExitCode::database,
                what + ": the path '" + shortened(path) + "' is " + std::to_string(length) +
                    " bytes long from the root; a database's may have " +
                    std::to_string(longestDatabasePath),
                "move the database to a folder with a shorter path");
}

}  // namespace pelmora::cli
