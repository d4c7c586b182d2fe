// How this host starts and ends the second process: what second_process.cpp stands on.
#ifndef QXTEST_PLATFORM_STARTED_PROCESS_H
#define QXTEST_PLATFORM_STARTED_PROCESS_H

#include <cstdint>
#include <cstdio>
#include <string>

namespace platform_test {

/// One side's ends of the two pipes between the processes.
struct Ends {
  std::FILE* in;
  std::FILE* out;
};

struct StartedProcess {
  std::intptr_t id;
  Ends ends;
};

/// Starts this test program with one argument, to which it may add a comma and more. Throws std::system_error when it
/// cannot be started.
StartedProcess StartProcess(const std::string& argument);

/// In the second process: its ends. `more`: what StartProcess has added.
Ends OwnEnds(const std::string& more);

/// Ends the process at once; it has ended on return, but is not collected yet.
void KillProcess(std::intptr_t id);

/// Waits for the end of the process; its exit code, never 0 when it has been killed.
int CollectProcess(std::intptr_t id);

}  // namespace platform_test

#endif
