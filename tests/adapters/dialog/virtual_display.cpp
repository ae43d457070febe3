// SPDX-License-Identifier: MIT
#include "tests/adapters/dialog/virtual_display.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xlib.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace pelmora::test {

namespace {

void pause(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

bool isInstalled(const std::string& program) { return !outputOf("command -v " + program).empty(); }

}  // namespace

std::string outputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return {};
  std::array<char, 256> part{};
  while (fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) output += part.data();
  pclose(pipe);
  return output;
}

VirtualDisplay::VirtualDisplay() {
  if (!isInstalled("Xvfb") || !isInstalled("xdotool")) return;
  std::array<int, 2> number{};
  if (pipe2(number.data(), O_CLOEXEC) != 0) return;
  // The server writes the number that it found free.
  const std::string answer = std::to_string(number[1]);
  server_ = fork();
  if (server_ == 0) {
    fcntl(number[1], F_SETFD, 0);
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    execlp("Xvfb", "Xvfb", "-displayfd", answer.c_str(), "-screen", "0", "800x600x24", "-nolisten",
           "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(number[1]);
  // It writes digits and line end in two goes.
  std::string line;
  char next = 0;
  while (read(number[0], &next, 1) == 1 && next != '\n') line += next;
  close(number[0]);
  if (line.empty()) throw std::runtime_error("Xvfb does not start");
  setenv("DISPLAY", (":" + line).c_str(), 1);
}

VirtualDisplay::~VirtualDisplay() {
  if (server_ <= 0) return;
  ::kill(server_, SIGTERM);  // lets it remove its lock and socket
  waitpid(server_, nullptr, 0);
}

void VirtualDisplay::kill() {
  ::kill(server_, SIGKILL);
  waitpid(server_, nullptr, 0);
  server_ = -1;
  // What the server had no time to remove.
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display != ':') return;
  const std::string number = display + 1;
  unlink(("/tmp/.X" + number + "-lock").c_str());
  unlink(("/tmp/.X11-unix/X" + number).c_str());
}

unsigned long VirtualDisplay::window(const std::string& title) const {
  for (int tries = 0; tries < 1200; ++tries) {
    const std::string found = outputOf("xdotool search --onlyvisible --name '^" + title + "$'");
    if (!found.empty()) return std::stoul(found);
    pause(100);
  }
  return 0;
}

bool VirtualDisplay::hasWindow(const std::string& title) const {
  return !outputOf("xdotool search --onlyvisible --name '^" + title + "$'").empty();
}

void VirtualDisplay::type(unsigned long window, const std::string& keys) const {
  const std::string id = std::to_string(window);
  static_cast<void>(outputOf("xdotool mousemove --window " + id + " 4 4"));
  pause(200);  // the pointer's arrival gives the window the keyboard
  static_cast<void>(outputOf("xdotool key --delay 50 " + keys));
}

void VirtualDisplay::click(unsigned long window, int x, int y) const {
  static_cast<void>(outputOf("xdotool mousemove --window " + std::to_string(window) + " " +
                             std::to_string(x) + " " + std::to_string(y) + " click 1"));
}

void VirtualDisplay::pressCloseBox(unsigned long window) const {
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) return;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, window, False, NoEventMask, &event);
  XCloseDisplay(display);
}

void VirtualDisplay::screenshot(unsigned long window, const std::string& pngFile) const {
  pause(200);
  static_cast<void>(outputOf("import -window " + std::to_string(window) + " '" + pngFile + "'"));
}

std::string VirtualDisplay::sizeOf(unsigned long window) const {
  std::string size = outputOf("xdotool getwindowgeometry " + std::to_string(window) +
                              " | sed -n 's/.*Geometry: //p'");
  if (!size.empty()) size.pop_back();
  return size;
}

}  // namespace pelmora::test
