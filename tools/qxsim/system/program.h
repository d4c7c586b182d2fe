// The program's command line, and whoever ends the program.
#ifndef QXSIM_SYSTEM_PROGRAM_H
#define QXSIM_SYSTEM_PROGRAM_H

#include <string>
#include <vector>

namespace qxsim {

/// The arguments that main was given, in UTF-8, the program's name first.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The user's wish that the program shall end. Posix: SIGINT, SIGTERM, and SIGHUP where it is not ignored. Windows:
/// Ctrl-C, Ctrl-Break and the console being closed. One in a process.
class EndRequest {
 public:
  /// From here on the wish is kept until somebody waits. Make it before other threads run.
  EndRequest();
  EndRequest(const EndRequest&) = delete;
  EndRequest& operator=(const EndRequest&) = delete;
  ~EndRequest() = default;

  void Wait();
};

}  // namespace qxsim

#endif
