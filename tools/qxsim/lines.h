// The instrument's two serial lines: the port the service is opened on, and the other one beside it.
#ifndef QXSIM_LINES_H
#define QXSIM_LINES_H

#include <memory>
#include <string>
#include <vector>

#include "qxsim/options.h"
#include "qxsim/system/serial_lines.h"

namespace qxsim {

/// Both exist from the start, so that a controller can be there before the second port is opened. Where the machine has
/// no ptys a line leads to the device it was given; the second one leads nowhere without.
class Lines {
 public:
  /// Throws StartError or std::system_error.
  explicit Lines(const Options& options);
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;
  ~Lines();

  /// Where the controller finds the first line: the link's absolute path, or the device.
  const std::string& path() const { return path_; }

 private:
  std::string Add(const std::string& port, const std::string& device, const std::string& link);
  void Leave();

  std::vector<std::string> devices_;  // ports that lead to a device
  std::vector<std::unique_ptr<OwnLine>> own_lines_;
  std::string path_;
};

}  // namespace qxsim

#endif
