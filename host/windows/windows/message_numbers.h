// The numbers of messages on their way (see MessageNumber): the system carries none with a message.
//
// A number waits beside its message and is found by the message's window, kind and parameters when that is taken; of
// equal messages the first sent or posted is the first taken.
#ifndef QXHOST_WINDOWS_WINDOWS_MESSAGE_NUMBERS_H
#define QXHOST_WINDOWS_WINDOWS_MESSAGE_NUMBERS_H

#include <windows.h>

#include <cstdint>
#include <list>
#include <mutex>

namespace host {

struct Message {
  HWND window;
  UINT message;
  WPARAM wparam;
  LPARAM lparam;
};

bool operator==(const Message& left, const Message& right);

/// Whether messages of this kind get a number: those that applications register.
bool HasNumber(UINT message);

/// Posts a message that has a number. FALSE with last error 1816 when kMostPosted messages wait for the window already,
/// or as the system says.
BOOL PostNumbered(const Message& message);

/// The window has gone, and what was posted to it.
void DropPosted(HWND window);

/// A message that is being sent to another thread, for as long as its sender waits.
class SentNumber {
 public:
  explicit SentNumber(const Message& message);
  ~SentNumber();
  SentNumber(const SentNumber&) = delete;
  SentNumber& operator=(const SentNumber&) = delete;

  struct Waiting {
    Message message;
    std::uint64_t number;
  };

 private:
  std::list<Waiting>::iterator place_;
};

/// The calling thread has taken a posted message off its queue.
void TookPosted(const Message& message);
/// The calling thread begins to handle a message that another thread has sent.
void TookSent(const Message& message);

}  // namespace host

#endif
