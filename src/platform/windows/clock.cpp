#include "platform/process/clock.h"

#include <algorithm>

#include "platform/windows/paths.h"

namespace quiverion {
namespace {

// In some languages it contains blanks and direction marks that the files of the program cannot represent.
std::string PlainText(std::wstring text) {
  std::erase_if(text, [](wchar_t c) { return c == 0x200E || c == 0x200F; });
  std::ranges::replace_if(
      text, [](wchar_t c) { return c == 0x00A0 || c == 0x202F; }, L' ');
  return windows::Utf8FromUtf16(text);
}

}  // namespace

float SystemClock::SecondsSinceMidnight() const {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  return static_cast<float>(now.wHour * 3600 + now.wMinute * 60 + now.wSecond + now.wMilliseconds / 1000.0);
}

std::string SystemClock::DateAndTime() const {
  SYSTEMTIME now{};
  ::GetLocalTime(&now);
  wchar_t date[128] = L"", time[128] = L"";
  ::GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, &now, nullptr, date, 128, nullptr);
  ::GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &now, nullptr, time, 128);
  return PlainText(date) + " " + PlainText(time);
}

}  // namespace quiverion
