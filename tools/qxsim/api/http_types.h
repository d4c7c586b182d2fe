// A request to the API and its answer, without anything of HTTP's transport.
#ifndef QXSIM_API_HTTP_TYPES_H
#define QXSIM_API_HTTP_TYPES_H

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace qxsim {

/// Members keep the order they are given in.
using Json = nlohmann::ordered_json;

constexpr int kOk = 200;
constexpr int kBadRequest = 400;
constexpr int kForbidden = 403;
constexpr int kNotFound = 404;
constexpr int kMethodNotAllowed = 405;
constexpr int kConflict = 409;
constexpr int kPayloadTooLarge = 413;
constexpr int kHeaderTooLarge = 431;
constexpr int kServerError = 500;
constexpr int kUnavailable = 503;

struct Request {
  std::string method;
  std::vector<std::string> path;             ///< the segments, percent-decoded
  std::map<std::string, std::string> query;  ///< percent-decoded; the last of several equal names counts
  std::string body;
};

/// Splits "/api/v1/shared?name=N". Throws ApiError(400) for a malformed escape.
Request MakeRequest(std::string method, const std::string& target, std::string body);

struct Response {
  int status = kOk;
  std::string type = "application/json";
  std::string body;
};

/// Why a request is refused; becomes {"error": what()}.
class ApiError : public std::runtime_error {
 public:
  ApiError(int status, const std::string& message) : std::runtime_error(message), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

Response JsonResponse(const Json& json);
Response ErrorResponse(int status, const std::string& message);

/// The body as JSON; an empty body is an empty object. Throws ApiError(400), also for anything but an object.
Json ParseObject(const std::string& body);

}  // namespace qxsim

#endif
