// RD_FIL and WR_FIL.
#include <gtest/gtest.h>

#include <string>

#include "common/files/file_root.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using namespace std::string_literals;

const std::string kEnd = Status("EOF");

/// A file of these bytes, open under number 1.
class OpenFile : public testing::Test {
 protected:
  void Holding(std::string_view bytes) {
    service_.MakeFile("/file", bytes);
    service_.Open("/file");
  }
  std::string Line() { return service_.Answer("RD_FIL,HAN=1"); }
  std::string Bytes(int count) { return service_.Answer("RD_FIL,HAN=1,MOD=BIN,RBT=" + std::to_string(count)); }
  std::string Written() const { return service_.BytesOf("/file"); }
  static std::string Value(const std::string& text) { return "FIL,STS=SCS,VAL=" + text; }

  ControllerService service_;
};

using RD_FIL = OpenFile;
using WR_FIL = OpenFile;

// ---- RD_FIL, lines

TEST_F(RD_FIL, ReadsLineByLine) {
  Holding("ab\r\ncd");
  EXPECT_EQ(Line(), Value("ab"));
  EXPECT_EQ(Line(), Value("cd"));
  EXPECT_EQ(Line(), kEnd);
  EXPECT_EQ(Line(), kEnd);
}

TEST_F(RD_FIL, KnowsFourLineEnds) {
  for (const char* end : {"\r", "\n", "\r\n", "\n\r"}) {
    ControllerService service;
    service.MakeFile("/f", "one"s + end + "two" + end);
    service.Open("/f");
    EXPECT_EQ(service.Answer("RD_FIL,HAN=1"), Value("one"));
    EXPECT_EQ(service.Answer("RD_FIL,HAN=1"), Value("two"));
    EXPECT_EQ(service.Answer("RD_FIL,HAN=1"), kEnd);
  }
}

TEST_F(RD_FIL, TakesTwoEqualLineEndsForAnEmptyLine) {
  Holding("a\n\nb\r\rc\n\r\n");
  for (const char* line : {"a", "", "b", "", "c", ""}) EXPECT_EQ(Line(), Value(line));
  EXPECT_EQ(Line(), kEnd);
}

TEST_F(RD_FIL, EndsAtACtrlZAndStaysThere) {
  Holding(
      "ab\x1A"
      "cd\r\n");
  EXPECT_EQ(Line(), Value("ab"));
  EXPECT_EQ(Line(), kEnd);
}

TEST_F(RD_FIL, GoesOnBehindABlockThatBeginsWithACtrlZ) {
  Holding("\x1A" + std::string(1010, 'x') + "rest");
  EXPECT_EQ(Line(), kEnd);
  EXPECT_EQ(Line(), Value("rest"));
}

TEST_F(RD_FIL, EndsALineAtItsFirstZeroByte) {
  Holding("ab\0cd\r\nef"s);
  EXPECT_EQ(Line(), Value("ab"));
  EXPECT_EQ(Line(), Value("ef"));
}

TEST_F(RD_FIL, LooksForTheLineEndBehindAZeroByte) {
  Holding("\0\r\n\0"s);
  EXPECT_EQ(Line(), Value(""));
  EXPECT_EQ(Line(), Value(""));
  EXPECT_EQ(Line(), kEnd);
}

TEST_F(RD_FIL, EscapesCommasAndBackslashes) {
  Holding("a,b\\c,,\n");
  EXPECT_EQ(Line(), Value("a\\,b\\\\c\\,\\,"));
}

TEST_F(RD_FIL, PassesEveryOtherByteThrough) {
  std::string bytes;
  for (int c = 1; c < 256; ++c) {
    if (c != '\r' && c != '\n' && c != 26 && c != ',' && c != '\\') bytes.push_back(static_cast<char>(c));
  }
  Holding(bytes);
  EXPECT_EQ(Line(), Value(bytes));
}

TEST_F(RD_FIL, AnswersLinesOfUpTo1008Characters) {
  for (std::size_t length = 1007; length <= 1013; ++length) {
    ControllerService service;
    service.MakeFile("/f", std::string(length, 'x') + "\r\nnext");
    service.Open("/f");
    const bool fits = length <= 1008;
    EXPECT_EQ(service.Answer("RD_FIL,HAN=1"), fits ? Value(std::string(length, 'x')) : Status("ER_FAL")) << length;
    const std::string rest = length > 1011 ? std::string(length - 1011, 'x') : length == 1011 ? "" : "next";
    EXPECT_EQ(service.Answer("RD_FIL,HAN=1"), length == 1010 ? Value("") : Value(rest)) << length;
  }
}

TEST_F(RD_FIL, CountsTheEscapesOfALongLine) {
  Holding(std::string(504, ',') + "\n" + std::string(504, ',') + "x\n");
  std::string escaped;
  for (int i = 0; i < 504; ++i) escaped += "\\,";
  EXPECT_EQ(Line(), Value(escaped));
  EXPECT_EQ(Line(), Status("ER_FAL"));
  EXPECT_EQ(Line(), kEnd);
}

TEST_F(RD_FIL, LeavesTheSecondHalfOfALineEndBehindABlock) {
  Holding(std::string(1000, 'a') + "\n" + std::string(1010, 'b') + "\r\nc");
  EXPECT_EQ(Line(), Value(std::string(1000, 'a')));
  EXPECT_EQ(Line(), Status("ER_FAL"));  // 1010 characters and the CR fill a block
  EXPECT_EQ(Line(), Value(""));
  EXPECT_EQ(Line(), Value("c"));
}

