#include "dialogs/widgets/key_filter.h"

#include <gtest/gtest.h>

namespace quiverion {
namespace {

TEST(KeyFilter, TakesTheCharactersOfItsRule) {
  using enum KeyRule;
  const struct {
    KeyRule rule;
    std::u16string_view left, typed, right, taken;
  } cases[] = {
      {digits, u"", u"1a2.3,-4 \t\b", u"", u"1234"},
      {unsignedNumber, u"", u"1,5", u"", u"1.5"},
      {unsignedNumber, u"1.", u".,5", u"", u"5"},
      {unsignedNumber, u"", u".", u"5.2", u""},
      {unsignedNumber, u"", u"-1", u"", u"1"},
      {signedNumber, u"", u"-1.5E3", u"", u"-1.53"},
      {signedNumber, u"1", u"-", u"", u""},
      {signedNumber, u"", u"-", u"-1", u""},
      {signedNumber, u"", u".", u"-1", u""},  // a point before the sign
      {signedNumber, u"-", u".", u"1", u"."},
      {signedNumber, u"", u"1,2.3,4", u"", u"1.234"},
      {factor, u"1", u"-.", u"", u"-."},
      {factor, u"1.", u",2", u"", u"2"},
      {prefix, u"", u"\\a/b", u"", u"a\\b"},
      {prefix, u"a", u"\"?:<>|*.ü ", u"", u"ü "},
      {prefix, u"a\\", u"/", u"", u""},
      {prefix, u"a", u"//", u"", u"\\"},
      {prefix, u"a", u"/", u"\\b", u""},  // directly before a separator
      {postfix, u"", u"_\\/s.x:", u"", u"_sx"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(FilterKeys(c.rule, c.left, c.typed, c.right) == c.taken)
        << static_cast<int>(c.rule) << ": " << std::string(c.typed.begin(), c.typed.end());
  }
}

}  // namespace
}  // namespace quiverion
