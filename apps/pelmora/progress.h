// One line of progress on standard error, only where that is a terminal.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Replaces the line; it is cut to the terminal's width.
  void show(const std::string& text);
  void clear();

 private:
  bool isTerminal_;
  bool isShown_ = false;
};

}  // namespace pelmora::cli
