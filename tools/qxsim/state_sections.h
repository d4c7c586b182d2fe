// The sections of the state that the simulator itself brings: those of the application, the ports and the library.
#ifndef QXSIM_STATE_SECTIONS_H
#define QXSIM_STATE_SECTIONS_H

#include <memory>
#include <vector>

#include "instrument/state.h"
#include "qxsim/application/application.h"

namespace qxsim {

/// In the order in which the document shows them. The application must outlive them.
std::vector<std::unique_ptr<host::instrument::StateSection>> MakeStateSections(Application& application);

}  // namespace qxsim

#endif
