// The virtual instrument put together: its platform, the library with its service open, the application and the API.
#ifndef QXSIM_SIMULATOR_H
#define QXSIM_SIMULATOR_H

#include <memory>
#include <mutex>
#include <string>

#include "instrument/keys.h"
#include "instrument/motion.h"
#include "instrument/other_process.h"
#include "instrument/state.h"
#include "qxsim/api/router.h"
#include "qxsim/application/application.h"
#include "qxsim/home.h"
#include "qxsim/lines.h"
#include "qxsim/options.h"
#include "qxsim/persistent_state.h"
#include "qxsim/trace.h"
#include "qxsim/traffic.h"

namespace qxsim {

/// One at a time in a process: platform and library are the process's. All operations on any thread.
class Simulator {
 public:
  /// Starts everything and opens the service. Throws StartError or another std::exception, with nothing left behind.
  explicit Simulator(const Options& options);
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;
  ~Simulator();

  /// Answers a request of the HTTP API, or for the panel, without HTTP: Handle("PATCH", "/api/v1/state", body).
  Response Handle(const Request& request) const { return router_.Handle(request); }
  Response Handle(const std::string& method, const std::string& target, const std::string& body = {}) const;

  /// Closes all services, whatever they or a window wait for; calls of exports are refused from here on.
  void Close();

  const Options& options() const { return options_; }
  const Home& home() const { return home_; }
  /// Where the controller finds the first line: absolute path of a link or device.
  const std::string& port_path() const { return lines_->path(); }
  TrafficLog& traffic() { return traffic_; }
  Application& application() { return *application_; }
  host::instrument::State& state() { return state_; }
  host::instrument::OtherProcess& other_process() { return other_process_; }

  /// Announces keys as the instrument's key process does; false when they were not announced or not taken in time. Does
  /// not wait for the taking while no service is open.
  bool AnnounceKeys(const std::vector<std::uint32_t>& codes);

 private:
  /// What the simulator sets in the platform, put back at the end.
  class Platform {
   public:
    explicit Platform(Simulator& simulator);
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    ~Platform();
  };

  void AddRoutes();
  void KeepState();
  void OpenService();

  const Options options_;
  Home home_;
  PersistentState persistent_;
  std::unique_ptr<Trace> trace_;
  TrafficLog traffic_;
  Platform platform_;
  std::unique_ptr<Lines> lines_;
  std::unique_ptr<Application> application_;
  host::instrument::OtherProcess other_process_;
  std::mutex keys_mutex_;                               // guards the next; one announcement at a time
  std::unique_ptr<host::instrument::KeyProcess> keys_;  // made for the first key
  std::vector<std::unique_ptr<host::instrument::StateSection>> sections_;
  host::instrument::State state_;
  Router router_;
  std::unique_ptr<host::instrument::Motion> motion_;  // unless all is to stand still
};

}  // namespace qxsim

#endif
