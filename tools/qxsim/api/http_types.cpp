#include "qxsim/api/http_types.h"

#include <nlohmann/json.hpp>
#include <string_view>

namespace qxsim {
namespace {

constexpr int kDeepest = 32;

int HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string PercentDecoded(std::string_view text, bool plus_is_space) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += plus_is_space && text[i] == '+' ? ' ' : text[i];
      continue;
    }
    const int high = i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? HexDigit(text[i + 2]) : -1;
    if (high < 0 || low < 0) throw ApiError(kBadRequest, "malformed escape in the address");
    decoded += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return decoded;
}

/// Cuts the first piece off `rest`, up to the separator or the end.
std::string_view NextPiece(std::string_view* rest, char separator) {
  const std::size_t end = rest->find(separator);
  const std::string_view piece = rest->substr(0, end);
  *rest = end == std::string_view::npos ? std::string_view() : rest->substr(end + 1);
  return piece;
}

}  // namespace

Request MakeRequest(std::string method, const std::string& target, std::string body) {
  Request request{std::move(method), {}, {}, std::move(body)};
  std::string_view query = target;
  std::string_view path = NextPiece(&query, '?');
  while (!path.empty()) {
    const std::string_view segment = NextPiece(&path, '/');
    if (!segment.empty()) request.path.push_back(PercentDecoded(segment, false));
  }
  while (!query.empty()) {
    std::string_view value = NextPiece(&query, '&');
    const std::string_view name = NextPiece(&value, '=');
    if (!name.empty()) request.query[PercentDecoded(name, true)] = PercentDecoded(value, true);
  }
  return request;
}

// Texts come from anywhere (paths of files, for example): what is not UTF-8 is replaced, never an exception.
Response JsonResponse(const Json& json) {
  return {kOk, "application/json", json.dump(-1, ' ', false, Json::error_handler_t::replace)};
}

Response ErrorResponse(int status, const std::string& message) {
  const Json json = {{"error", message}};
  return {status, "application/json", json.dump(-1, ' ', false, Json::error_handler_t::replace)};
}

Json ParseObject(const std::string& body) {
  if (body.find_first_not_of(" \t\r\n") == std::string::npos) return Json::object();
  Json json;
  try {
    json = Json::parse(body, [](int depth, Json::parse_event_t, const Json&) {
      // Whatever works its way through the levels one by one must not run out of stack.
      if (depth > kDeepest) throw ApiError(kBadRequest, "nested too deeply");
      return true;
    });
  } catch (const Json::exception& error) {
    throw ApiError(kBadRequest, std::string("not JSON: ") + error.what());
  }
  if (!json.is_object()) throw ApiError(kBadRequest, "a JSON object is expected");
  return json;
}

}  // namespace qxsim
