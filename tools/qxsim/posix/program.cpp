#include "qxsim/system/program.h"

#include <pthread.h>

#include <csignal>

namespace qxsim {
namespace {

/// False when whoever started the program wants it to outlive the terminal.
bool EndsWithTheTerminal() {
  struct sigaction hang_up = {};
  sigaction(SIGHUP, nullptr, &hang_up);
  return hang_up.sa_handler != SIG_IGN;
}

sigset_t EndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM}) sigaddset(&signals, signal);
  if (EndsWithTheTerminal()) sigaddset(&signals, SIGHUP);
  return signals;
}

}  // namespace

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv, argv + argc}; }

// The signals are blocked for this thread and those it starts, and taken by whoever waits.
EndRequest::EndRequest() {
  const sigset_t signals = EndSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

void EndRequest::Wait() {
  const sigset_t signals = EndSignals();
  int signal = 0;
  while (sigwait(&signals, &signal) != 0) {
  }
}

}  // namespace qxsim
