#include "qxsim/system/listening.h"

namespace qxsim {

bool ReusesAddresses() { return false; }

}  // namespace qxsim
