// Why the simulator cannot start.
#ifndef QXSIM_START_ERROR_H
#define QXSIM_START_ERROR_H

#include <stdexcept>

namespace qxsim {

/// A port, home, link or address that cannot be had: one clear line for the user.
class StartError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qxsim

#endif
