#include "cli/terminal.h"

#include <algorithm>
#include <cmath>

#include "platform/process/environment.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::cli {
namespace {

std::string WithNewlines(std::string_view text) {
  std::string lines(text);
  std::erase(lines, '\r');
  return lines;
}

// True if the text leaves the terminal at the beginning of a line; the end of the colour may follow the line break.
bool EndsLine(std::string_view text) {
  constexpr std::string_view plainAgain = "\x1b[0m";
  if (text.ends_with(plainAgain)) text.remove_suffix(plainAgain.size());
  return text.ends_with('\n');
}

// "1:05"
std::string MinutesText(double seconds) {
  const long long whole = std::llround(seconds);
  const std::string rest = std::to_string(whole % 60);
  return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

// One line of at most 79 characters: a longer one would wrap, and only its last part could be erased.
std::string ProgressText(const RunProgress& progress, double seconds) {
  std::string text = "Datei " + std::to_string(progress.currentFile) + " von " + std::to_string(progress.fileCount);
  if (progress.filesDone > 0 && seconds > 0) {
    const double rate = progress.filesDone / seconds;
    const double rounded = rate < 10 ? std::max(1, RoundToInt32(rate * 10)) / 10.0 : RoundToInt32(rate);
    text += ", " + FormatNumber(rounded, ',') + " Dateien/s, noch " +
            MinutesText((progress.fileCount - progress.filesDone) / rate);
  }
  text += progress.errorOccurred ? " (Fehler aufgetreten): " : ": ";
  std::string_view event = progress.event;
  while (!event.empty() && CharacterCount(text) < 79) AppendUtf8(text, TakeCodePoint(event));
  return text;
}

}  // namespace

Terminal::Terminal(MessageAnswer onProblem)
    : onProblem_(onProblem),
      outputIsTerminal_(IsTerminal(StandardStream::output)),
      showProgress_(IsTerminal(StandardStream::error)) {}

void Terminal::Print(std::string_view text) {
  if (outputIsTerminal_) {
    EraseProgress();
    insideLine_ = !EndsLine(text);
  }
  if (!WriteToStream(StandardStream::output, text)) outputFailed_ = true;
}

void Terminal::PrintError(std::string_view text) {
  EraseProgress();
  std::string shown(text);
  if (showProgress_) ReplaceControls(shown, "\n\t");  // a terminal would execute them
  WriteToStream(StandardStream::error, shown);
}

MessageAnswer Terminal::Ask(const Message& message) {
  PrintError(message.title + "\n" + WithNewlines(message.text) + "\n");
  switch (message.buttons) {
    case MessageButtons::ok:
      return MessageAnswer::ok;
    case MessageButtons::okCancel:
    case MessageButtons::retryCancel:
    case MessageButtons::yesNoCancel:
      return MessageAnswer::cancel;
    case MessageButtons::yesNo:
      return MessageAnswer::no;
    case MessageButtons::abortRetryIgnore:
      break;
  }
  return onProblem_;
}

void Terminal::RunStarted(const RunProgress& /*progress*/) {
  start_ = lastShown_ = std::chrono::steady_clock::now();
}

void Terminal::ShowProgress(const RunProgress& progress) {
  if (insideLine_ || !IsTimeForProgress()) return;
  WriteProgress(ProgressText(progress, std::chrono::duration<double>(lastShown_ - start_).count()));
}

bool Terminal::IsTimeForProgress() {
  if (!showProgress_) return false;
  const Time now = std::chrono::steady_clock::now();
  if (now - lastShown_ < std::chrono::milliseconds(100)) return false;
  lastShown_ = now;
  return true;
}

void Terminal::WriteProgress(std::string_view text) {
  WriteToStream(StandardStream::error, "\r\x1b[K" + std::string(text));
  progressShown_ = true;
}

void Terminal::ComputationStarted() {
  start_ = lastShown_ = std::chrono::steady_clock::now();
}

void Terminal::ShowComputation(std::int64_t done, std::int64_t total) {
  if (IsTimeForProgress()) WriteProgress("Statistik: " + std::to_string(100 * done / total) + " %");
}

void Terminal::ComputationEnded() {
  EraseProgress();
}

void Terminal::RunEnded() {
  EraseProgress();
}

void Terminal::EraseProgress() {
  if (progressShown_) WriteToStream(StandardStream::error, "\r\x1b[K");
  progressShown_ = false;
}

bool Terminal::Yield() {
  return AbortRequested();
}

}  // namespace quiverion::cli
