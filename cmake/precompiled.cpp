// What most sources include is compiled with this file; see PelmoraLayer.cmake and tests/CMakeLists.txt.
// SPDX-License-Identifier: MIT
