// Where the sources and the build of these tests lie.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::test {

// Paths without a slash at the end. Functions instead of macros: what a test compiles to does not
// depend on the folder that it is compiled in, so that a compiler cache serves every clone.
const std::string& sourceFolder();
const std::string& buildFolder();

}  // namespace pelmora::test
