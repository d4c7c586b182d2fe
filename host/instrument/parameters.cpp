// The simulated parameters: ordinals 1 to 4, 46 and 47. An index that does not exist and a null pointer fail.
#include "instrument/parameters.h"

#include <cerrno>
#include <cstddef>

#include "instrument/system_calls.h"

namespace host::instrument {
namespace {

/// Out of one value for each index.
template <class Number, std::size_t kCount>
Number* At(std::array<Number, kCount>& numbers, std::int32_t index) {
  return index >= 0 && index < static_cast<std::int32_t>(kCount) ? &numbers[static_cast<std::size_t>(index)] : nullptr;
}

std::int32_t* Integer(ParameterValues& values, std::int32_t index) { return At(values.integers, index); }
double* Double(ParameterValues& values, std::int32_t index) { return At(values.doubles, index); }
std::int32_t* EdmCode(ParameterValues& values, std::int32_t index) { return index == 0 ? &values.edm : nullptr; }

template <class Number>
using Place = Number* (*)(ParameterValues&, std::int32_t index);

template <class Number>
bool Get(Place<Number> place, std::int32_t index, Number* value) {
  ParameterValues values = Parameters().See([](const ParameterValues& now) { return now; });
  const Number* found = place(values, index);
  if (found == nullptr || value == nullptr) return false;
  *value = *found;
  return true;
}

template <class Number>
bool Set(Place<Number> place, std::int32_t index, Number value) {
  const int error = Parameters().Change([&](ParameterValues& values) {
    Number* found = place(values, index);
    if (found == nullptr) return EINVAL;
    *found = value;
    return 0;
  });
  return error == 0;
}

}  // namespace

Kept<ParameterValues>& Parameters() {
  static auto* parameters = new Kept<ParameterValues>({});  // calls may still come while the process ends
  return *parameters;
}

}  // namespace host::instrument

using namespace host::instrument;

std::int32_t WINAPI QxSystemGetIntegerParameter(std::int32_t index, std::int32_t* value) {
  return SystemCall(1, {index}, [&] { return Get(Integer, index, value); });
}

std::int32_t WINAPI QxSystemSetIntegerParameter(std::int32_t index, std::int32_t value) {
  return SystemCall(2, {index, value}, [&] { return Set(Integer, index, value); });
}

std::int32_t WINAPI QxSystemGetDoubleParameter(std::int32_t index, double* value) {
  return SystemCall(3, {index}, [&] { return Get(Double, index, value); });
}

std::int32_t WINAPI QxSystemSetDoubleParameter(std::int32_t index, double value) {
  return SystemCall(4, {index, value}, [&] { return Set(Double, index, value); });
}

std::int32_t WINAPI QxSystemGetEdmCode(std::int32_t index, std::int32_t* code) {
  return SystemCall(46, {index}, [&] { return Get(EdmCode, index, code); });
}

std::int32_t WINAPI QxSystemSetEdmCode(std::int32_t index, std::int32_t code) {
  return SystemCall(47, {index, code}, [&] { return Set(EdmCode, index, code); });
}
