// The controller's end of a port's line, for tests of the serial calls.
#ifndef QXTEST_PLATFORM_CONTROLLER_LINE_H
#define QXTEST_PLATFORM_CONTROLLER_LINE_H

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// Gives a port a line of its own for as long as the object lives, and is the controller on it.
class ControllerLine {
 public:
  explicit ControllerLine(std::string port = "COM5:");
  ~ControllerLine();
  ControllerLine(const ControllerLine&) = delete;
  ControllerLine& operator=(const ControllerLine&) = delete;

  /// Sends all bytes, however long the line takes.
  void Send(std::string_view bytes);
  /// Waits until so many bytes have come, or for the time; returns what has come.
  std::string Receive(std::size_t bytes, std::chrono::milliseconds time = std::chrono::seconds(5));

 private:
  struct End;  // the host's

  const std::string port_;
  const std::unique_ptr<End> end_;
};

/// Opens the port as the library does; invalid when it cannot be opened.
HANDLE OpenPort(LPCWSTR name = TEXT("COM5:"));

/// A port that is open for the length of a test, with time-outs in milliseconds and a mask for received bytes.
class OpenedPort {
 public:
  explicit OpenedPort(DWORD timeout = 2000);
  ~OpenedPort();
  OpenedPort(const OpenedPort&) = delete;
  OpenedPort& operator=(const OpenedPort&) = delete;
  operator HANDLE() const { return port_; }

  /// Reads as many bytes; fewer when the time is over.
  std::string Read(DWORD bytes);
  /// Writes the bytes; returns how many have gone.
  DWORD Write(std::string_view bytes);
  /// Bytes received and not yet read.
  DWORD Waiting();

 private:
  HANDLE port_;
};

#endif
