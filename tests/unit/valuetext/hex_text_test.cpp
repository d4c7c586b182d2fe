// Bytes as hexadecimal text.
#include "commands/measure/valuetext/hex_text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cctype>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

std::string Hex(const Bytes& bytes) {
  std::string text;
  qxcm::BytesToHex(bytes.data(), bytes.size(), &text);
  return text;
}

TEST(BytesToHex, WritesTwoUpperCaseDigitsAByteHighDigitFirst) {
  EXPECT_EQ(Hex({0x0A, 0x1B}), "0A1B");
  EXPECT_EQ(Hex({0x00, 0xFF, 0x90, 0x09}), "00FF9009");
}

TEST(BytesToHex, AppendsToTheText) {
  std::string text = "VAL=";
  const std::uint8_t byte = 0xC3;
  qxcm::BytesToHex(&byte, 1, &text);
  EXPECT_EQ(text, "VAL=C3");
  qxcm::BytesToHex(nullptr, 0, &text);
  EXPECT_EQ(text, "VAL=C3");
}

TEST(HexToBytes, ReadsDigitsOfEitherCase) {
  Bytes bytes;
  EXPECT_TRUE(qxcm::HexToBytes("0A1b", &bytes));
  EXPECT_TRUE(qxcm::HexToBytes("cDeF09", &bytes));
  EXPECT_EQ(bytes, (Bytes{0x0A, 0x1B, 0xCD, 0xEF, 0x09}));
}

TEST(HexToBytes, TakesAnEmptyTextAsNoBytes) {
  Bytes bytes{1};
  EXPECT_TRUE(qxcm::HexToBytes("", &bytes));
  EXPECT_EQ(bytes, Bytes{1});
}

TEST(HexToBytes, RefusesAnOddNumberOfCharactersAndAppendsNothing) {
  Bytes bytes{1};
  EXPECT_FALSE(qxcm::HexToBytes("0A1", &bytes));
  EXPECT_FALSE(qxcm::HexToBytes("0", &bytes));
  EXPECT_EQ(bytes, Bytes{1});
}

TEST(HexToBytes, StopsAtAnotherCharacterAndKeepsThePairsBefore) {
  Bytes bytes;
  EXPECT_FALSE(qxcm::HexToBytes("0AZZ", &bytes));
  EXPECT_EQ(bytes, Bytes{0x0A});
  EXPECT_FALSE(qxcm::HexToBytes("0B1 0C", &bytes));
  EXPECT_EQ(bytes, (Bytes{0x0A, 0x0B}));
  EXPECT_FALSE(qxcm::HexToBytes("G0", &bytes));
  EXPECT_EQ(bytes, (Bytes{0x0A, 0x0B}));
}

TEST(HexToBytes, AcceptsTheTwentyTwoDigitsAndNoOtherCharacter) {
  for (int value = 0; value < 256; ++value) {
    const auto letter = static_cast<char>(value);
    const bool digit = std::string("0123456789ABCDEFabcdef").find(letter) != std::string::npos;
    Bytes bytes;
    EXPECT_EQ(qxcm::HexToBytes(std::string{letter, '0'}, &bytes), digit) << value;
    EXPECT_EQ(qxcm::HexToBytes(std::string{'0', letter}, &bytes), digit) << value;
    EXPECT_EQ(bytes.size(), digit ? 2u : 0u);
  }
}

TEST(HexText, OfAnyBytesReadsAsTheSameBytes) {
  EXPECT_TRUE(rc::check([](const Bytes& bytes) {
    Bytes read;
    RC_ASSERT(qxcm::HexToBytes(Hex(bytes), &read));
    RC_ASSERT(read == bytes);
  }));
}

TEST(HexText, OfAnyDigitsComesBackInUpperCase) {
  EXPECT_TRUE(rc::check([] {
    const auto digit = rc::gen::elementOf(std::string("0123456789ABCDEFabcdef"));
    const auto pairs = *rc::gen::container<std::vector<std::pair<char, char>>>(rc::gen::pair(digit, digit));
    std::string text;
    for (const auto& [high, low] : pairs) text.append({high, low});
    Bytes bytes;
    RC_ASSERT(qxcm::HexToBytes(text, &bytes));
    for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    RC_ASSERT(Hex(bytes) == text);
  }));
}

}  // namespace
