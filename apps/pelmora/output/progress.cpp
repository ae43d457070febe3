// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/progress.h"

#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace pelmora::cli {
namespace {

bool canRewriteLines() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::size_t terminalWidth() {
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return isKnown ? size.ws_col : terminalColumns;
}

}  // namespace

Progress::Progress() : isTerminal_(canRewriteLines()) {}

Progress::~Progress() { clear(); }

void Progress::show(const std::string& text) {
  const std::lock_guard alone(mutex_);
  draw(text);
}

void Progress::draw(const std::string& text) {
  if (!isTerminal_) return;
  std::string line = oneLine(text);
  // One column stays free, so that the terminal does not wrap.
  while (displayWidth(line) >= terminalWidth()) line.pop_back();
  std::fprintf(stderr, "\r\033[K%s", line.c_str());
  std::fflush(stderr);
  isShown_ = true;
  isWait_ = false;
}

void Progress::count(const std::string& doing, std::size_t done, std::size_t total) {
  const std::lock_guard alone(mutex_);
  using namespace std::chrono_literals;
  const auto now = std::chrono::steady_clock::now();
  if (!begin_) begin_ = now;
  if (drawn_ && now - *drawn_ < 100ms && done < total) return;
  drawn_ = now;
  draw(progressBar(doing, done, total, std::chrono::duration<double>(now - *begin_).count()));
}

std::string progressBar(const std::string& doing, std::size_t done, std::size_t total,
                        double seconds) {
  constexpr std::size_t width = 20;
  const std::size_t filled = total == 0 ? width : width * done / total;
  std::string text = doing + " [" + std::string(filled, '#') + std::string(width - filled, '-') +
                     "] " + std::to_string(done) + "/" + std::to_string(total);
  // The first moments tell no rate.
  if (seconds < 0.5 || done == 0) return text;
  const double rate = static_cast<double>(done) / seconds;
  const auto left = static_cast<long long>(std::ceil(static_cast<double>(total - done) / rate));
  const std::string leftSeconds = std::to_string(left % 60);
  return text + "  " + significantText(rate, 3) + "/s  " + std::to_string(left / 60) + ":" +
         (leftSeconds.size() < 2 ? "0" : "") + leftSeconds + " left";
}

void Progress::showWait(const std::string& text) {
  const std::lock_guard alone(mutex_);
  draw(text);
  isWait_ = isShown_;
}

void Progress::endWait() {
  const std::lock_guard alone(mutex_);
  if (isWait_) erase();
}

void Progress::clear() {
  const std::lock_guard alone(mutex_);
  erase();
}

void Progress::erase() {
  if (!isShown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  isShown_ = isWait_ = false;
}

}  // namespace pelmora::cli
