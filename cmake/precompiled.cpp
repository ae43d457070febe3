// The headers that most sources, or most tests, include are compiled with this file.
// SPDX-License-Identifier: MIT
