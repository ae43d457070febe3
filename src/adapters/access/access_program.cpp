// SPDX-License-Identifier: MIT
#include "adapters/access/access_program.h"

#include "adapters/os/helper_program.h"
#include "base/run_time_error.h"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace pelmora::access {
namespace {

constexpr const char* programName = "pelmora-access";

Error cannotRead(const std::string& path, const std::string& why) {
  return {static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
          "The Access file '" + path + "' cannot be read: " + why + "."};
}

Error noProgram(const std::string& path, const std::string& why) {
  return {static_cast<std::int32_t>(RunTimeError::noObject), "Pelmora",
          "The Access file '" + path + "' cannot be read: " + why +
              ". Install pelmora with its program " + programName + "."};
}

std::string programOf(const std::string& path, const ProgramSettings& settings) {
  if (!settings.program.empty()) return settings.program;
  std::string found = os::helperProgram(programName);
  if (found.empty()) throw noProgram(path, "the program that reads such files is not installed");
  return found;
}

os::ChildProgram started(const std::string& path, const ProgramSettings& settings) {
  try {
    return os::ChildProgram(programOf(path, settings),
                            {std::to_string(settings.memoryMegabytes),
                             std::to_string(settings.processorSeconds), path});
  } catch (const std::system_error& error) {
    throw noProgram(path, std::string("its reader does not start: ") + error.what());
  }
}

}  // namespace

AccessProgram::AccessProgram(std::string path, ProgramSettings settings)
    : path_(std::move(path)), settings_(std::move(settings)), child_(started(path_, settings_)) {}

std::optional<Message> AccessProgram::next() {
  if (isDone_) return std::nullopt;
  try {
    for (;;) {
      std::string_view left = std::string_view(received_).substr(taken_);
      if (auto message = takeMessage(left)) {
        taken_ = received_.size() - left.size();
        if (const auto* failure = std::get_if<FileFailure>(&*message))
          throw cannotRead(path_, failure->reason);
        isDone_ = std::holds_alternative<AllRead>(*message);
        return message;
      }
      receive();
    }
  } catch (const InvalidMessage& invalid) {
    throw cannotRead(path_, std::string("its reader sent an invalid message: ") + invalid.what());
  } catch (const std::system_error& error) {
    throw cannotRead(path_, std::string("the connection to its reader failed: ") + error.what());
  }
}

void AccessProgram::receive() {
  received_.erase(0, taken_);
  taken_ = 0;
  if (!child_.waitFor(POLLIN, os::ChildProgram::Clock::now() + settings_.silence)) {
    throw cannotRead(
        path_, "its reader sent nothing for " + std::to_string(settings_.silence.count()) + " s");
  }
  std::array<char, 64 * 1024> buffer;
  const ssize_t size = recv(child_.socket(), buffer.data(), buffer.size(), MSG_DONTWAIT);
  if (size > 0) {
    received_.append(buffer.data(), static_cast<std::size_t>(size));
  } else if (size == 0 || errno == ECONNRESET) {
    failBecauseItEnded();
  } else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) {
    throw std::system_error(errno, std::generic_category());
  }
}

void AccessProgram::failBecauseItEnded() {
  const int ending = child_.endingSignal();
  if (ending == SIGXCPU) {
    throw cannotRead(path_, "it takes more than " + std::to_string(settings_.processorSeconds) +
                                " s of processor time; it is damaged or too large");
  }
  throw cannotRead(path_, "its reader ended unexpectedly" +
                              (ending == 0 ? "" : " (signal " + std::to_string(ending) + ")") +
                              "; the file is damaged or too large");
}

}  // namespace pelmora::access
