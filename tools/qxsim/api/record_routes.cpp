// What was called and told, numbered in one count, and faults that make calls fail.
//   GET /calls?since=N  ->  {"next": M, "calls": [...]}       GET /notifications?since=N likewise
#include <nlohmann/json.hpp>

#include "common/calls/calls.h"
#include "qxsim/api/members.h"
#include "qxsim/api/routes.h"
#include "qxsim/line_text.h"
#include "qxsim/simulator.h"

namespace qxsim {
namespace {

constexpr std::uint32_t kGeneralFailure = 31;
constexpr std::int64_t kLongestDelay = 600000;

std::uint64_t Since(const Request& request) {
  const auto since = request.query.find("since");
  return since == request.query.end() ? 0 : NumberFrom(since->second, "since");
}

Json ToJson(const host::CallValue& value) {
  return std::visit([](const auto& held) { return Json(held); }, value);
}

Json ToJson(const host::CallRecord& call) {
  Json args = Json::array();
  for (const host::CallValue& arg : call.args) args.push_back(ToJson(arg));
  return {{"n", call.n},  {"at", ShownTime(call.at)},     {"library", call.library}, {"call", ToJson(call.call)},
          {"args", args}, {"result", ToJson(call.result)}};
}

Json ToJson(const Notification& notification) {
  Json json = {{"n", notification.n},
               {"window", notification.window},
               {"message", notification.message},
               {"how", notification.sent ? "sent" : "posted"},
               {"wparam", notification.wparam},
               {"lparam", notification.lparam}};
  if (!notification.record.empty()) json["record"] = notification.record;
  return json;
}

template <class Records>
Response ListResponse(std::uint64_t next, const char* name, const Records& records) {
  Json list = Json::array();
  for (const auto& record : records) list.push_back(ToJson(record));
  return JsonResponse({{"next", next}, {name, list}});
}

Response ListCalls(const Request& request) {
  std::uint64_t next = 0;
  const auto calls = host::CallsSince(Since(request), &next);
  return ListResponse(next, "calls", calls);
}

Response ListNotifications(Application& application, const Request& request) {
  std::uint64_t next = 0;
  const auto notifications = application.NotificationsSince(Since(request), &next);
  return ListResponse(next, "notifications", notifications);
}

host::CallValue CallFrom(const Members& members) {
  const Json* call = members.Find("call");
  if (call != nullptr && call->is_string()) return call->get<std::string>();
  if (const auto ordinal = members.Integer("call", 0, INT32_MAX)) return *ordinal;
  throw ApiError(kBadRequest, "call is expected: a name, or an ordinal as a number");
}

host::Fault FaultFrom(const Members& members) {
  host::Fault fault;
  fault.library = members.Text("library").value_or("");
  if (fault.library.empty()) throw ApiError(kBadRequest, "library is expected");
  fault.call = CallFrom(members);
  fault.nth = static_cast<std::uint64_t>(members.Integer("nth", 1, INT64_MAX).value_or(1));
  fault.times = static_cast<std::uint64_t>(members.Integer("times", 1, INT64_MAX).value_or(1));
  fault.result = members.Integer("result", INT64_MIN, INT64_MAX);
  if (const auto error = members.Integer("error", 0, kHighestUint32)) fault.error = static_cast<std::uint32_t>(*error);
  fault.on = members.Text("on");
  fault.delay_ms = static_cast<std::uint32_t>(members.Integer("delay_ms", 0, kLongestDelay).value_or(0));
  const bool says_how = fault.result || fault.error || fault.delay_ms != 0;
  if (!says_how) fault.error = kGeneralFailure;
  return fault;
}

Response AddFault(const Request& request) {
  const Json json = ParseObject(request.body);
  host::AddFault(FaultFrom(Members(json, {"library", "call", "nth", "times", "result", "error", "on", "delay_ms"})));
  return JsonResponse(Json::object());
}

Response ClearFaults(const Request&) {
  host::ClearFaults();
  return JsonResponse(Json::object());
}

}  // namespace

void AddRecordRoutes(Router& router, Simulator& simulator) {
  Application& application = simulator.application();
  router.Add("GET", "/api/v1/notifications",
             [&application](const Request& request) { return ListNotifications(application, request); });
  router.Add("GET", "/api/v1/calls", ListCalls);
  router.Add("POST", "/api/v1/faults", AddFault);
  router.Add("DELETE", "/api/v1/faults", ClearFaults);
}

}  // namespace qxsim
