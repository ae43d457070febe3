// A host as others write it: the public headers, the shared library, no path to the helper program.
// SPDX-License-Identifier: MIT
#include <pelmora/dialog.h>

int main() {
  pelmora::Platform& platform = pelmora::platform();
  pelmora::useDialogs(platform, {.helperProgram = {}, .readyWithin = std::chrono::seconds(30)});
  return platform.messageBox("Go on?", 2, "Question");
}
