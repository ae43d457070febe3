// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/standard_output.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/trouble.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace pelmora::cli {
namespace {

// The null device, opened the wrong way round: the stream's number is taken, and using it fails.
void occupyIfClosed(int stream) {
  if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) return;
  const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  if (opened >= 0 && opened != stream) {
    dup2(opened, stream);
    close(opened);
  }
}

Trouble cannotWrite(int reason) {
  const bool isClosed = reason == EBADF || reason == EPIPE;
  return {ExitCode::unexpected,
          "standard output cannot be written: " +
              (isClosed ? "it is closed" : std::generic_category().message(reason)) + "; " +
              storedWords().data(),
          ""};
}

}  // namespace

void prepareStandardStreams() noexcept {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) occupyIfClosed(stream);
  signal(SIGPIPE, SIG_IGN);
}

void printData(const std::string& text) {
  for (std::string_view rest = text; !rest.empty();) {
    const ssize_t count = write(STDOUT_FILENO, rest.data(), rest.size());
    if (count < 0 && errno != EINTR) throw cannotWrite(errno);
    if (count < 0) requireNotInterrupted();
    if (count > 0) rest.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace pelmora::cli