TEST_F(RD_FIL, TakesAnyOtherModeForLines) {
  Holding("a\nb\nc\n");
  EXPECT_EQ(service_.Answer("RD_FIL,HAN=1,MOD=bin"), Value("a"));
  EXPECT_EQ(service_.Answer("RD_FIL,HAN=1,MOD=TXT,RBT=0"), Value("b"));
  EXPECT_EQ(service_.Answer("RD_FIL,HAN=1,MOD"), Value("c"));
}

// ---- RD_FIL, bytes

TEST_F(RD_FIL, ReadsBytesAsHexadecimal) {
  Holding("Hello\0\r\n\x1A\xFF"s);
  EXPECT_EQ(Bytes(5), Value("48656C6C6F"));
  EXPECT_EQ(Bytes(504), Value("000D0A1AFF"));
  EXPECT_EQ(Bytes(504), kEnd);
}

TEST_F(RD_FIL, ReadsUpTo504BytesAtOnce) {
  Holding(std::string(600, 'A'));
  std::string hex;
  for (int i = 0; i < 504; ++i) hex += "41";
  EXPECT_EQ(Bytes(504), Value(hex));
}

TEST_F(RD_FIL, RefusesOtherCountsBeforeItLooksAtTheNumber) {
  for (const char* count : {",RBT=505", ",RBT=0", ",RBT=-1", ",RBT=x", "", ",RBT", ",RBT=99999999999"}) {
    EXPECT_EQ(service_.Answer("RD_FIL,HAN=7,MOD=BIN"s + count), "ER_PRM") << count;
    EXPECT_EQ(service_.Answer("RD_FIL,MOD=BIN"s + count), "ER_PRM") << count;
  }
  EXPECT_EQ(service_.Answer("RD_FIL,HAN=7,MOD=BIN,RBT=1"), Status("ER_FNH"));
}

TEST_F(RD_FIL, WantsItsNumber) {
  EXPECT_EQ(service_.Answer("RD_FIL"), "ER_PRM");
  EXPECT_EQ(service_.Answer("RD_FIL,MOD=BIN,RBT=1"), "ER_PRM");
}

TEST_F(RD_FIL, ReportsThePlatformsCodeThroughTheTable) {
  Holding("text");
  {
    const Failing failing("ReadFile", ERROR_INVALID_HANDLE, 1, 2);
    EXPECT_EQ(Line(), Status("ER_FNH"));
    EXPECT_EQ(Bytes(1), Status("ER_FNH"));
  }
  EXPECT_EQ(Line(), Value("text"));
}

// ---- WR_FIL

TEST_F(WR_FIL, WritesALine) {
  Holding("");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=Hello"), kDone);
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=a\\,b\\\\c"), kDone);
  EXPECT_EQ(Written(), "Hello\r\na,b\\c\r\n");
}

TEST_F(WR_FIL, WritesAnEmptyLineForAValueWithoutText) {
  Holding("");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL"), kDone);
  EXPECT_EQ(Written(), "\r\n");
}

TEST_F(WR_FIL, WritesAtThePositionOverWhatIsThere) {
  Holding("0123456789");
  service_.Answer("SK_FIL,HAN=1,POS=2");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL=4142"), kDone);
  EXPECT_EQ(Written(), "01AB456789");
  EXPECT_EQ(Bytes(1), Value("34"));
}

TEST_F(WR_FIL, WritesBytesInEitherLetterCase) {
  Holding("");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL=00ff0dFf"), kDone);
  EXPECT_EQ(Written(), "\0\xFF\r\xFF"s);
}

TEST_F(WR_FIL, WritesNothingOfATextThatIsNoHexadecimal) {
  Holding("");
  for (const char* value : {"ABC", "A", "4G", "414", "41 ", "0x41"}) {
    EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL="s + value), "ER_PRM") << value;
  }
  EXPECT_EQ(Written(), "");
  EXPECT_EQ(service_.PlatformCalls({"WriteFile"}), Texts{});
}

TEST_F(WR_FIL, LooksAtTheNumberBeforeTheValue) {
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL=ABC"), Status("ER_FNH"));
}

TEST_F(WR_FIL, TakesAnyOtherModeForALine) {
  Holding("");
  service_.Answer("WR_FIL,HAN=1,MOD=bin,VAL=ABC");
  EXPECT_EQ(Written(), "ABC\r\n");
}

TEST_F(WR_FIL, WantsNumberAndValue) {
  Holding("");
  for (const char* command : {"WR_FIL", "WR_FIL,HAN=1", "WR_FIL,VAL=x", "WR_FIL,HAN=9"}) {
    EXPECT_EQ(service_.Answer(command), "ER_PRM") << command;
  }
}

TEST_F(WR_FIL, WritesAVeryLongLine) {
  Holding("");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=" + std::string(8000, 'x')), kDone);
  EXPECT_EQ(Written(), std::string(8000, 'x') + "\r\n");
}

TEST_F(WR_FIL, ReportsThePlatformsCodeThroughTheTable) {
  Holding("");
  const Failing failing("WriteFile", ERROR_HANDLE_DISK_FULL);
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=x"), Status("ER_FDF"));
  EXPECT_EQ(Written(), "");
}

TEST_F(WR_FIL, TellsThatTheDiskIsFullAndLeavesTheFileAsItWas) {
  Holding("ab");
  host::SetFreeFileSpace(3);
  service_.Answer("SK_FIL,HAN=1,POS=2");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=c"), kDone);
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL=64"), Status("ER_FDF"));
  EXPECT_EQ(Written(), "abc\r\n");
  service_.Answer("SK_FIL,HAN=1,POS=0");
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=xyz"), kDone);  // over what is there
}

TEST_F(WR_FIL, DoesNotNoticeAShortWrite) {
  Holding("");
  const Returning returning("WriteFile", 1);
  EXPECT_EQ(service_.Answer("WR_FIL,HAN=1,VAL=x"), kDone);
}

}  // namespace
}  // namespace qxtest
