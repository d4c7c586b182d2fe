// qxsim: starts the virtual instrument, says where it is, and runs it until SIGINT or SIGTERM.
#include <csignal>
#include <cstdio>
#include <iostream>

#include "qxsim/http/http_server.h"
#include "qxsim/options.h"
#include "qxsim/simulator.h"

namespace {

/// False when whoever started the program wants it to outlive the terminal.
bool EndsWithTheTerminal() {
  struct sigaction hang_up = {};
  sigaction(SIGHUP, nullptr, &hang_up);
  return hang_up.sa_handler != SIG_IGN;
}

/// Blocks the signals that end the program, for this thread and those it starts.
sigset_t BlockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM}) sigaddset(&signals, signal);
  if (EndsWithTheTerminal()) sigaddset(&signals, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  return signals;
}

void Run(const qxsim::Options& options, const sigset_t& end_signals) {
  qxsim::Simulator simulator(options);
  std::optional<qxsim::HttpServer> server;
  if (options.http) {
    server.emplace(
        *options.http, options.http_anyone,
        [&simulator](const qxsim::Request& request) { return simulator.Handle(request); }, simulator.traffic());
  }
  std::printf("qxsim ready port=%s http=%s\n", simulator.port_path().c_str(), server ? server->Url().c_str() : "off");
  std::fflush(stdout);
  int signal = 0;
  while (sigwait(&end_signals, &signal) != 0) {
  }
  // Requests under way may wait for a service: it closes first.
  if (server) server->Stop();
  simulator.Close();
}

}  // namespace

int main(int argc, char** argv) {
  const sigset_t end_signals = BlockEndSignals();
  qxsim::Options options;
  if (const auto status = qxsim::ParseOptions(argc, argv, &options, std::cout, std::cerr)) return *status;
  try {
    Run(options, end_signals);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qxsim: %s\n", error.what());
    return qxsim::kExitStart;
  }
  return qxsim::kExitDone;
}
