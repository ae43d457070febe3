// A terminal without a screen: what is typed waits for a reader, what is written can be read back.
// Programs that are started meanwhile see a terminal that can rewrite lines, also where the tests
// themselves run without one.
// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

namespace pelmora::test {

class PseudoTerminal {
 public:
  PseudoTerminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      throw std::runtime_error("no pseudo terminal");
    }
    path_ = ptsname(screen_);
    line_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    tcgetattr(line_, &settings);
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(line_, TCSANOW, &settings);
    if (const char* kind = std::getenv("TERM")) kind_ = kind;
    setenv("TERM", "xterm", 1);
  }
  ~PseudoTerminal() {
    if (kind_) {
      setenv("TERM", kind_->c_str(), 1);
    } else {
      unsetenv("TERM");
    }
    ::close(line_);
    ::close(screen_);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // The device that a program opens as its terminal.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] int device() const { return line_; }
  // What an operator types; it waits until somebody reads. The end-of-input key is "\x04".
  void type(const std::string& text) const {
    if (::write(screen_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      throw std::runtime_error("the terminal takes no input");
    }
  }
  // What was written to the terminal since the last call.
  [[nodiscard]] std::string shown() const {
    std::string text;
    std::array<char, 1024> buffer{};
    for (ssize_t n = 0; (n = ::read(screen_, buffer.data(), buffer.size())) > 0;) {
      text.append(buffer.data(), static_cast<std::size_t>(n));
    }
    return text;
  }

 private:
  int screen_ = -1, line_ = -1;
  std::string path_;
  std::optional<std::string> kind_;  // of the terminal that the tests run in
};

}  // namespace pelmora::test
