#include "platform/clock.h"
#include "platform/windows_paths.h"

namespace quiverion {

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
  return windows::Utf8FromUtf16(date) + " " + windows::Utf8FromUtf16(time);
}

}  // namespace quiverion
