// GET /state, PATCH /state {"angles": {"HAF": 1.0}}, POST /reset: all answer the state.
#include <nlohmann/json.hpp>

#include "qxsim/api/routes.h"
#include "qxsim/simulator.h"

namespace qxsim {
namespace {

Response PatchState(host::instrument::State& state, const Request& request) {
  try {
    state.Patch(ParseObject(request.body));
  } catch (const host::instrument::StateError& error) {
    throw ApiError(kBadRequest, error.what());
  }
  return JsonResponse(state.ToJson());
}

}  // namespace

void AddStateRoutes(Router& router, Simulator& simulator) {
  host::instrument::State& state = simulator.state();
  router.Add("GET", "/api/v1/state", [&state](const Request&) { return JsonResponse(state.ToJson()); });
  router.Add("PATCH", "/api/v1/state", [&state](const Request& request) { return PatchState(state, request); });
  router.Add("POST", "/api/v1/reset", [&state](const Request&) {
    state.Reset();
    return JsonResponse(state.ToJson());
  });
}

}  // namespace qxsim
