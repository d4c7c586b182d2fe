// A port that cannot be opened.
#ifndef QXCM_LINK_COMM_IO_EXCEPTION_H
#define QXCM_LINK_COMM_IO_EXCEPTION_H

#include <stdexcept>

namespace qxcm {

/// Thrown while a service is built ("cannot open port."); never leaves the library.
class comm_io_exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qxcm

#endif
