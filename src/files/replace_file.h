// A new file in the place of an old one, as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pelmora {

// what() is the reason alone, in the language of the system or as "it is a folder".
struct CannotReplaceFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Writes the content to a file of its own beside `path`, stores it on the disk and gives it the
// name `path`, so that others find the old file or the new one, also after a power loss. Calls that
// write the same file at once do not mix.
//
// The new file has the rights of the old one and, where the process may set them, its owner and
// group; where there was none, the rights of any new file. A symbolic link stays one, and the file
// that it names is written, even if it does not exist yet.
//
// goOn: called between portions and before the file gets its name; ends the call by throwing.
// Errors: CannotReplaceFile; what goOn throws. What was there is unchanged then, and the unfinished
//         file is removed.
void replaceFile(const std::string& path, std::string_view content,
                 const std::function<void()>& goOn);

}  // namespace pelmora
