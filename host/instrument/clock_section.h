// "clock" in the state document: the local time, whether the clock runs, and its time zone.
#ifndef QXHOST_INSTRUMENT_CLOCK_SECTION_H
#define QXHOST_INSTRUMENT_CLOCK_SECTION_H

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "instrument/state.h"

namespace host::instrument {

/// The rules of the zone of this key name; nothing when there is no such zone. Called on any thread.
using ZoneLookup = std::function<std::optional<TIME_ZONE_INFORMATION>(const std::string& key)>;

/// The zone of a fresh instrument.
constexpr char kStandardZone[] = "W. Europe Standard Time";

/// \param find_zone  what a zone's name means, for a patch and for the way back to the standard zone; a standard zone
///                   that it does not know leaves the clock's zone as it is
std::unique_ptr<StateSection> MakeClockSection(ZoneLookup find_zone);

}  // namespace host::instrument

#endif
