// The controller's end on Windows: another serial port of the system, which the line's maker has joined to the port's.
#include <gtest/gtest.h>
#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "common/ports/ports.h"
#include "controller_line.h"
#include "win32_system_calls.h"

namespace {

using Clock = std::chrono::steady_clock;
using platform_test::SystemCall;

/// A line of two serial ports, as long as the connection to their maker lasts: it listens on the port QX_LINES.
class TwoPorts {
 public:
  TwoPorts() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const char* maker = std::getenv("QX_LINES");
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(std::atoi(maker != nullptr ? maker : "")));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    maker_ = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(maker_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("nobody makes serial lines: start the tests with scripts/wine");
    }
    ReadNames();
  }
  TwoPorts(const TwoPorts&) = delete;
  TwoPorts& operator=(const TwoPorts&) = delete;
  ~TwoPorts() {
    closesocket(maker_);
    WSACleanup();
  }

  std::string instruments() const { return names_.substr(0, names_.find(' ')); }
  std::string controllers() const { return names_.substr(names_.find(' ') + 1); }

 private:
  // "COM10 COM11" and the end of the line.
  void ReadNames() {
    for (char c = 0; recv(maker_, &c, 1, 0) == 1 && c != '\n';) names_.push_back(c);
  }

  SOCKET maker_;
  std::string names_;
};

/// A serial port opened past the host.
class SystemPort {
 public:
  explicit SystemPort(const std::string& name)
      : port_(CreateFileA(("\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                          FILE_FLAG_OVERLAPPED, nullptr)),
        event_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
    EXPECT_NE(port_, INVALID_HANDLE_VALUE) << name;
  }
  SystemPort(const SystemPort&) = delete;
  SystemPort& operator=(const SystemPort&) = delete;
  ~SystemPort() {
    SystemCall<decltype(::CloseHandle)>("CloseHandle")(event_);
    SystemCall<decltype(::CloseHandle)>("CloseHandle")(port_);
  }

  DWORD Write(std::string_view bytes) {
    const auto size = static_cast<DWORD>(bytes.size());
    return Moved([&](OVERLAPPED* pending) {
      return SystemCall<decltype(::WriteFile)>("WriteFile")(port_, bytes.data(), size, nullptr, pending);
    });
  }

  /// As many bytes as have come, without waiting.
  DWORD Read(char* buffer, DWORD most) {
    DWORD errors = 0;
    COMSTAT status = {};
    SystemCall<decltype(::ClearCommError)>("ClearCommError")(port_, &errors, &status);
    const DWORD size = std::min(most, status.cbInQue);
    return size == 0 ? 0 : Moved([&](OVERLAPPED* pending) {
      return SystemCall<decltype(::ReadFile)>("ReadFile")(port_, buffer, size, nullptr, pending);
    });
  }

 private:
  template <class Call>
  DWORD Moved(Call call) {
    OVERLAPPED pending = {};
    pending.hEvent = event_;
    DWORD count = 0;
    EXPECT_TRUE(call(&pending) != FALSE || GetLastError() == ERROR_IO_PENDING) << GetLastError();
    EXPECT_TRUE(GetOverlappedResult(port_, &pending, &count, TRUE)) << GetLastError();
    return count;
  }

  const HANDLE port_;
  const HANDLE event_;
};

}  // namespace

struct ControllerLine::End {
  TwoPorts ports;
  SystemPort port{ports.controllers()};
};

ControllerLine::ControllerLine(std::string port) : port_(std::move(port)), end_(std::make_unique<End>()) {
  host::AttachDevice(port_, end_->ports.instruments());
}

ControllerLine::~ControllerLine() { host::DetachPort(port_); }

void ControllerLine::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const DWORD count = end_->port.Write(bytes);
    ASSERT_GT(count, 0u);
    bytes.remove_prefix(count);
  }
}

std::string ControllerLine::Receive(std::size_t bytes, std::chrono::milliseconds time) {
  std::string received(bytes, '\0');
  std::size_t count = 0;
  for (const auto end = Clock::now() + time; count < bytes;) {
    const DWORD got = end_->port.Read(&received[count], static_cast<DWORD>(bytes - count));
    count += got;
    if (got == 0 && Clock::now() >= end) break;
    if (got == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  received.resize(count);
  return received;
}
