// The headers of most tests are compiled with this file; see tests/CMakeLists.txt.
// SPDX-License-Identifier: MIT
