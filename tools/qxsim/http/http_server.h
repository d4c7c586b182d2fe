// The HTTP server of panel and API: HTTP/1.1 with keep-alive, and one path that streams the traffic.
//
// One thread moves all bytes; requests run on a bounded pool, so one that waits holds up no other. Limits: connections,
// header and body sizes, the time a peer may take, and what is queued for a listener that does not read.
#ifndef QXSIM_HTTP_HTTP_SERVER_H
#define QXSIM_HTTP_HTTP_SERVER_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "qxsim/api/http_types.h"
#include "qxsim/options.h"
#include "qxsim/traffic.h"

namespace qxsim {

constexpr std::size_t kMostConnections = 64;
constexpr std::size_t kLargestHeader = 16 * 1024;
constexpr std::size_t kLargestBody = 1024 * 1024;
constexpr std::size_t kMostQueuedTraffic = 256 * 1024;  ///< bytes waiting for one listener before it is dropped
constexpr const char* kTrafficPath = "/api/v1/traffic";

class HttpServer {
 public:
  using Handler = std::function<Response(const Request&)>;

  /// Listens and starts. Throws std::system_error when the address cannot be had.
  ///
  /// \param anyone   requests under any host name are answered; otherwise only under an address or "localhost", so that
  ///                 no page of a foreign site reaches the instrument through the user's browser
  /// \param handler  answers a request; called on several threads at once
  /// \param traffic  what kTrafficPath streams; must outlive the server
  HttpServer(const HttpAddress& address, bool anyone, Handler handler, TrafficLog& traffic);
  /// Stops; waits for requests under way.
  ~HttpServer();

  /// No more requests are taken and no more answers sent; requests under way go on. Returns at once.
  void Stop();

  /// "http://127.0.0.1:8580", with the port that was picked.
  std::string Url() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace qxsim

#endif
