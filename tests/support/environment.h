// Environment variables for as long as a test needs them.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace pelmora::test {

class Environment {
 public:
  explicit Environment(const std::map<std::string, std::string>& variables) {
    for (const auto& [name, value] : variables) set(name, value);
  }
  Environment(const std::string& name, const std::string& value) { set(name, value); }
  ~Environment() {
    for (const auto& [name, value] : before_) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  void set(const std::string& name, const std::string& value) {
    const char* before = std::getenv(name.c_str());
    before_[name] = before == nullptr ? std::nullopt : std::optional<std::string>(before);
    setenv(name.c_str(), value.c_str(), 1);
  }

  std::map<std::string, std::optional<std::string>> before_;
};

// What "postgresql://" alone then means: the database of an address that PostgresServer gives.
inline std::map<std::string, std::string> variablesOf(const std::string& address) {
  const std::string start = "postgresql://", user = "@/", host = "?host=";
  const std::size_t database = address.find(user), folder = address.find(host);
  return {{"PGUSER", address.substr(start.size(), database - start.size())},
          {"PGDATABASE", address.substr(database + user.size(), folder - database - user.size())},
          {"PGHOST", address.substr(folder + host.size())}};
}

}  // namespace pelmora::test
