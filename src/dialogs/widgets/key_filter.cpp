#include "dialogs/widgets/key_filter.h"

namespace quiverion {
namespace {

constexpr std::u16string_view kNotInFileNames = u"\"?:<>|*.";

bool Contains(std::u16string_view text, char16_t c) {
  return text.find(c) != std::u16string_view::npos;
}

// The character that a number box accepts for `c`; 0 if it drops it.
char16_t NumberKey(KeyRule rule, std::u16string_view left, char16_t key, std::u16string_view right) {
  if (key >= u'0' && key <= u'9') return key;
  if (rule == KeyRule::digits) return 0;
  if (key == u'.' || key == u',') {
    const bool beforeMinus = rule == KeyRule::signedNumber && left.empty() && right.starts_with(u'-');
    return Contains(left, u'.') || Contains(right, u'.') || beforeMinus ? 0 : u'.';
  }
  if (key != u'-' || rule == KeyRule::unsignedNumber) return 0;
  const bool inFront = left.empty() && !right.starts_with(u'-');
  return rule == KeyRule::factor || inFront ? key : 0;
}

// The prefix never begins with a separator and never has two in a row.
char16_t PrefixKey(std::u16string_view left, char16_t key, std::u16string_view right) {
  if (Contains(kNotInFileNames, key)) return 0;
  if (key == u'/') key = u'\\';
  const bool misplaced = left.empty() || left.ends_with(u'\\') || right.starts_with(u'\\');
  return key == u'\\' && misplaced ? 0 : key;
}

char16_t PostfixKey(char16_t key) {
  return Contains(kNotInFileNames, key) || key == u'\\' || key == u'/' ? 0 : key;
}

char16_t Key(KeyRule rule, std::u16string_view left, char16_t key, std::u16string_view right) {
  if (key < 0x20 || key == 0x7F) return 0;
  if (rule == KeyRule::prefix) return PrefixKey(left, key, right);
  return rule == KeyRule::postfix ? PostfixKey(key) : NumberKey(rule, left, key, right);
}

}  // namespace

std::u16string FilterKeys(KeyRule rule, std::u16string_view left, std::u16string_view typed,
                          std::u16string_view right) {
  std::u16string before(left);
  for (const char16_t typedKey : typed) {
    if (const char16_t key = Key(rule, before, typedKey, right)) before.push_back(key);
  }
  return before.substr(left.size());
}

}  // namespace quiverion
