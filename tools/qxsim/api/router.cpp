#include "qxsim/api/router.h"

#include <algorithm>
#include <charconv>

namespace qxsim {
namespace {

bool Matches(const std::vector<std::string>& pattern, const std::vector<std::string>& path) {
  return std::equal(
      pattern.begin(), pattern.end(), path.begin(), path.end(),
      [](const std::string& wanted, const std::string& given) { return wanted.front() == '{' || wanted == given; });
}

Response Answer(const Router::Handler& handler, const Request& request) {
  try {
    return handler(request);
  } catch (const ApiError& error) {
    return ErrorResponse(error.status(), error.what());
  } catch (const std::exception& error) {
    return ErrorResponse(kServerError, error.what());
  }
}

}  // namespace

void Router::Add(std::string method, const std::string& path, Handler handler) {
  routes_.push_back({std::move(method), MakeRequest({}, path, {}).path, std::move(handler)});
}

Response Router::Handle(const Request& request) const {
  bool known = false;
  for (const Route& route : routes_) {
    if (!Matches(route.path, request.path)) continue;
    if (route.method == request.method) return Answer(route.handler, request);
    known = true;
  }
  return known ? ErrorResponse(kMethodNotAllowed, "not with " + request.method)
               : ErrorResponse(kNotFound, "no such resource");
}

std::uint64_t NumberFrom(const std::string& text, const char* what) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) {
    throw ApiError(kBadRequest, std::string(what) + ": a number is expected");
  }
  return number;
}

}  // namespace qxsim
