// The panel's page, and the traffic's path for those who ask for it without a connection to stream it on.
#include "qxsim/api/routes.h"
#include "qxsim/panel/panel.h"

namespace qxsim {

void AddPageRoutes(Router& router) {
  router.Add("GET", "/", [](const Request&) {
    return Response{kOk, "text/html; charset=utf-8", std::string(PanelPage())};
  });
  router.Add("GET", "/api/v1/traffic",
             [](const Request&) { return ErrorResponse(kBadRequest, "the traffic is a stream: ask over HTTP"); });
}

}  // namespace qxsim
