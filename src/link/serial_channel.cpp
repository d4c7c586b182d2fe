// The serial channel: port set-up, the two threads and their queues.
#include "link/serial_channel.h"

namespace qxcm {

namespace {

constexpr DWORD kDriverBuffer = 1024;     // bytes, each way
constexpr DWORD kTransferTimeout = 5000;  // milliseconds for one read or write
constexpr int kMaskAttempts = 50;
constexpr DWORD kMaskRepeat = 10;   // milliseconds between attempts to end a pending comm wait
constexpr DWORD kRetryPause = 100;  // milliseconds after a port call failed
constexpr DWORD kEvents = EV_RXCHAR | EV_ERR;

void SetLineState(DCB& state) {
  state.BaudRate = CBR_38400;
  state.fBinary = 1;
  state.fParity = 0;
  state.fOutxCtsFlow = 0;
  state.fOutxDsrFlow = 0;
  state.fDtrControl = DTR_CONTROL_DISABLE;
  state.fDsrSensitivity = 0;
  state.fTXContinueOnXoff = 1;
  state.fOutX = 0;
  state.fInX = 0;
  state.fErrorChar = 0;
  state.fNull = 0;
  state.fRtsControl = RTS_CONTROL_ENABLE;
  state.fAbortOnError = 0;
  state.ByteSize = 8;
  state.Parity = NOPARITY;
  state.StopBits = ONESTOPBIT;
  state.XonChar = 0x11;
  state.XoffChar = 0x13;
}

}  // namespace

bool SerialChannel::Open(LPCWSTR port) {
  if (port_) return true;
  port_ = Handle(CreateFileW(port, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!port_) return false;
  if (Configure() && StartThreads()) return true;
  Close();
  return false;
}

bool SerialChannel::Configure() {
  SetupComm(port_.get(), kDriverBuffer, kDriverBuffer);
  DCB state = {};
  state.DCBlength = sizeof state;
  if (GetCommState(port_.get(), &state) == FALSE) return false;
  SetLineState(state);
  if (SetCommState(port_.get(), &state) == FALSE) return false;
  COMMTIMEOUTS timeouts = {};
  timeouts.ReadTotalTimeoutConstant = kTransferTimeout;
  timeouts.WriteTotalTimeoutConstant = kTransferTimeout;
  return SetCommTimeouts(port_.get(), &timeouts) != FALSE;
}

bool SerialChannel::StartThreads() {
  const HANDLE port = port_.get();
  stop_.Reset();
  const bool created = reader_.Create([=] { ReadLoop(port); }) && writer_.Create([=] { WriteLoop(port); });
  if (!created) stop_.Set();  // a lone reader ends at once; Close joins it
  if (created) {
    Guard guard(transmit_lock_);
    accepting_ = true;
    room_.Set();
  }
  const bool reads = !reader_.created() || reader_.Start();
  const bool writes = !writer_.created() || writer_.Start();
  return created && reads && writes;
}

void SerialChannel::StopThreads() {
  stop_.Set();
  Join(writer_);
  EndReader();
}

// A wait entered just after the mask was cleared would not see it: it is cleared until the reader has ended. Should
// that not help, closing the port ends the wait.
void SerialChannel::EndReader() {
  for (int attempt = 0; attempt < kMaskAttempts && !reader_.finished(); ++attempt) {
    SetCommMask(port_.get(), 0);
    if (WaitForSingleObject(reader_.handle(), kMaskRepeat) == WAIT_FAILED) Sleep(kMaskRepeat);
  }
  if (!reader_.finished()) port_.Close();
  Join(reader_);
}

void SerialChannel::Join(Thread& thread) {
  if (!lets_sent_messages_through()) return thread.Join();
  while (!thread.JoinLettingSentMessagesThrough(INFINITE)) {
  }
}

void SerialChannel::Close() {
  if (!port_) return;
  {
    Guard guard(transmit_lock_);
    accepting_ = false;
  }
  StopThreads();
  port_.Close();
  DiscardQueues();
}

void SerialChannel::DiscardQueues() {
  {
    Guard guard(receive_lock_);
    receive_queue_.clear();
  }
  Guard guard(transmit_lock_);
  transmit_queue_.clear();
  transmit_queue_.shrink_to_fit();
  send_.Reset();
  room_.Set();
}

void SerialChannel::TakeReceived(std::string& bytes) {
  bytes.clear();
  Guard guard(receive_lock_);
  bytes.swap(receive_queue_);
}

void SerialChannel::Write(std::string_view bytes) {
  Guard guard(transmit_lock_);
  if (!accepting_ || bytes.empty() || transmit_queue_.size() + bytes.size() > kTransmitLimit) return;
  const bool was_empty = transmit_queue_.empty();
  transmit_queue_.append(bytes);
  if (was_empty) send_.Set();
  if (transmit_queue_.size() > kTransmitRoom && room_.WasSet()) room_.Reset();
}

void SerialChannel::WaitForRoom(const Event& give_up) {
  while (!room_.WasSet() && !give_up.WasSet()) WaitForEither(give_up, room_);
}

void SerialChannel::PurgeReceive() { Purge(true); }

void SerialChannel::PurgeTransmit() { Purge(false); }

void SerialChannel::Purge(bool receive) {
  Guard guard(receive_lock_);
  if (receive) PurgeComm(port_.get(), PURGE_RXCLEAR);
  PurgeComm(port_.get(), PURGE_TXCLEAR);
  receive_queue_.clear();
}

void SerialChannel::ReadLoop(HANDLE port) {
  SetCommMask(port, kEvents);
  bool ok = ReceiveWaiting(port);  // bytes that came before the first wait raise no event
  while (!stop_.WasSet()) {
    DWORD events = 0;
    ok = ok && WaitCommEvent(port, &events, nullptr) != FALSE && events != 0;
    if (stop_.WasSet()) return;
    if (ok && (events & EV_RXCHAR) != 0) ok = ReceiveWaiting(port);
    if (ok) continue;
    // The port fails (an unplugged adapter): try again now and then until it is closed.
    if (WaitFor(stop_, kRetryPause)) return;
    SetCommMask(port, kEvents);
    ok = ReceiveWaiting(port);
  }
}

bool SerialChannel::ReceiveWaiting(HANDLE port) {
  DWORD errors = 0;
  COMSTAT status = {};
  if (ClearCommError(port, &errors, &status) == FALSE) return false;
  if (status.cbInQue == 0) return true;
  read_buffer_.resize(status.cbInQue);
  DWORD read = 0;
  if (ReadFile(port, read_buffer_.data(), status.cbInQue, &read, nullptr) == FALSE) return false;
  bool waiting = false;
  {
    Guard guard(receive_lock_);
    if (receive_queue_.size() < kReceiveLimit) receive_queue_.append(read_buffer_, 0, read);
    waiting = !receive_queue_.empty();
  }
  if (waiting) TellOwner();
  return true;
}

void SerialChannel::WriteLoop(HANDLE port) {
  std::string copy;
  for (;;) {
    const Woken woken = WaitForEither(stop_, send_);
    if (woken == Woken::kFirst) return;
    if (woken == Woken::kSecond && !WriteQueued(port, copy)) WaitFor(stop_, kRetryPause);
  }
}

bool SerialChannel::WriteQueued(HANDLE port, std::string& copy) {
  {
    Guard guard(transmit_lock_);
    copy.assign(transmit_queue_);
    if (copy.empty()) send_.Reset();  // once more, should the platform have refused it
  }
  if (copy.empty()) return true;
  DWORD written = 0;
  if (WriteFile(port, copy.data(), static_cast<DWORD>(copy.size()), &written, nullptr) == FALSE) return false;
  Guard guard(transmit_lock_);
  transmit_queue_.erase(0, written);
  if (transmit_queue_.empty()) send_.Reset();
  if (transmit_queue_.size() <= kTransmitRoom && !room_.WasSet()) room_.Set();
  return written > 0;
}

}  // namespace qxcm
