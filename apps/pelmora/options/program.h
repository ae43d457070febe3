// The program's command line: its commands, and the run of the one that is given.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/description/command_description.h"
#include "apps/pelmora/options/command.h"

#include <memory>
#include <string>

namespace pelmora::cli {

class Program {
 public:
  Program();
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  [[nodiscard]] Command add(const std::string& name, const std::string& help);
  // Commands in the order in which they were added; hidden ones are left out.
  [[nodiscard]] ProgramDescription description() const;

  // Reads the configuration file and the arguments, and runs the command. Help and version go to
  // standard output.
  //
  // Errors: Trouble usage; what the command throws.
  void run(int argc, const char* const* argv);

 private:
  std::unique_ptr<CLI::App> parser_;
};

}  // namespace pelmora::cli
