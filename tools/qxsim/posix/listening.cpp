#include "qxsim/system/listening.h"

namespace qxsim {

bool ReusesAddresses() { return true; }

}  // namespace qxsim
