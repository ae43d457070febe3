// Replaces files as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pelmora {

// what() is only the reason, in the system's words or, for example, "it is a folder".
struct CannotReplaceFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Writes the content to a temporary file beside `path`, syncs it to the disk and renames it to
// `path`. Other programs find either the old file or the new one, even after a power loss, and
// concurrent calls for the same file do not interfere.
//
// The new file keeps the old one's permissions and, if the process may set them, its owner and
// group; without an old file, it gets the default permissions. A symbolic link stays a link, and
// the file that it points to is written, even if that does not exist yet.
//
// goOn: called between portions and before the file is renamed; throws to cancel.
// Errors: CannotReplaceFile, and whatever goOn throws. The old file is then unchanged, and the
//         temporary file is removed.
void replaceFile(const std::string& path, std::string_view content,
                 const std::function<void()>& goOn);

}  // namespace pelmora
