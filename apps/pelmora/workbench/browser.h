// Opening the page in the user's browser.
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace pelmora::cli::workbench {

// Hands the browser a file that leads to the address: everybody on the machine can read the
// arguments of a program, and the address has a token in it. The file, which this user alone can
// read, lives as long as the object. It is not an error if the machine has no browser.
class BrowserFile {
 public:
  explicit BrowserFile(const std::string& address);
  ~BrowserFile();
  BrowserFile(const BrowserFile&) = delete;
  BrowserFile& operator=(const BrowserFile&) = delete;

 private:
  std::filesystem::path folder_;
};

}  // namespace pelmora::cli::workbench
