#include "controller_line.h"

#include <gtest/gtest.h>

HANDLE OpenPort(LPCWSTR name) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

OpenedPort::OpenedPort(DWORD timeout) : port_(OpenPort()) {
  COMMTIMEOUTS timeouts = {};
  timeouts.ReadTotalTimeoutConstant = timeout;
  timeouts.WriteTotalTimeoutConstant = timeout;
  EXPECT_NE(port_, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(SetCommTimeouts(port_, &timeouts));
  EXPECT_TRUE(SetCommMask(port_, EV_RXCHAR | EV_ERR));
}

OpenedPort::~OpenedPort() { CloseHandle(port_); }

std::string OpenedPort::Read(DWORD bytes) {
  std::string text(bytes, '\0');
  DWORD read = 0;
  EXPECT_TRUE(ReadFile(port_, &text[0], bytes, &read, nullptr));
  text.resize(read);
  return text;
}

DWORD OpenedPort::Write(std::string_view bytes) {
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(port_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
  return written;
}

DWORD OpenedPort::Waiting() {
  COMSTAT status = {};
  DWORD errors = 1;
  EXPECT_TRUE(ClearCommError(port_, &errors, &status));
  EXPECT_EQ(errors, 0u);
  return status.cbInQue;
}
