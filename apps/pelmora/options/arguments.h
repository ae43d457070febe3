// What is wrong with the arguments before the option parser sees them: it would take an option for
// the value of the one before it.
// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include <string>

namespace pelmora::cli {

// Walks the arguments as the parser will. A positional that takes a list then takes as many values
// as there are, so that the parser never takes one value apart ("[1,2]").
//
// Returns the value of --config; empty where it is not given.
// Errors: Trouble usage that names the option: its value is empty, or another option follows it.
std::string checkArguments(CLI::App& app, int argc, const char* const* argv);

}  // namespace pelmora::cli
