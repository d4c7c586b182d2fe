// The records of what the controller last asked for.
#include "api/request_records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

namespace {

using qxcm::RequestRecords;

template <class Body>
Body Filled(int byte) {
  Body body;
  std::memset(&body, byte, sizeof body);
  return body;
}

template <class Body>
bool Same(const Body& a, const Body& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Each rule holds for each kind of record.
template <class Body>
class RecordsOf : public ::testing::Test {};
using Kinds = ::testing::Types<QCM_MSR_PARAMS, QCM_EXECUTED_PROCESS_INFO, QCM_TURN_PARAMS, QCM_TARGET_SEARCH_PARAMS,
                               QCM_TARGET_SEARCH_RESULT, QCM_SAVED_IMAGE_PARAMS>;
class KindName {
 public:
  template <class Body>
  static std::string GetName(int index) {
    constexpr const char* kNames[] = {"Measurement", "Process", "Turn", "Search", "SearchResult", "Image"};
    return kNames[index];
  }
};
TYPED_TEST_SUITE(RecordsOf, Kinds, KindName);

TYPED_TEST(RecordsOf, HaveNothingAtFirstAndLeaveTheCallersBufferUntouched) {
  RequestRecords records;
  auto body = Filled<TypeParam>(0xCD);
  EXPECT_FALSE(records.Fetch(&body));
  EXPECT_TRUE(Same(body, Filled<TypeParam>(0xCD)));
}

TYPED_TEST(RecordsOf, GiveTheSameRequestAgainAndAgain) {
  RequestRecords records;
  const auto stored = Filled<TypeParam>(0x5A);
  records.Store(&stored);
  for (int i = 0; i < 2; ++i) {
    auto body = Filled<TypeParam>(0);
    EXPECT_TRUE(records.Fetch(&body));
    EXPECT_TRUE(Same(body, stored));
  }
}

TYPED_TEST(RecordsOf, GiveTheLastRequest) {
  RequestRecords records;
  const auto first = Filled<TypeParam>(1);
  const auto second = Filled<TypeParam>(2);
  records.Store(&first);
  records.Store(&second);
  auto body = Filled<TypeParam>(0);
  EXPECT_TRUE(records.Fetch(&body));
  EXPECT_TRUE(Same(body, second));
}

TYPED_TEST(RecordsOf, HaveNothingOnceARequestIsTakenBack) {
  RequestRecords records;
  const auto stored = Filled<TypeParam>(1);
  records.Store(&stored);
  records.Store<TypeParam>(nullptr);
  auto body = Filled<TypeParam>(0xCD);
  EXPECT_FALSE(records.Fetch(&body));
  EXPECT_TRUE(Same(body, Filled<TypeParam>(0xCD)));
}

TYPED_TEST(RecordsOf, AreCopiedWholeUnderTwoThreads) {
  RequestRecords records;
  std::thread writer([&] {
    for (int i = 0; i < 2000; ++i) {
      const auto body = Filled<TypeParam>(i % 2 == 0 ? 0x11 : 0x22);
      records.Store(&body);
    }
  });
  int torn = 0;
  for (int i = 0; i < 2000; ++i) {
    auto body = Filled<TypeParam>(0x11);
    records.Fetch(&body);
    if (!Same(body, Filled<TypeParam>(0x11)) && !Same(body, Filled<TypeParam>(0x22))) ++torn;
  }
  writer.join();
  EXPECT_EQ(torn, 0);
}

TEST(RequestRecords, OfOneKindDoNotTouchTheOthers) {
  RequestRecords records;
  const auto turn = Filled<QCM_TURN_PARAMS>(1);
  records.Store(&turn);
  QCM_MSR_PARAMS measurement;
  QCM_TARGET_SEARCH_PARAMS search;
  EXPECT_FALSE(records.Fetch(&measurement));
  EXPECT_FALSE(records.Fetch(&search));
}

}  // namespace
