#include "qxsim/state_sections.h"

#include <nlohmann/json.hpp>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "instrument/clock_section.h"
#include "instrument/controller_sections.h"
#include "instrument/device_sections.h"
#include "instrument/field_section.h"
#include "instrument/measuring_sections.h"
#include "instrument/registry_section.h"
#include "instrument/stored_sections.h"
#include "instrument/time_zones.h"
#include "qxsim/system/library.h"

namespace qxsim {
namespace {

using host::instrument::BoolField;
using host::instrument::Field;
using host::instrument::FieldSection;
using host::instrument::IntegerField;
using host::instrument::Json;
using host::instrument::ReadOnlyField;

std::vector<Field> EventWindowFields(Application& application) {
  Field called = ReadOnlyField("previous_called", [&application] { return Json(application.previous_called()); });
  called.reset = [&application] { application.ForgetPreviousCalls(); };
  return {IntegerField(
              "message", [&application] { return std::int64_t{application.event_message()}; },
              [&application](std::int64_t message) {
                application.NameEventWindow(static_cast<UINT>(message), application.event_window_exists());
              },
              kStandardEventMessage, 0, UINT32_MAX),
          BoolField(
              "exists", [&application] { return application.event_window_exists(); },
              [&application](bool exists) { application.NameEventWindow(application.event_message(), exists); }, true),
          ReadOnlyField("subclassed", [&application] { return Json(application.Subclassed()); }), called};
}

/// Null where nobody tells.
Json QueuedCommandsJson() {
  const auto queued = QueuedCommands();
  return queued ? Json(*queued) : Json();
}

std::vector<Field> ResourceFields(Application& application) {
  return {ReadOnlyField("handles", [] { return Json(host::LibraryHandles()); }),
          ReadOnlyField("threads", [] { return Json(host::LibraryThreads()); }),
          ReadOnlyField("services", [&application] { return Json(application.services().Open()); }),
          ReadOnlyField("queued_commands", QueuedCommandsJson)};
}

}  // namespace

std::vector<std::unique_ptr<host::instrument::StateSection>> MakeStateSections(Application& application) {
  std::vector<std::unique_ptr<host::instrument::StateSection>> sections = host::instrument::MakeMeasuringSections();
  const auto add = [&sections](const char* name, std::vector<Field> fields) {
    sections.push_back(std::make_unique<FieldSection>(name, std::move(fields)));
  };
  sections.push_back(host::instrument::MakeParametersSection());
  sections.push_back(host::instrument::MakeBatterySection());
  sections.push_back(host::instrument::MakeFocusSection());
  sections.push_back(host::instrument::MakeStoreSection());
  sections.push_back(host::instrument::MakeParameterBlocksSection());
  for (auto& section : host::instrument::MakeDeviceSections()) sections.push_back(std::move(section));
  sections.push_back(host::instrument::MakeClockSection(host::instrument::FindTimeZone));
  sections.push_back(host::instrument::MakeSystemSection());
  sections.push_back(std::make_unique<host::instrument::RegistrySection>());
  add("event_window", EventWindowFields(application));
  add("ports", {BoolField("shared", host::PortsShared, host::SharePorts, false)});
  add("resources", ResourceFields(application));
  return sections;
}

}  // namespace qxsim
