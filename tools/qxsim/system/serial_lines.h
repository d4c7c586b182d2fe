// Serial lines of this machine for the instrument's ports.
#ifndef QXSIM_SYSTEM_SERIAL_LINES_H
#define QXSIM_SYSTEM_SERIAL_LINES_H

#include <memory>
#include <string>

namespace qxsim {

/// A serial device as messages name it: an absolute path where devices are files.
std::string DeviceName(const std::string& device);

/// A line of the program's own making that leads to a port, until the object goes.
class OwnLine {
 public:
  virtual ~OwnLine() = default;
  /// Where a controller finds the other end.
  virtual std::string path() const = 0;
};

/// Makes a line for the port, with a symbolic link to the controller's end. Null where the machine has no ptys.
/// Throws StartError or std::system_error.
std::unique_ptr<OwnLine> MakeOwnLine(const std::string& port, const std::string& link);

}  // namespace qxsim

#endif
