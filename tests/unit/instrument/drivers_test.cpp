// What the instrument's platform has from its start, and the call by which the library says that it has opened it.
#include "instrument/drivers.h"

#include "unit/instrument/device_bus.h"

namespace qxtest {
namespace {

using Lines = std::vector<std::string>;
using AnnounceService = Devices;

// No fixture: nothing has loaded them but the start of the program.
TEST(Drivers, AreThereFromTheStart) {
  for (const LPCWSTR name : {u"I2C5:", u"GIO1:"}) {
    const HANDLE device = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(device, INVALID_HANDLE_VALUE) << GetLastError();
    EXPECT_TRUE(CloseHandle(device));
  }
}

TEST_F(AnnounceService, SucceedsAndIsListed) {
  EXPECT_EQ(QxSystemAnnounceService(), 0);
  EXPECT_EQ(Listed(), Lines{"QxSystem 12() = 0"});
}

TEST_F(AnnounceService, IsReachedByFaults) {
  Fault("QxSystem", std::int64_t{12}, 31);
  EXPECT_EQ(QxSystemAnnounceService(), -1);
}

}  // namespace
}  // namespace qxtest
