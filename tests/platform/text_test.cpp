#include "platform/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "generator/sample_files.h"

namespace quiverion::test {
namespace {

TEST(Windows1252, EveryByteHasACharacterAndComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  const std::string text = Utf8FromWindows1252(all);
  EXPECT_EQ(samples::Windows1252Bytes(text), all) << "another implementation reads it differently";
  const Windows1252Text back = Windows1252FromUtf8(text);
  EXPECT_EQ(back.bytes, all);
  EXPECT_TRUE(back.complete);
  EXPECT_EQ(CharacterCount(text), 256u);
}

TEST(Windows1252, UsesTheCharactersOfTheCodePage) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"\x80", "€"},        {"\x81", "\xC2\x81"}, {"\x8D", "\xC2\x8D"}, {"\x8F", "\xC2\x8F"},
      {"\x90", "\xC2\x90"}, {"\x9D", "\xC2\x9D"}, {"\x9F", "Ÿ"},        {"\x96", "–"},
      {"\xA0", "\xC2\xA0"}, {"cm\xB2", "cm²"},    {"\xC4\xDF", "Äß"},   {"\xFF", "ÿ"}};
  for (const auto& [bytes, text] : cases) EXPECT_EQ(Utf8FromWindows1252(bytes), text);
}

TEST(Windows1252, WritesAQuestionMarkForEachCharacterItLacks) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"aΔb", "a?b"},    {"Ā", "?"},        {"😀!", "?!"},
      {"\xC2\x80", "?"}, {"\xC2\x85", "?"}, {"\xEF\xBB\xBFü", "?\xFC"},
      {"\xC3", "?"},     {"\xFC", "?"},     {"Ä\xC0\xAF", "\xC4??"}};
  for (const auto& [text, bytes] : cases) {
    const Windows1252Text result = Windows1252FromUtf8(text);
    EXPECT_EQ(result.bytes, bytes);
    EXPECT_FALSE(result.complete) << text;
    EXPECT_FALSE(FitsWindows1252(text)) << text;
  }
  EXPECT_TRUE(FitsWindows1252("Düse 12 cm², 5 €"));
}

TEST(Utf8, TakesEveryLengthAndComesBack) {
  for (const char32_t c : {0x00u, 0x7Fu, 0x80u, 0x7FFu, 0x800u, 0xD7FFu, 0xE000u, 0xFFFFu, 0x10000u, 0x10FFFFu}) {
    std::string text;
    AppendUtf8(text, c);
    std::string_view rest = text;
    EXPECT_EQ(TakeCodePoint(rest), c);
    EXPECT_TRUE(rest.empty()) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(Utf8, CountsEveryInvalidByteAsOneCharacter) {
  struct Case {
    std::string_view text;
    std::size_t count;
    char32_t last;
  };
  constexpr char32_t bad = 0xFFFD;
  const Case cases[] = {{"", 0, 0},
                        {"Größe cm²", 9, U'²'},
                        {"😀", 1, 0x1F600},
                        {"\x80", 1, bad},              // continuation without a lead
                        {"\xC3", 1, bad},              // ends early
                        {"\xC3(", 2, U'('},            // the next character is not swallowed
                        {"\xE2\x82", 2, bad},          //
                        {"\xE2\x82\x41", 3, U'A'},     //
                        {"\xC0\xAF", 2, bad},          // overlong forms
                        {"\xC1\xBF", 2, bad},          //
                        {"\xE0\x9F\xBF", 3, bad},      //
                        {"\xF0\x8F\xBF\xBF", 4, bad},  //
                        {"\xED\xA0\x80", 3, bad},      // a surrogate
                        {"\xF4\x90\x80\x80", 4, bad},  // beyond U+10FFFF
                        {"\xF5\x80\x80\x80", 4, bad},
                        {"\xFE\xFF", 2, bad}};
  for (const Case& c : cases) {
    EXPECT_EQ(CharacterCount(c.text), c.count) << c.text;
    char32_t last = 0;
    for (std::string_view rest = c.text; !rest.empty();) last = TakeCodePoint(rest);
    EXPECT_EQ(last, c.last) << c.text;
  }
}

TEST(Text, TrimsBlanksOnly) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"  a b  ", "a b"}, {"   ", ""}, {"", ""}, {"\ta ", "\ta"}, {" \xC2\xA0 ", "\xC2\xA0"}, {"a", "a"}};
  for (const auto& [text, trimmed] : cases) EXPECT_EQ(TrimBlanks(text), trimmed);
}

TEST(Text, FoldsTheCaseOfAsciiLettersOnly) {
  EXPECT_EQ(AsciiUpper("aZ@[`{äß"), "AZ@[`{äß");
  EXPECT_TRUE(EqualsIgnoringCase("EventID", "eVENTid"));
  EXPECT_FALSE(EqualsIgnoringCase("Ä", "ä"));
  EXPECT_FALSE(EqualsIgnoringCase("abc", "abcd"));
  EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
}

TEST(FileNames, AreOrderedWithoutRegardToCase) {
  const std::vector<std::string> ordered = {"",  "A",  "a",  "a.vas", "A1",    "a10", "a2", "B",  "b", "Z",
                                            "z", "×",  "Ä",  "Ä.vas", "ä.vas", "Äa",  "äB", "Öl", "÷", "ÿ",
                                            "Ÿ", "Ÿb", "ÿc", "œ",     "Œa",    "œB",  "Šx", "šy"};
  std::vector<std::string> shuffled = ordered;
  std::mt19937_64 random(5);
  for (int turn = 0; turn < 20; ++turn) {
    std::shuffle(shuffled.begin(), shuffled.end(), random);
    std::sort(shuffled.begin(), shuffled.end(), FileNameLess);
    EXPECT_EQ(shuffled, ordered);
  }
  for (const std::string& name : ordered) EXPECT_FALSE(FileNameLess(name, name));
}

}  // namespace
}  // namespace quiverion::test
