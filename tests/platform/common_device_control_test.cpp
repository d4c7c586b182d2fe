// Drivers on this host: what DeviceIoControl hands to them, and those that list their calls under a name of their own.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "common/calls/calls.h"
#include "common/calls/errors.h"
#include "common/streams/devices.h"
#include "kernel_objects.h"

namespace {

using host::CallValue;

constexpr DWORD kEcho = 0x12340000;

// Gives back what it gets.
class EchoDriver final : public host::Stream {
 public:
  std::string Name() const override { return "ECH1:"; }
  BOOL Read(void*, DWORD, DWORD*) override { return host::Fail(ERROR_NOT_SUPPORTED, FALSE); }
  BOOL Write(const void*, DWORD, DWORD*) override { return host::Fail(ERROR_NOT_SUPPORTED, FALSE); }
  BOOL Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned) override {
    if (code != kEcho) return Stream::Control(code, in, in_bytes, out, out_bytes, returned);
    if (out_bytes < in_bytes) return host::Fail(ERROR_INSUFFICIENT_BUFFER, FALSE);
    if (in_bytes != 0) std::memcpy(out, in, in_bytes);
    *returned = in_bytes;
    return TRUE;
  }
};

class HostDevices : public testing::Test {
 protected:
  HostDevices() {
    host::RegisterDevice(
        "ECH1:", [](const host::OpenRequest&) { return std::make_shared<EchoDriver>(); }, "ECH1:");
    host::EnableCallLog(true);
    host::CallsSince(0, &start_);
  }
  ~HostDevices() override {
    host::ClearFaults();
    host::EnableCallLog(false);
    host::UnregisterDevice("ECH1:");
  }

