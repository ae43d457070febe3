// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/server.h"

#include "apps/pelmora/workbench/http/microhttpd_library.h"
#include "apps/pelmora/workbench/http/policy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace pelmora::cli::http {
namespace {

using Clock = std::chrono::steady_clock;

const MicrohttpdLibrary& library() { return microhttpdLibrary(); }

// A request on its way in.
struct Incoming {
  Request request;
  std::optional<Response> refused;  // the body is thrown away
  std::size_t bodyLimit = 0, read = 0;
  bool isAnswered = false;
};

MHD_Result addField(void* list, MHD_ValueKind /*kind*/, const char* name, std::size_t nameSize,
                    const char* value, std::size_t valueSize) {
  // No exception may cross the C library; a request that takes too much memory ends.
  try {
    static_cast<Fields*>(list)->emplace_back(
        std::string(name, nameSize),
        value == nullptr ? std::string() : std::string(value, valueSize));
    return MHD_YES;
  } catch (...) {
    return MHD_NO;
  }
}

void makeSmall(std::string& text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

Request headOf(MHD_Connection* connection, const char* url, const char* method) {
  Request request{.method = method, .path = url, .query = {}, .headers = {}, .body = {}};
  library().MHD_get_connection_values_n(connection, MHD_HEADER_KIND, &addField, &request.headers);
  library().MHD_get_connection_values_n(connection, MHD_GET_ARGUMENT_KIND, &addField,
                                        &request.query);
  for (auto& [name, value] : request.headers) makeSmall(name);
  return request;
}

MHD_Result queue(MHD_Connection* connection, const Response& plain) {
  const Response answer = secured(plain);
  MHD_Response* response = library().MHD_create_response_from_buffer(
      answer.body.size(), const_cast<char*>(answer.body.data()), MHD_RESPMEM_MUST_COPY);
  if (response == nullptr) return MHD_NO;
  if (!answer.type.empty())
    library().MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.type.c_str());
  for (const auto& [name, value] : answer.headers)
    library().MHD_add_response_header(response, name.c_str(), value.c_str());
  const MHD_Result done =
      library().MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
  library().MHD_destroy_response(response);
  return done;
}

// Whoever sends more than any request may have loses the connection.
constexpr std::size_t mostThrownAway = std::size_t{1} << 27U;

Response tooLarge(std::size_t limit) {
  return refusal(413, "The body is larger than " + std::to_string(limit) + " bytes.");
}

}  // namespace

