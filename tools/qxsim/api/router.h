// Which handler answers which request.
#ifndef QXSIM_API_ROUTER_H
#define QXSIM_API_ROUTER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "qxsim/api/http_types.h"

namespace qxsim {

/// Filled while the simulator starts, then only read: any thread.
class Router {
 public:
  using Handler = std::function<Response(const Request&)>;

  /// \param path  "/api/v1/windows/{n}"; a segment in braces stands for any text
  void Add(std::string method, const std::string& path, Handler handler);

  /// Answers every request: 404 for an unknown path, 405 for a known path with another method, what the handler's
  /// ApiError says, 500 when it fails otherwise.
  Response Handle(const Request& request) const;

 private:
  struct Route {
    std::string method;
    std::vector<std::string> path;
    Handler handler;
  };
  std::vector<Route> routes_;
};

/// A decimal number from the address, for example a segment or "since". Throws ApiError(400).
std::uint64_t NumberFrom(const std::string& text, const char* what);

}  // namespace qxsim

#endif