  static HANDLE Open() {
    return CreateFileW(TEXT("ech1:"), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  static void AddFault(std::string library, std::string call, std::uint32_t error, const char* on = nullptr) {
    host::Fault fault;
    fault.library = std::move(library);
    fault.call = std::move(call);
    fault.error = error;
    if (on != nullptr) fault.on = on;
    host::AddFault(fault);
  }
  /// "library call" of every listed call.
  std::vector<std::string> Listed() const {
    std::vector<std::string> calls;
    for (const host::CallRecord& record : host::CallsSince(start_, nullptr)) {
      calls.push_back(record.library + " " + std::get<std::string>(record.call));
    }
    return calls;
  }

  std::uint64_t start_ = 0;
};

using HostDeviceControl = HostDevices;
using HostDeviceCalls = HostDevices;
using Calls = std::vector<std::string>;

TEST_F(HostDeviceControl, HandsBothBuffersToTheDriver) {
  const platform_test::Handle device(Open());
  char in[] = "abc";
  char out[8] = {};
  DWORD returned = 77;
  EXPECT_TRUE(DeviceIoControl(device, kEcho, in, 3, out, sizeof out, &returned, nullptr));
  EXPECT_EQ(returned, 3u);
  EXPECT_STREQ(out, "abc");
}

TEST_F(HostDeviceControl, TakesEmptyBuffersAndNoPlaceForTheCount) {
  const platform_test::Handle device(Open());
  char bytes[] = "abc";
  EXPECT_TRUE(DeviceIoControl(device, kEcho, nullptr, 0, nullptr, 0, nullptr, nullptr));
  EXPECT_TRUE(DeviceIoControl(device, kEcho, bytes, 3, bytes, 3, nullptr, nullptr));
}

TEST_F(HostDeviceControl, ReturnsNothingWhenItFails) {
  const platform_test::Handle device(Open());
  char bytes[] = "abc";
  DWORD returned = 77;
  EXPECT_FALSE(DeviceIoControl(device, kEcho, bytes, 3, bytes, 2, &returned, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(returned, 0u);
}

TEST_F(HostDeviceControl, RefusesMissingBuffersAndOverlappedCalls) {
  const platform_test::Handle device(Open());
  char bytes[] = "abc";
  DWORD returned = 0;
  OVERLAPPED overlapped = {};
  const auto refused = [](BOOL result) { return !result && GetLastError() == ERROR_INVALID_PARAMETER; };
  EXPECT_TRUE(refused(DeviceIoControl(device, kEcho, nullptr, 3, bytes, 3, &returned, nullptr)));
  EXPECT_TRUE(refused(DeviceIoControl(device, kEcho, bytes, 3, nullptr, 3, &returned, nullptr)));
  EXPECT_TRUE(refused(DeviceIoControl(device, kEcho, bytes, 3, bytes, 3, &returned, &overlapped)));
}

TEST_F(HostDeviceControl, ACodeNobodyKnowsIsNotSupported) {
  const platform_test::Handle device(Open());
  DWORD returned = 0;
  EXPECT_FALSE(DeviceIoControl(device, 1, nullptr, 0, nullptr, 0, &returned, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
}

TEST_F(HostDeviceControl, IsReachedByFaultsOnItsDevice) {
  const platform_test::Handle device(Open());
  AddFault("COREDLL", "DeviceIoControl", 21, "COM5:");
  EXPECT_TRUE(DeviceIoControl(device, kEcho, nullptr, 0, nullptr, 0, nullptr, nullptr));
  AddFault("COREDLL", "DeviceIoControl", 22, "ECH1:");
  EXPECT_FALSE(DeviceIoControl(device, kEcho, nullptr, 0, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), 22u);
  EXPECT_EQ(Listed().back(), "COREDLL DeviceIoControl");
}

TEST_F(HostDeviceCalls, AreListedUnderTheDevicesOwnNameAndNotTwice) {
  const HANDLE device = Open();
  DeviceIoControl(device, kEcho, nullptr, 0, nullptr, 0, nullptr, nullptr);
  CloseHandle(device);
  const auto records = host::CallsSince(start_, nullptr);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Listed(), (Calls{"ECH1: open", "ECH1: close"}));
  EXPECT_EQ(records[0].result, CallValue(static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(device))));
  EXPECT_EQ(records[1].result, CallValue(std::int64_t{TRUE}));
  EXPECT_TRUE(records[0].args.empty() && records[1].args.empty());
}

TEST_F(HostDeviceCalls, FaultsOnThePlatformsOwnCallReachTheOpening) {
  AddFault("COREDLL", "CreateFileW", 55, "ECH1:");
  EXPECT_EQ(Open(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 55u);
  EXPECT_EQ(Listed(), Calls{"COREDLL CreateFileW"}) << "the device has not been reached";
  CloseHandle(Open());
}

TEST_F(HostDeviceCalls, FaultsOnTheDevicesOwnCallReachTheOpening) {
  AddFault("ECH1:", "open", 56);
  EXPECT_EQ(Open(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 56u);
  EXPECT_EQ(host::CallsSince(start_, nullptr).back().result, CallValue(std::int64_t{-1}));
}

TEST_F(HostDeviceCalls, AClosingThatFailsLeavesTheDeviceOpen) {
  const HANDLE device = Open();
  AddFault("ECH1:", "close", 57);
  EXPECT_FALSE(CloseHandle(device));
  EXPECT_EQ(GetLastError(), 57u);
  EXPECT_TRUE(DeviceIoControl(device, kEcho, nullptr, 0, nullptr, 0, nullptr, nullptr));
  EXPECT_TRUE(CloseHandle(device));
  EXPECT_FALSE(CloseHandle(device));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(Listed(), (Calls{"ECH1: open", "ECH1: close", "ECH1: close"}));
}

TEST_F(HostDeviceCalls, OfADeviceThatIsGoneAreThePlatformsAgain) {
  host::UnregisterDevice("ECH1:");
  EXPECT_EQ(Open(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Listed(), Calls{"COREDLL CreateFileW"});
}

}  // namespace
