// pelmora-dialog: draws one message and reports the operator's answer.
//
// Not for use by hand: reads a request from standard input and answers on standard output, as
// window_request.h says. Ends when standard input ends, so that no window outlives its host.
// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper/message_window.h"
#include "adapters/dialog/window_request.h"

#include <FL/Fl.H>
#include <FL/x.H>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace {

using pelmora::dialog::MessageWindow;
using pelmora::dialog::WindowRequest;

// Longest stay in opening a display, if nobody is left to end this program earlier.
constexpr unsigned displaySeconds = 30;
constexpr double aliveSeconds = 1.0;

// _exit throughout: the display may be gone or stuck, and there is nothing to tidy up.
[[noreturn]] void end(int status) { _exit(status); }

void say(const std::string& line) {
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = write(STDOUT_FILENO, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) end(EXIT_FAILURE);
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string readBytes(std::size_t size) {
  std::string bytes(size, '\0');
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t got = read(STDIN_FILENO, bytes.data() + filled, size - filled);
    if (got == 0 || (got < 0 && errno != EINTR)) end(EXIT_FAILURE);
    if (got > 0) filled += static_cast<std::size_t>(got);
  }
  return bytes;
}

WindowRequest readRequest() {
  const auto size = pelmora::dialog::bodySizeFromWire(readBytes(pelmora::dialog::wireHeaderSize));
  if (!size) end(EXIT_FAILURE);
  auto request = pelmora::dialog::bodyFromWire(readBytes(*size));
  if (!request) end(EXIT_FAILURE);
  return *std::move(request);
}

void answer(std::optional<int> code) {
  say(code ? "answer " + std::to_string(*code) + "\n" : "closed\n");
  end(EXIT_SUCCESS);
}

void endWithHost(int, void*) {
  std::array<char, 64> ignored{};
  if (read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0) end(EXIT_FAILURE);
}

void reportAlive(void*) {
  XSync(fl_display, False);  // waits for the display, and dies with it
  say("alive\n");
  Fl::repeat_timeout(aliveSeconds, reportAlive);
}

}  // namespace

int main() {
  std::setlocale(LC_CTYPE, "");  // keyboard input of the operator's language
  const WindowRequest request = readRequest();
  alarm(displaySeconds);
  Fl::scheme("gtk+");
  // All three together, so that the text stays readable whatever the desktop's theme.
  Fl::background(240, 240, 240);
  Fl::background2(255, 255, 255);
  Fl::foreground(0, 0, 0);
  fl_open_display();
  MessageWindow window(request, answer);
  window.show();
  window.wait_for_expose();
  XSync(fl_display, False);
  alarm(0);
  say("ready\n");
  Fl::add_fd(STDIN_FILENO, FL_READ, endWithHost);
  Fl::add_timeout(aliveSeconds, reportAlive);
  Fl::run();
  end(EXIT_FAILURE);
}
