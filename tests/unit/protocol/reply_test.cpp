// Reply texts.
#include "protocol/reply.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using qxcm::Reply;

TEST(Reply, IsItsWordAloneWithoutFields) { EXPECT_EQ(Reply("OMD").text(), "OMD"); }

TEST(Reply, AppendsFieldsInTheOrderTheyAreAdded) {
  EXPECT_EQ(Reply("FIL").Add("STS", "SCS").AddInt("B", 2).AddInt("A", 1).text(), "FIL,STS=SCS,B=2,A=1");
}

TEST(Reply, PutsValuesInAsTheyStand) { EXPECT_EQ(Reply("X").Add("K", "a,b\\=").text(), "X,K=a,b\\="); }

TEST(Reply, TakesAnEmptyValue) { EXPECT_EQ(Reply("X").Add("K", "").text(), "X,K="); }

TEST(Reply, WritesEveryIntegerInDecimal) {
  EXPECT_EQ(Reply("X").AddInt("K", 0).AddInt("L", -7).text(), "X,K=0,L=-7");
  EXPECT_EQ(Reply("X").AddInt("K", std::numeric_limits<std::int32_t>::min()).text(), "X,K=-2147483648");
}

TEST(Reply, WritesHexadecimalInUpperCaseWithAtLeastSoManyDigits) {
  EXPECT_EQ(Reply("X").AddHex("K", 0x0A, 2).text(), "X,K=0A");
  EXPECT_EQ(Reply("X").AddHex("K", 0xABCDE, 2).text(), "X,K=ABCDE");
  EXPECT_EQ(Reply("X").AddHex("K", 0, 8).text(), "X,K=00000000");
  EXPECT_EQ(Reply("X").AddHex("K", 0xFFFFFFFF, 2).text(), "X,K=FFFFFFFF");
}

TEST(Reply, GrowsWithLongValues) {
  const std::string value(10000, 'v');
  EXPECT_EQ(Reply("X").Add("K", value).AddInt("L", 1).text(), "X,K=" + value + ",L=1");
}

}  // namespace
