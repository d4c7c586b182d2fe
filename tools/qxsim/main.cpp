// qxsim: starts the virtual instrument, says where it is, and runs it until the user ends it.
#include <cstdio>
#include <iostream>

#include "qxsim/http/http_server.h"
#include "qxsim/options.h"
#include "qxsim/simulator.h"
#include "qxsim/system/program.h"

namespace {

void Run(const qxsim::Options& options, qxsim::EndRequest& end) {
  qxsim::Simulator simulator(options);
  std::optional<qxsim::HttpServer> server;
  if (options.http) {
    server.emplace(
        *options.http, options.http_anyone,
        [&simulator](const qxsim::Request& request) { return simulator.Handle(request); }, simulator.traffic());
  }
  std::printf("qxsim ready port=%s http=%s\n", simulator.port_path().c_str(), server ? server->Url().c_str() : "off");
  std::fflush(stdout);
  end.Wait();
  // Requests under way may wait for a service: it closes first.
  if (server) server->Stop();
  simulator.Close();
}

std::vector<const char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers;
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  return pointers;
}

}  // namespace

int main(int argc, char** argv) {
  qxsim::EndRequest end;
  const std::vector<std::string> arguments = qxsim::ProgramArguments(argc, argv);
  const std::vector<const char*> pointers = Pointers(arguments);
  qxsim::Options options;
  const auto status =
      qxsim::ParseOptions(static_cast<int>(pointers.size()), pointers.data(), &options, std::cout, std::cerr);
  if (status) return *status;
  try {
    Run(options, end);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qxsim: %s\n", error.what());
    return qxsim::kExitStart;
  }
  return qxsim::kExitDone;
}
