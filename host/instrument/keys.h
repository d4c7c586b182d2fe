// The process of the instrument that reports its keys, as the library sees it: an event and a block with a mutex.
#ifndef QXHOST_INSTRUMENT_KEYS_H
#define QXHOST_INSTRUMENT_KEYS_H

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <vector>

namespace host::instrument {

/// Announces key presses and keeps the objects for it open. One object serves one thread at a time.
class KeyProcess {
 public:
  /// Creates or opens the named objects. Throws std::runtime_error when it cannot.
  KeyProcess();
  KeyProcess(const KeyProcess&) = delete;
  KeyProcess& operator=(const KeyProcess&) = delete;
  ~KeyProcess();

  /// Writes the codes into the block one after the other, each under the mutex, then sets the event once.
  /// False, with nothing announced, when the mutex is held by someone else for longer than `time`.
  bool Announce(const std::vector<std::uint32_t>& codes, std::chrono::milliseconds time);

  /// Waits until the announcement has been taken (the event is reset); false when the time is over first.
  bool WaitUntilTaken(std::chrono::milliseconds time) const;

 private:
  bool Write(std::uint32_t code, std::chrono::milliseconds time);
  void Close();

  HANDLE event_ = nullptr;
  HANDLE mutex_ = nullptr;
  HANDLE block_ = nullptr;
  std::uint32_t* code_ = nullptr;
};

}  // namespace host::instrument

#endif
