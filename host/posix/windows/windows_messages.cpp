#include "common/windows/windows_messages.h"

#include <memory>
#include <optional>

#include "common/calls/call_procedure.h"
#include "common/calls/errors.h"
#include "common/sync/threads.h"
#include "posix/sync/thread_state.h"
#include "posix/windows/message_queue.h"
#include "posix/windows/window_table.h"

namespace host {
namespace {

WNDPROC ProcedureOf(HWND handle) {
  KernelLock lock;
  const Window* window = FindWindowByHandle(handle);
  return window != nullptr ? window->procedure : nullptr;
}

LRESULT Call(WNDPROC procedure, const MSG& call) {
  return CallProcedure(procedure, call.hwnd, call.message, call.wParam, call.lParam);
}

MSG ToMsg(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  MSG made = {};
  made.hwnd = window;
  made.message = message;
  made.wParam = wparam;
  made.lParam = lparam;
  return made;
}

// A message that is taken off the queue is always answered, also when its window goes while it is handled.
void HandleSent(ThreadState& thread, SentMessage& sent) {
  std::optional<LRESULT> result;
  if (const WNDPROC procedure = ProcedureOf(sent.call().hwnd)) {
    ++thread.receiving;
    thread.message_number = sent.number();
    result = Call(procedure, sent.call());
    --thread.receiving;
  }
  KernelLock lock;
  sent.Answer(lock, result);
}

void HandleAllSent(ThreadState& thread) {
  const auto queue = QueueOf(thread);
  const auto take = [&] {
    KernelLock lock;
    return queue->TakeSent();
  };
  while (const auto message = take()) HandleSent(thread, *message);
}

// While the sender waits it handles what is sent to it, so that two threads may send to each other.
LRESULT WaitForAnswer(ThreadState& thread, const std::shared_ptr<SentMessage>& message) {
  do {
    HandleAllSent(thread);
    thread.waiter.Add(message);
  } while (WaitWithInput(thread, QS_SENDMESSAGE, true, INFINITE) != WAIT_OBJECT_0);
  const auto result = message->result();
  return result ? *result : Fail(ERROR_INVALID_WINDOW_HANDLE, LRESULT{0});
}

std::optional<MSG> LookForPosted(ThreadState& thread, const MessageFilter& filter, bool remove) {
  HandleAllSent(thread);
  KernelLock lock;
  const auto found = thread.queue->Look(filter, remove);
  if (!found) return std::nullopt;
  if (remove) thread.message_number = found->number;
  return found->message;
}

}  // namespace

BOOL PostMessageW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  MSG posted = ToMsg(handle, message, wparam, lparam);
  posted.time = host::GetTickCount();
  KernelLock lock;
  const Window* window = FindWindowByHandle(handle);
  if (window == nullptr) return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  return window->queue->Post(lock, posted) ? TRUE : Fail(ERROR_NOT_ENOUGH_QUOTA, FALSE);
}

LRESULT SendMessageW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
  ThreadState& thread = CurrentThread();
  const MSG call = ToMsg(handle, message, wparam, lparam);
  WNDPROC procedure = nullptr;  // of a window of this thread
  std::shared_ptr<SentMessage> sent;
  {
    KernelLock lock;
    const Window* window = FindWindowByHandle(handle);
    if (window == nullptr) return Fail(ERROR_INVALID_WINDOW_HANDLE, LRESULT{0});
    if (window->queue == thread.queue) {
      procedure = window->procedure;
    } else {
      sent = std::make_shared<SentMessage>(call);
      window->queue->Send(lock, sent);
    }
  }
  return sent != nullptr ? WaitForAnswer(thread, sent) : Call(procedure, call);
}

BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
  if (window != nullptr && host::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, -1);
  ThreadState& thread = CurrentThread();
  for (;;) {
    if (const auto found = LookForPosted(thread, {window, first, last}, true)) {
      *message = *found;
      return found->message != WM_QUIT ? TRUE : FALSE;
    }
    WaitWithInput(thread, QS_ALLINPUT, false, INFINITE);
  }
}

BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
  if (window != nullptr && host::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  ThreadState& thread = CurrentThread();
  if ((remove & 0xFFFF0000u) == PM_QS_SENDMESSAGE) {
    HandleAllSent(thread);
    return FALSE;
  }
  const auto found = LookForPosted(thread, {window, first, last}, (remove & PM_REMOVE) != 0);
  if (found) *message = *found;
  return found ? TRUE : FALSE;
}

LRESULT DispatchMessageW(const MSG* message) {
  const WNDPROC procedure = ProcedureOf(message->hwnd);
  return procedure != nullptr ? Call(procedure, *message) : 0;
}

void PostQuitMessage(int code) {
  const auto& queue = QueueOf(CurrentThread());
  KernelLock lock;
  queue->PostQuit(code);
}

std::uint64_t MessageNumber() { return CurrentThread().message_number; }

BOOL InSendMessage() { return CurrentThread().receiving != 0 ? TRUE : FALSE; }

}  // namespace host
