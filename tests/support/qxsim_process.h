// A running qxsim with a line, an API and a folder of its own.
#ifndef QXTEST_SUPPORT_QXSIM_PROCESS_H
#define QXTEST_SUPPORT_QXSIM_PROCESS_H

#include <memory>
#include <string>
#include <vector>

#include "support/http_client.h"
#include "support/process.h"

namespace qxtest {

/// The qxsim that is tested: the one of this build, or another with the same command line (an absolute path), which the
/// variable QX_QXSIM names.
std::string QxsimProgram();

class QxsimProcess {
 public:
  /// Starts qxsim with an ephemeral home, a link and an HTTP port of its own, and waits for its ready line.
  /// Throws std::runtime_error with what it said when it does not come up.
  ///
  /// \param options    further options
  /// \param ephemeral  false: its home is folder()/home, kept as long as this object
  explicit QxsimProcess(const std::vector<std::string>& options = {}, bool ephemeral = true);

  Process& process() { return *process_; }
  const TemporaryFolder& folder() const { return folder_; }
  const std::string& ready_line() const { return ready_line_; }
  /// From the ready line.
  const std::string& port() const { return port_; }
  const std::string& url() const { return url_; }

  /// A connection to the API.
  HttpClient& http();

  /// Ends it as a user does (SIGINT) and returns the exit status; -1 when it does not end within 20 seconds.
  int Stop();

 private:
  TemporaryFolder folder_;
  std::unique_ptr<Process> process_;
  std::string ready_line_;
  std::string port_;
  std::string url_;
  std::unique_ptr<HttpClient> http_;
};

}  // namespace qxtest

#endif
