#include "platform/text/text.h"

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
