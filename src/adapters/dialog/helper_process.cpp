// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper_process.h"

#include "base/run_time_error.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace pelmora::dialog {

Error windowFailure(const std::string& what) { return {genericFailure, "Pelmora:dialog", what}; }

namespace {

constexpr std::size_t longestLine = 256;

Error socketFailure() {
  const bool isLost = errno == EPIPE || errno == ECONNRESET;
  return windowFailure(isLost ? "The window was lost" : std::strerror(errno));
}

os::ChildProgram started(const std::string& program) {
  try {
    return os::ChildProgram(program);
  } catch (const std::system_error& error) {
    throw windowFailure(error.what());
  }
}

}  // namespace

HelperProcess::HelperProcess(const std::string& program) : program_(started(program)) {}

bool HelperProcess::waitFor(short events, Clock::time_point deadline) const {
  try {
    return program_.waitFor(events, deadline);
  } catch (const std::system_error& error) {
    throw windowFailure(error.what());
  }
}

void HelperProcess::send(std::string_view bytes, Clock::time_point deadline) {
  while (!bytes.empty()) {
    // MSG_NOSIGNAL: a helper that is gone must be an error here, not a SIGPIPE that ends the host.
    const ssize_t sent =
        ::send(program_.socket(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (!waitFor(POLLOUT, deadline)) throw windowFailure("The window does not read its message");
    } else if (errno != EINTR) {
      throw socketFailure();
    }
  }
}

std::optional<std::string> HelperProcess::receiveLine(Clock::time_point deadline) {
  for (;;) {
    const std::size_t end = received_.find('\n');
    if (end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      return line;
    }
    if (received_.size() > longestLine) throw windowFailure("The window answers nonsense");
    if (!waitFor(POLLIN, deadline)) return std::nullopt;
    std::array<char, longestLine> buffer{};
    const ssize_t size = recv(program_.socket(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size > 0) {
      received_.append(buffer.data(), static_cast<std::size_t>(size));
    } else if (size == 0) {
      throw windowFailure("The window was lost");
    } else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) {
      throw socketFailure();
    }
  }
}

}  // namespace pelmora::dialog
