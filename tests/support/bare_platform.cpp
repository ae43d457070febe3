// A platform with nothing in it, for tests of the inside: each puts in what it needs.
// SPDX-License-Identifier: MIT
#include <pelmora/platform.h>

namespace pelmora {

Platform& platform() {
  thread_local Platform own;
  return own;
}

}  // namespace pelmora
