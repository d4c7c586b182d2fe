// The instrument's output lines and their driver: the stream device "GIO1:", which any number of openers share.
//
// It has one operation, code 0xE7702004: two 32-bit words in, line and level (1 high, 0 low), and nothing out.
// Other input, a line from 128 on or another level is error 87; any other code or call 50. The call log shows open,
// close and control under the library "GIO1:".
#ifndef QXHOST_INSTRUMENT_GPIO_H
#define QXHOST_INSTRUMENT_GPIO_H

#include <cstdint>
#include <map>
#include <mutex>

namespace host::instrument {

/// Any thread.
class Gpio {
 public:
  static constexpr std::uint32_t kLines = 128;
  static constexpr std::uint32_t kAlwaysShown = 14;

  /// The instrument's one.
  static Gpio& Instance();

  /// False for what is no line or no level.
  bool Drive(std::uint32_t line, std::uint32_t level);
  /// The level of every line that has been driven, and of line 14.
  std::map<std::uint32_t, std::uint32_t> levels() const;
  void Reset();

 private:
  mutable std::mutex mutex_;
  std::map<std::uint32_t, std::uint32_t> levels_ = {{kAlwaysShown, 0}};
};

void LoadGpioDriver();
/// The device is there no more; what is open stays so.
void UnloadGpioDriver();

}  // namespace host::instrument

#endif
