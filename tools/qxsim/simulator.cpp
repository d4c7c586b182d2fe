#include "qxsim/simulator.h"

#include <chrono>
#include <nlohmann/json.hpp>

#include "common/calls/calls.h"
#include "common/files/file_root.h"
#include "common/files/program_files.h"
#include "common/kernel/named_objects.h"
#include "common/ports/ports.h"
#include "common/system/programs.h"
#include "common/text/text.h"
#include "instrument/battery.h"
#include "instrument/distance_meter.h"
#include "instrument/drivers.h"
#include "instrument/focus_side.h"
#include "qxsim/api/routes.h"
#include "qxsim/start_error.h"
#include "qxsim/state_sections.h"

namespace qxsim {
namespace {

constexpr std::chrono::milliseconds kKeyPatience{10000};
constexpr std::chrono::milliseconds kKeyLook{50};

// The library keeps its window list by name until the process ends. So a further simulator in the same process shares
// its objects with the first one.
void UseObjects(const std::string& folder) {
  try {
    host::SetObjectNamespace(folder);
  } catch (const std::logic_error&) {
  }
}

}  // namespace

Simulator::Platform::Platform(Simulator& simulator) {
  const Options& options = simulator.options_;
  UseObjects(simulator.home_.objects().string());
  host::SetFileRoot(simulator.home_.files().string());
  host::SetProgramLookup(host::LookUpProgramFile);
  host::SetAnsiCodePage(options.code_page);
  host::PacePorts(options.pace);
  host::SharePorts(false);
  host::ClearFaults();
  host::instrument::LoadBatteryQuery();
  host::instrument::LoadDrivers();
  host::EnableCallLog(true);
  host::SetPortObserver([&simulator](std::string_view port, bool in, std::string_view bytes) {
    simulator.traffic_.Feed(port, in, bytes);
  });
  if (Trace* trace = simulator.trace_.get()) {
    host::SetCallObserver([trace](const host::CallRecord& call) { trace->Write(TraceLine(call)); });
  }
}

Simulator::Platform::~Platform() {
  host::SetCallObserver(nullptr);
  host::SetPortObserver(nullptr);
  host::EnableCallLog(false);
  host::instrument::UnloadBatteryQuery();
  host::ClearFaults();
  host::SharePorts(false);
  host::PacePorts(0);
  host::SetAnsiCodePage(1252);
  host::instrument::FocusSide::Forget();
  host::instrument::DistanceMeter::Instance().Rest();
  host::ClearFileRoot();
}

Simulator::Simulator(const Options& options)
    : options_(options),
      home_(options),
      persistent_(home_.state()),
      trace_(options.trace.empty() ? nullptr : std::make_unique<Trace>(options.trace)),
      platform_(*this),
      lines_(std::make_unique<Lines>(options)) {
  NotificationLog::Observer observer;
  if (Trace* trace = trace_.get()) {
    traffic_.Subscribe([trace](const TrafficEvent& event) { trace->Write(TraceLine(event)); });
    observer = [trace](const Notification& notification) { trace->Write(TraceLine(notification)); };
  }
  application_ = std::make_unique<Application>(observer);
  sections_ = MakeStateSections(*application_);
  for (const auto& section : sections_) state_.Add(section.get());
  AddRoutes();
  state_.Reset();
  KeepState();
  OpenService();
  if (!options_.still) motion_ = std::make_unique<host::instrument::Motion>(options_.seed);
}

Simulator::~Simulator() { Close(); }

// The defaults are in place; what the home keeps takes theirs. From here on a change is kept before its call returns.
void Simulator::KeepState() {
  for (const auto& section : sections_) {
    if (section->Persists()) persistent_.Add(*section);
  }
  persistent_.Begin();
  for (const auto& section : sections_) {
    const std::string name = section->Name();
    section->SetKeeper([this, name](const host::instrument::Json& content) { return persistent_.Save(name, content); });
  }
}

void Simulator::OpenService() {
  ExportCall call;
  call.name = "QCMOpenComm";
  call.port = options_.port;
  const auto opened = application_->services().Call(call);
  if (opened && opened->result != 0) return;
  throw StartError("port: " + options_.port + " (" + lines_->path() + ") cannot be opened");
}

void Simulator::AddRoutes() {
  AddStateRoutes(router_, *this);
  AddServiceRoutes(router_, *this);
  AddWorldRoutes(router_, *this);
  AddRecordRoutes(router_, *this);
  AddFileRoutes(router_);
  AddPageRoutes(router_);
}

Response Simulator::Handle(const std::string& method, const std::string& target, const std::string& body) const {
  try {
    return Handle(MakeRequest(method, target, body));
  } catch (const ApiError& error) {
    return ErrorResponse(error.status(), error.what());
  }
}

bool Simulator::AnnounceKeys(const std::vector<std::uint32_t>& codes) {
  const std::lock_guard<std::mutex> lock(keys_mutex_);
  if (keys_ == nullptr) keys_ = std::make_unique<host::instrument::KeyProcess>();
  if (!keys_->Announce(codes, kKeyPatience)) return false;
  const auto deadline = std::chrono::steady_clock::now() + kKeyPatience;
  while (application_->services().Open() != 0) {  // it may close meanwhile, and then nobody takes the key
    if (keys_->WaitUntilTaken(kKeyLook)) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
  }
  return true;
}

void Simulator::Close() {
  host::ClearFaults();
  other_process_.ReleaseAll();
  application_->CloseServices();
}

}  // namespace qxsim
