// The simulated switches: ordinals 43 and 44.
#include "instrument/switches.h"

#include "instrument/system_calls.h"

namespace host::instrument {

Switches& Switches::Instance() {
  static Switches switches;
  return switches;
}

bool Switches::Set(std::int32_t number, std::int32_t value) {
  if (number < 0 || number >= kCount) return false;
  std::lock_guard guard(mutex_);
  values_[static_cast<std::size_t>(number)] = value;
  return true;
}

bool Switches::Get(std::int32_t number, std::int32_t* value) const {
  if (number < 0 || number >= kCount) return false;
  std::lock_guard guard(mutex_);
  *value = values_[static_cast<std::size_t>(number)];
  return true;
}

}  // namespace host::instrument

using host::instrument::Switches;
using host::instrument::SystemCall;

std::int32_t WINAPI QxSystemSetSwitch(std::int32_t number, std::int32_t value) {
  return SystemCall(43, {number, value}, [&] { return Switches::Instance().Set(number, value); });
}

std::int32_t WINAPI QxSystemGetSwitch(std::int32_t number, std::int32_t* value) {
  return SystemCall(44, {number}, [&] { return Switches::Instance().Get(number, value); });
}
