#include "commands/instrument/devices/gpio.h"

#include <stdexcept>

#include "commands/instrument/devices/i2c_bus.h"
#include "platform/handle.h"
#include "platform/shared_block.h"
#include "platform/windows_api.h"

namespace qxcm {

namespace {

constexpr DWORD kSetLineCode = 0xE7702004;

bool Drive(std::uint32_t line, bool high) {
  const Handle device(CreateFileW(TEXT("GIO1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!device) return false;
  std::uint32_t words[] = {line, high ? 1u : 0u};
  DWORD returned = 0;
  return DeviceIoControl(device.get(), kSetLineCode, words, sizeof words, nullptr, 0, &returned, nullptr) != FALSE;
}

}  // namespace

std::int32_t SetGpioLine(std::uint32_t line, bool high, const Event& give_up) {
  try {
    NamedMutex mutex(TEXT("KORAX-HALVERN.RZM.GPIOLaipacMtx"));
    if (!mutex.EnterUnless(give_up)) return kTransferFailed;
    const bool driven = Drive(line, high);
    mutex.Leave();
    return driven ? 0 : kTransferFailed;
  } catch (const std::runtime_error&) {
    return kTransferFailed;
  }
}

}  // namespace qxcm
