// Splitting of command texts and the map of their fields.
#include "protocol/field_map.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <map>
#include <optional>
#include <string>

#include "unit/protocol/reference_codec.h"

namespace {

using qxcm::FieldMap;

/// A command with the text it was split from.
struct Split {
  explicit Split(std::string command) : text(std::move(command)) { good = qxcm::SplitCommand(text, &word, &fields); }
  Split(const Split&) = delete;
  Split& operator=(const Split&) = delete;

  std::string Value(std::string_view key) const {
    const auto* value = fields.Find(key);
    return value == nullptr ? "(absent)" : std::string(*value);
  }

  std::string text;
  std::string_view word;
  FieldMap fields;
  bool good = false;
};

TEST(SplitCommand, OfAWordAloneHasNoFields) {
  const Split command("GT_CLK");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.word, "GT_CLK");
  EXPECT_EQ(command.fields.size(), 0u);
}

TEST(SplitCommand, GivesEachKeyItsValue) {
  const Split command("ST_OMD,ANG=1,KEY=0");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.word, "ST_OMD");
  EXPECT_EQ(command.Value("ANG"), "1");
  EXPECT_EQ(command.Value("KEY"), "0");
  EXPECT_EQ(command.fields.size(), 2u);
}

TEST(SplitCommand, GivesAKeyWithoutEqualsAnEmptyValue) {
  const Split command("GT_OMD,ANG");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.Value("ANG"), "");
}

TEST(SplitCommand, RefusesAKeyWithEqualsAndNothingBehind) {
  EXPECT_FALSE(Split("ST_OMD,ANG=").good);
  EXPECT_FALSE(Split("ST_OMD,ANG=,KEY=1").good);
}

TEST(SplitCommand, RefusesAnEmptyKey) {
  EXPECT_FALSE(Split("ST_OMD,=1").good);
  EXPECT_FALSE(Split("ST_OMD,=").good);
  EXPECT_FALSE(Split("ST_OMD,==").good);
}

TEST(SplitCommand, RefusesTheSameKeyTwice) {
  EXPECT_FALSE(Split("ST_OMD,ANG=1,ANG=1").good);
  EXPECT_FALSE(Split("ST_OMD,ANG,KEY=1,ANG=1").good);
  EXPECT_FALSE(Split("ST_OMD,ANG,ANG").good);
}

TEST(SplitCommand, TellsTheWordOfAMalformedCommand) {
  EXPECT_EQ(Split("ST_OMD,ANG=").word, "ST_OMD");
  EXPECT_EQ(Split("ST_OMD,A=1,A=2").word, "ST_OMD");
}

TEST(SplitCommand, ComparesKeysByteByByte) {
  const Split command("X,ang=1,ANG=2");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.Value("ang"), "1");
  EXPECT_EQ(command.Value("ANG"), "2");
  EXPECT_EQ(command.Value("Ang"), "(absent)");
}

TEST(SplitCommand, KeepsFurtherEqualsInTheValue) {
  EXPECT_EQ(Split("X,A=b=c").Value("A"), "b=c");
  EXPECT_EQ(Split("X,A==").Value("A"), "=");
}

TEST(SplitCommand, MakesNoTokensOfRunsOfCommas) {
  const Split command("X,,,A=1,,B=2,,");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.fields.size(), 2u);
}

TEST(SplitCommand, OfAWordAndCommasHasNoFields) {
  const Split command("X,,,");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.word, "X");
  EXPECT_EQ(command.fields.size(), 0u);
}

TEST(SplitCommand, SkipsLeadingCommas) { EXPECT_EQ(Split(",,X,A=1").word, "X"); }

TEST(SplitCommand, OfCommasOnlyOrNothingHasNoWord) {
  EXPECT_EQ(Split(",,,").word, "");
  EXPECT_EQ(Split("").word, "");
  EXPECT_TRUE(Split("").good);
}

TEST(SplitCommand, TakesAnythingAsTheWord) {
  EXPECT_EQ(Split("A=1,B=2").word, "A=1");
  EXPECT_EQ(Split("=,B=2").word, "=");
  EXPECT_TRUE(Split("=,B=2").good);
}

TEST(SplitCommand, DoesNotCutAtAnEscapedComma) {
  const Split command(R"(X,A=b\,c,B=2)");
  EXPECT_EQ(command.Value("A"), "b,c");
  EXPECT_EQ(command.Value("B"), "2");
}

TEST(SplitCommand, CutsAtACommaBehindAnEvenNumberOfBackslashes) {
  const Split command(R"(X,A=b\\,C=d)");
  EXPECT_EQ(command.Value("A"), R"(b\)");
  EXPECT_EQ(command.Value("C"), "d");
  EXPECT_EQ(Split(R"(X,A=b\\\,c)").Value("A"), R"(b\,c)");
}

TEST(SplitCommand, RemovesEscapesFromValues) {
  EXPECT_EQ(Split(R"(X,A=\a\b)").Value("A"), "ab");
  EXPECT_EQ(Split(R"(X,A=\\\\)").Value("A"), R"(\\)");
}

TEST(SplitCommand, MakesAnEmptyValueOfOneTrailingBackslash) {
  const Split command(R"(X,A=\)");
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.Value("A"), "");
  EXPECT_EQ(Split(R"(X,A=b\)").Value("A"), "b");
}

TEST(SplitCommand, KeepsBackslashesInKeysAndWords) {
  const Split command(R"(W\,ord,K\,ey=1,Flag\\)");
  EXPECT_EQ(command.word, R"(W\,ord)");
  EXPECT_EQ(command.Value(R"(K\,ey)"), "1");
  EXPECT_EQ(command.Value(R"(Flag\\)"), "");
}

TEST(SplitCommand, TakesAnEqualsBehindABackslashAsTheEndOfTheKey) { EXPECT_EQ(Split(R"(X,A\=1)").Value(R"(A\)"), "1"); }

TEST(SplitCommand, ForgetsTheFieldsOfTheCommandBefore) {
  FieldMap fields;
  std::string_view word;
  std::string first = "X,A=1,B=2";
  std::string second = "Y,C=3";
  ASSERT_TRUE(qxcm::SplitCommand(first, &word, &fields));
  ASSERT_TRUE(qxcm::SplitCommand(second, &word, &fields));
  EXPECT_EQ(fields.size(), 1u);
  EXPECT_FALSE(fields.Has("A"));
}

TEST(SplitCommand, TakesThousandsOfFields) {
  std::string text = "X";
  for (int i = 0; i < 1500; ++i) text += ",K" + std::to_string(i);
  const Split command(text);
  EXPECT_TRUE(command.good);
  EXPECT_EQ(command.fields.size(), 1500u);
  EXPECT_TRUE(command.fields.Has("K749"));
}

TEST(FieldMap, FindsNothingWhenEmpty) {
  EXPECT_EQ(FieldMap().Find("ANG"), nullptr);
  EXPECT_FALSE(FieldMap().Has(""));
}

TEST(SplitCommand, DoesWhatALiteralSplitterDoes) {
  EXPECT_TRUE(rc::check([] {
    const auto text = *rc::gen::container<std::string>(rc::gen::elementOf(std::string(",,==\\\\abA")));
    const qxtest::ReferenceCommand expected = qxtest::ReferenceSplit(text);
    const Split command(text);
    RC_ASSERT(command.word == expected.word);
    RC_ASSERT(command.good == expected.fields.has_value());
    if (!command.good) return;
    RC_ASSERT(command.fields.size() == expected.fields->size());
    for (const auto& [key, value] : *expected.fields) RC_ASSERT(command.Value(key) == value);
  }));
}

}  // namespace
