// POST /service {"call": "QCMGetPortName", "handle": 0, "args": {"bytes": 14}}  ->  {"result": 0, "text": "COM5:", ...}
// POST /windows {"takes_ms": 0, "fetch": "QCMGetLastMsrParams", "closes": false}  ->  {"window": 2};  DELETE /windows/2
#include <nlohmann/json.hpp>

#include "qxsim/api/members.h"
#include "qxsim/api/routes.h"
#include "qxsim/line_text.h"
#include "qxsim/simulator.h"

namespace qxsim {
namespace {

constexpr std::int64_t kLongestTake = 3600000;

QCM_HANDLE HandleFrom(const Members& members, const Services& services) {
  if (members.IsNull("handle")) return services.Own();
  const auto handle = static_cast<QCM_HANDLE>(members.Integer("handle", 0, kHighestUint32).value_or(0));
  const bool raw = members.Bool("raw").value_or(false);
  return handle == 0 && !raw ? services.Own() : handle;
}

HWND WindowFrom(const Members& args, const Application& application) {
  if (args.IsNull("window")) return nullptr;
  const std::int64_t number = args.Integer("window", 0, kHighestUint32).value_or(0);
  return number == 0 ? nullptr : application.Find(static_cast<std::uint64_t>(number));
}

void ReadBuffer(const Members& args, ExportCall* call) {
  call->has_buffer = !args.IsNull("bytes");
  if (!call->has_buffer) return;
  const std::uint32_t smallest = RecordBytes(call->name);
  if (const auto bytes = args.Integer("bytes", smallest, kLargestBuffer)) {
    call->bytes = static_cast<std::uint32_t>(*bytes);
  }
}

ExportCall ReadCall(const Json& json, Application& application) {
  const Members members(json, {"call", "handle", "raw", "args"});
  const Json* given = members.Find("args");
  const Json empty = Json::object();
  const Members args(given == nullptr ? empty : *given, {"port", "window", "message", "bytes", "step"});
  ExportCall call;
  call.name = members.Text("call").value_or("");
  if (!IsExport(call.name)) throw ApiError(kBadRequest, "call: the name of an export is expected");
  call.handle = HandleFrom(members, application.services());
  if (!args.IsNull("port")) call.port = args.Text("port");
  call.window = WindowFrom(args, application);
  call.message = static_cast<std::uint32_t>(args.Integer("message", 0, kHighestUint32).value_or(0));
  call.step = args.Number("step").value_or(0);
  ReadBuffer(args, &call);
  return call;
}

Response CallService(Application& application, const Request& request) {
  const ExportCall call = ReadCall(ParseObject(request.body), application);
  const auto result = application.services().Call(call);
  if (!result) throw ApiError(kUnavailable, "the simulator is ending");
  if (call.name == "QCMRegisterNotifyWindow" && result->result == QCM_OK) {
    application.FollowService(call.window, call.handle);
  }
  Json answer = {{"result", result->result}};
  if (result->text) answer["text"] = *result->text;
  if (result->record) answer["record"] = HexOf(*result->record);
  return JsonResponse(answer);
}

Response MakeWindow(Application& application, const Request& request) {
  const Json json = ParseObject(request.body);
  const Members members(json, {"takes_ms", "fetch", "closes"});
  WindowPlan plan;
  plan.takes_ms = static_cast<std::uint32_t>(members.Integer("takes_ms", 0, kLongestTake).value_or(0));
  plan.closes = members.Bool("closes").value_or(false);
  if (!members.IsNull("fetch")) plan.fetch = members.Text("fetch").value_or("");
  if (!plan.fetch.empty() && RecordBytes(plan.fetch) == 0) {
    throw ApiError(kBadRequest, "fetch: the name of an export that fills a record is expected");
  }
  const unsigned number = application.MakeWindow(std::move(plan));
  if (number == 0) throw ApiError(kConflict, "there are " + std::to_string(kMostWindows) + " windows already");
  return JsonResponse({{"window", number}});
}

Response DestroyWindow(Application& application, const Request& request) {
  const std::uint64_t number = NumberFrom(request.path.back(), "window");
  if (number == kEventWindowNumber) throw ApiError(kConflict, "the event window stays: see event_window in the state");
  if (number > UINT32_MAX || !application.DestroyWindow(static_cast<unsigned>(number))) {
    throw ApiError(kNotFound, "no such window");
  }
  return JsonResponse(Json::object());
}

}  // namespace

void AddServiceRoutes(Router& router, Simulator& simulator) {
  Application& application = simulator.application();
  router.Add("POST", "/api/v1/service",
             [&application](const Request& request) { return CallService(application, request); });
  router.Add("POST", "/api/v1/windows",
             [&application](const Request& request) { return MakeWindow(application, request); });
  router.Add("DELETE", "/api/v1/windows/{n}",
             [&application](const Request& request) { return DestroyWindow(application, request); });
}

}  // namespace qxsim
