// The instrument's four switches, by number: 0 RTL, 1 LGD, 2 LPT, 3 LPL.
#ifndef QXHOST_INSTRUMENT_SWITCHES_H
#define QXHOST_INSTRUMENT_SWITCHES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace host::instrument {

/// Any thread. A switch takes any value.
class Switches {
 public:
  static constexpr std::int32_t kCount = 4;

  /// The instrument's one set.
  static Switches& Instance();

  /// False for a number that is no switch.
  bool Set(std::int32_t number, std::int32_t value);
  bool Get(std::int32_t number, std::int32_t* value) const;

 private:
  mutable std::mutex mutex_;
  std::array<std::int32_t, kCount> values_{};
};

}  // namespace host::instrument

#endif
