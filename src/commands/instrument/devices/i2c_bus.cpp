// The driver's one control code, and the retries around it.
#include "commands/instrument/devices/i2c_bus.h"

#include <algorithm>

#include "platform/qxsystem.h"

namespace qxcm {

namespace {

constexpr DWORD kTransferCode = 0xA8D42000;
constexpr std::size_t kSendLimit = 1024;  // bytes of a send, address included: fewer than this
constexpr DWORD kFirstPause = 1;          // milliseconds
constexpr DWORD kLookAgain = 500;         // milliseconds between looks whether to give up

}  // namespace

// The first three names differ from the last two in one letter: other processes open them just so (kept).
I2cBus::I2cBus()
    : distance_meter_(TEXT("KORAX-HALBERN.RZM.I2CEdmMtx")),
      second_distance_meter_(TEXT("KORAX-HALBERN.RZM.I2CEdmMtx2")),
      tilt_sensor_(TEXT("KORAX-HALBERN.RZM.I2CSensorMtx")),
      temperature_pressure_(TEXT("KORAX-HALVERN.RZM.I2CTempPressMtx")),
      focus_drive_(TEXT("KORAX-HALVERN.RZM.I2CFocusMtx")),
      port_(CreateFileW(TEXT("I2C5:"), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
  if (!port_) throw i2c_io_exception("cannot open I2C port.");
  QxSystemAnnounceService();
}

NamedMutex& I2cBus::MutexOf(std::uint8_t address) {
  switch (address) {
    case kSecondDistanceMeter:
      return second_distance_meter_;
    case kTiltSensor:
      return tilt_sensor_;
    case kTemperaturePressure:
      return temperature_pressure_;
    case kFocusDrive:
      return focus_drive_;
    default:
      return distance_meter_;
  }
}

// Held or not is only known at run time, which the lock analysis cannot follow.
QXCM_ANNOTATION(no_thread_safety_analysis)
I2cSession::I2cSession(I2cBus& bus, std::uint8_t address, const Event& give_up)
    : bus_(bus), address_(address), give_up_(give_up), mutex_(bus.MutexOf(address)) {
  try {
    held_ = mutex_.EnterUnless(give_up);
  } catch (const std::runtime_error&) {
    // The platform refuses to wait for the mutex: without it every transfer fails.
  }
}

QXCM_ANNOTATION(no_thread_safety_analysis)
I2cSession::~I2cSession() {
  if (held_) mutex_.Leave();
}

bool I2cSession::Write(const Bytes& bytes, int attempts, DWORD pause) {
  for (int attempt = 0; attempt < attempts; ++attempt) {
    if (!Wait(attempt == 0 ? kFirstPause : pause)) return false;
    if (Control(bytes, nullptr)) return true;
  }
  return false;
}

bool I2cSession::Read(std::size_t count, Bytes* bytes) {
  bytes->resize(count);
  return Control({}, bytes);
}

bool I2cSession::Transfer(const Bytes& bytes, std::size_t count, Bytes* answer) {
  answer->resize(count);
  return Control(bytes, count == 0 ? nullptr : answer);
}

// In pieces, and by the clock: neither an event that the platform did not set nor a wait that it refused changes much.
bool I2cSession::Wait(DWORD milliseconds) {
  if (!held_) return false;
  const DWORD start = GetTickCount();
  for (DWORD elapsed = 0; elapsed < milliseconds; elapsed = GetTickCount() - start) {
    if (WaitFor(give_up_, std::min(milliseconds - elapsed, kLookAgain))) return false;
  }
  return !give_up_.WasSet();
}

bool I2cSession::Control(const Bytes& bytes, Bytes* answer) {
  if (!held_ || bytes.size() + 1 >= kSendLimit) return false;
  Bytes send = {static_cast<std::uint8_t>(address_ >> 1)};
  send.insert(send.end(), bytes.begin(), bytes.end());
  DWORD returned = 0;
  return DeviceIoControl(bus_.port(), kTransferCode, send.data(), static_cast<DWORD>(send.size()),
                         answer == nullptr ? nullptr : answer->data(),
                         answer == nullptr ? 0 : static_cast<DWORD>(answer->size()), &returned, nullptr) != FALSE;
}

}  // namespace qxcm
