// What other processes of the instrument and its system library do: mutexes, events, keys, and a look at shared blocks.
#include <windows.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "common/kernel/named_objects.h"
#include "instrument/event_window.h"
#include "instrument/focus_side.h"
#include "qxsim/api/members.h"
#include "qxsim/api/routes.h"
#include "qxsim/line_text.h"
#include "qxsim/simulator.h"

namespace qxsim {
namespace {

constexpr std::chrono::milliseconds kMutexPatience{5000};
constexpr std::chrono::milliseconds kLookPatience{1000};
constexpr std::size_t kMostKeys = 1000;
constexpr std::size_t kLongestName = 200;

const char* HolderText(host::NamedMutexState::Holder holder) {
  switch (holder) {
    case host::NamedMutexState::Holder::kLibrary:
      return "library";
    case host::NamedMutexState::Holder::kOther:
      return "other";
    case host::NamedMutexState::Holder::kFree:
      break;
  }
  return "free";
}

Response ListMutexes(const Request&) {
  Json mutexes = Json::array();
  for (const host::NamedMutexState& mutex : host::NamedMutexes()) {
    mutexes.push_back({{"name", mutex.name}, {"holder", HolderText(mutex.holder)}});
  }
  return JsonResponse({{"mutexes", mutexes}});
}

Response HoldMutex(host::instrument::OtherProcess& other, const Request& request) {
  const Json json = ParseObject(request.body);
  const Members members(json, {"name", "held"});
  const std::string name = members.Text("name").value_or("");
  const auto held = members.Bool("held");
  if (name.empty() || name.size() > kLongestName || !held) throw ApiError(kBadRequest, "name and held are expected");
  if (!*held) {
    other.Release(name);
  } else if (!other.Take(name, kMutexPatience)) {
    throw ApiError(kConflict, name + " cannot be had: it is held by someone else");
  }
  return JsonResponse({{"name", name}, {"held", *held}});
}

Response DeliverEvents(const Request& request) {
  const Json json = ParseObject(request.body);
  const auto mask = Members(json, {"mask"}).Integer("mask", 0, kHighestUint32);
  if (!mask) throw ApiError(kBadRequest, "mask is expected");
  const bool delivered = host::instrument::DeliverEvents(static_cast<std::uint32_t>(*mask));
  return JsonResponse({{"delivered", delivered}});
}

Response CompleteFocus(const Request& request) {
  const Json json = ParseObject(request.body);
  const bool failed = Members(json, {"failed"}).Bool("failed").value_or(false);
  if (!host::instrument::FocusSide::Instance()->Complete(failed)) throw ApiError(kConflict, "no focus job runs");
  return JsonResponse({{"failed", failed}});
}

std::vector<std::uint32_t> ReadCodes(const Json& json) {
  const Members members(json, {"code", "codes"});
  Json given = Json::array();
  if (members.Has("code")) given.push_back(*members.Find("code"));
  if (members.Has("codes")) given = *members.Find("codes");
  const bool good = given.is_array() && !given.empty() && given.size() <= kMostKeys && json.size() == 1;
  if (!good) throw ApiError(kBadRequest, "code or codes (a list) is expected");
  std::vector<std::uint32_t> codes;
  for (const Json& code : given) {
    const Json single = {{"code", code}};
    codes.push_back(static_cast<std::uint32_t>(*Members(single, {"code"}).Integer("code", 0, kHighestUint32)));
  }
  return codes;
}

Response AnnounceKeys(Simulator& simulator, const Request& request) {
  const auto codes = ReadCodes(ParseObject(request.body));
  if (!simulator.AnnounceKeys(codes)) throw ApiError(kUnavailable, "the keys were not taken in time");
  return JsonResponse(Json::object());
}

/// The mutex that guards a named block; empty for a block of no known use.
std::string MutexOf(const std::string& block) {
  const std::string focus = "KORAX-HALVERN.RZM.CMemFocusDat";
  if (block == focus) return "KORAX-HALVERN.RZM.CMemFocusMtx";
  return block.rfind("KORAX-HALVERN.RZM.", 0) == 0 ? block + "Mtx" : std::string();
}

Response ShowBlock(const Request& request) {
  const auto name = request.query.find("name");
  if (name == request.query.end() || name->second.empty()) throw ApiError(kBadRequest, "name is expected");
  if (!host::SharedBlock(name->second)) throw ApiError(kNotFound, "no such block");
  // A copy for the looking only: whoever keeps the mutex from us is not writing just because we look.
  host::instrument::OtherProcess reader;
  const std::string guard = MutexOf(name->second);
  if (!guard.empty()) reader.Take(guard, kLookPatience);
  const auto bytes = host::SharedBlock(name->second);
  if (!bytes) throw ApiError(kNotFound, "no such block");
  return JsonResponse({{"name", name->second},
                       {"size", bytes->size()},
                       {"bytes", HexOf({reinterpret_cast<const char*>(bytes->data()), bytes->size()})}});
}

}  // namespace

void AddWorldRoutes(Router& router, Simulator& simulator) {
  router.Add("GET", "/api/v1/mutexes", ListMutexes);
  router.Add("POST", "/api/v1/mutexes",
             [&simulator](const Request& request) { return HoldMutex(simulator.other_process(), request); });
  router.Add("POST", "/api/v1/events", DeliverEvents);
  router.Add("POST", "/api/v1/keys", [&simulator](const Request& request) { return AnnounceKeys(simulator, request); });
  router.Add("POST", "/api/v1/focus", CompleteFocus);
  router.Add("GET", "/api/v1/shared", ShowBlock);
}

}  // namespace qxsim
