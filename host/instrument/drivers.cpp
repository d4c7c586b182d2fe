#include "instrument/drivers.h"

#include "common/ports/ports.h"
#include "instrument/gpio.h"
#include "instrument/i2c_bus.h"
#include "instrument/radio.h"
#include "instrument/system_calls.h"

namespace host::instrument {
namespace {

constexpr char kBluetoothPort[] = "COMBT:";

const struct FromTheStart {
  FromTheStart() { LoadDrivers(); }
} from_the_start;

}  // namespace

void LoadDrivers() {
  LoadI2cDriver();
  LoadGpioDriver();
  Radio* const radio = &Radio::Instance();
  GatePort(kBluetoothPort, [radio] { return radio->PortIsUp(); });
}

}  // namespace host::instrument

std::int32_t WINAPI QxSystemAnnounceService() {
  return host::instrument::SystemCall(12, {}, [] {});
}