class Server::Daemon {
 public:
  Daemon(std::uint16_t port, const Limits& limits) : limits_(limits) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    errno = 0;
    daemon_ = library().MHD_start_daemon(
        MHD_NO_FLAG, port, nullptr, nullptr, &Daemon::handle, this, MHD_OPTION_SOCK_ADDR,
        reinterpret_cast<sockaddr*>(&address), MHD_OPTION_CONNECTION_LIMIT, limits.connections,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, limits.headerBytes, MHD_OPTION_CONNECTION_TIMEOUT,
        static_cast<unsigned>(limits.silence.count()), MHD_OPTION_STRICT_FOR_CLIENT, 1,
        MHD_OPTION_NOTIFY_COMPLETED, &Daemon::completed, this, MHD_OPTION_NOTIFY_CONNECTION,
        &Daemon::connected, this, MHD_OPTION_END);
    if (daemon_ == nullptr) {
      const int error = errno == 0 ? EADDRINUSE : errno;
      throw std::system_error(error, std::generic_category());
    }
  }
  ~Daemon() { library().MHD_stop_daemon(daemon_); }
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;

  [[nodiscard]] std::uint16_t port() const {
    const MHD_DaemonInfo* info = library().MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_BIND_PORT);
    return info == nullptr ? std::uint16_t{0} : info->port;
  }

  void run(Visitor& visitor, const std::function<bool()>& goesOn) {
    constexpr std::int32_t waitMs = 200;
    visitor_ = &visitor;
    while (goesOn()) {
      if (library().MHD_run_wait(daemon_, waitMs) == MHD_NO)
        std::this_thread::sleep_for(std::chrono::milliseconds(waitMs));
      endSlowOnes();
    }
    visitor_ = nullptr;
    sendWhatIsReady();
  }

 private:
  // An answer may wait for its turn: whoever asked for a change learns what became of it.
  void sendWhatIsReady() {
    constexpr std::int32_t waitMs = 20;
    const auto end = Clock::now() + limits_.farewell;
    while (unsent_ > 0 && Clock::now() < end) {
      if (library().MHD_run_wait(daemon_, waitMs) == MHD_NO) return;
    }
  }

  static MHD_Result handle(void* self, MHD_Connection* connection, const char* url,
                           const char* method, const char* /*version*/, const char* data,
                           std::size_t* size, void** context) {
    try {
      return static_cast<Daemon*>(self)->take(connection, url, method, {data, data ? *size : 0},
                                              size, context);
    } catch (...) {
      return MHD_NO;
    }
  }

  MHD_Result take(MHD_Connection* connection, const char* url, const char* method,
                  std::string_view data, std::size_t* size, void** context) {
    if (visitor_ == nullptr) return MHD_NO;
    if (*context == nullptr) {
      auto incoming = std::make_unique<Incoming>();
      incoming->request = headOf(connection, url, method);
      incoming->refused = visitor_->refuse(incoming->request);
      incoming->bodyLimit = incoming->refused ? 0 : visitor_->bodyLimit(incoming->request);
      *context = incoming.release();
      return MHD_YES;
    }
    Incoming& incoming = *static_cast<Incoming*>(*context);
    if (!data.empty()) {
      *size = 0;
      incoming.read += data.size();
      if (incoming.read > mostThrownAway) return MHD_NO;
      if (!incoming.refused && incoming.read > incoming.bodyLimit) {
        incoming.refused = tooLarge(incoming.bodyLimit);
        incoming.request.body = {};
      }
      if (!incoming.refused) incoming.request.body.append(data);
      return MHD_YES;
    }
    if (incoming.refused) return send(connection, incoming, *incoming.refused);
    const Response answer = answerOf(incoming.request);
    // The time of a connection is that of its peer, not that of our work.
    if (const auto found = since_.find(connection); found != since_.end())
      found->second = Clock::now();
    return send(connection, incoming, answer);
  }

  MHD_Result send(MHD_Connection* connection, Incoming& incoming, const Response& answer) {
    const MHD_Result done = queue(connection, answer);
    if (done == MHD_YES) {
      incoming.isAnswered = true;
      ++unsent_;
    }
    return done;
  }

  Response answerOf(const Request& request) {
    try {
      return visitor_->answer(request);
    } catch (...) {
      return refusal(500, "The workbench has no memory left for this.");
    }
  }

  static void completed(void* self, MHD_Connection* connection, void** context,
                        MHD_RequestTerminationCode /*code*/) {
    auto& daemon = *static_cast<Daemon*>(self);
    const std::unique_ptr<Incoming> incoming(static_cast<Incoming*>(*context));
    *context = nullptr;
    if (incoming && incoming->isAnswered) --daemon.unsent_;
    auto& since = daemon.since_;
    if (const auto found = since.find(connection); found != since.end())
      found->second = Clock::now();
  }

  static void connected(void* self, MHD_Connection* connection, void** /*context*/,
                        MHD_ConnectionNotificationCode code) {
    auto& since = static_cast<Daemon*>(self)->since_;
    try {
      if (code == MHD_CONNECTION_NOTIFY_STARTED)
        since.emplace(connection, Clock::now());
      else
        since.erase(connection);
    } catch (...) {
      // Without an entry, the limit for silence alone holds.
    }
  }

  // Whoever sends a byte now and then is never silent, and keeps a place from others.
  void endSlowOnes() {
    const auto now = Clock::now();
    for (const auto& [connection, since] : since_) {
      if (now - since < limits_.request) continue;
      const MHD_ConnectionInfo* info =
          library().MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
      if (info != nullptr) ::shutdown(info->connect_fd, SHUT_RDWR);
    }
  }

  Limits limits_;
  Visitor* visitor_ = nullptr;
  std::size_t unsent_ = 0;  // answers
  std::map<MHD_Connection*, Clock::time_point> since_;
  MHD_Daemon* daemon_ = nullptr;
};

Server::Server(std::uint16_t port, const Limits& limits)
    : daemon_(std::make_unique<Daemon>(port, limits)) {}
Server::~Server() = default;
std::uint16_t Server::port() const { return daemon_->port(); }
void Server::run(Visitor& visitor, const std::function<bool()>& goesOn) {
  daemon_->run(visitor, goesOn);
}

}  // namespace pelmora::cli::http
