// The routes of the API, by group.
#ifndef QXSIM_API_ROUTES_H
#define QXSIM_API_ROUTES_H

#include "qxsim/api/router.h"

namespace qxsim {

class Simulator;

void AddStateRoutes(Router& router, Simulator& simulator);    ///< /state, /reset
void AddServiceRoutes(Router& router, Simulator& simulator);  ///< /service, /windows
void AddWorldRoutes(Router& router, Simulator& simulator);    ///< /mutexes, /events, /keys, /shared
void AddRecordRoutes(Router& router, Simulator& simulator);   ///< /notifications, /calls, /faults
void AddFileRoutes(Router& router);                           ///< /files
void AddPageRoutes(Router& router);                           ///< the panel; /traffic without a stream

}  // namespace qxsim

#endif
