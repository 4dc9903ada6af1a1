#include "dialogs/frmShowProgress.h"

#include <QCloseEvent>

#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/time_text.h"
#include "platform/text/numbers.h"
#include "ui_frmShowProgress.h"

namespace quiverion {
std::string ProgressCaption(bool minimised, std::int32_t filesDone, std::int32_t fileCount) {
  if (!minimised) return "QuiverionSeries  -  Makro wird bearbeitet";
  const double percent = static_cast<double>(filesDone) / static_cast<double>(fileCount) * 100.0;
  return "QuiverionSeries (" + std::to_string(RoundToInt32(percent)) + "%)";
}

std::string RemainingText(const RunProgress& progress, double seconds) {
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ",  ") + part; };
  if (progress.filesDone > 0) {
    const double left = seconds / progress.filesDone * (progress.fileCount - progress.filesDone);
    add(RemainingTimeText(left));
  }
  if (progress.filesWithErrors == 1) add("1 Datei mit Fehlern");
  if (progress.filesWithErrors > 1) add(std::to_string(progress.filesWithErrors) + " Dateien mit Fehlern");
  return text;
}

frmShowProgress::frmShowProgress(UserInterface& messages)
    : messages_(messages), ui_(std::make_unique<Ui::frmShowProgress>()) {
  ui_->setupUi(this);
  time_.start();
  setWindowFlag(Qt::WindowMinimizeButtonHint);
}

frmShowProgress::~frmShowProgress() = default;

void frmShowProgress::Show(const RunProgress& progress) {
  ui_->pgbProgress->setMaximum(progress.fileCount);
  ui_->pgbProgress->setValue(progress.filesDone);
  if (progress.currentFile > 0) {
    ui_->lblFileName->setText(ToQt("Aktuelle Datei (" + std::to_string(progress.currentFile) + " von " +
                                   std::to_string(progress.fileCount) + "):  " + progress.fileName));
  }
  ui_->lblRunningEvent->setText(ToQt(progress.event));
  ui_->lblRemaining->setText(ToQt(RemainingText(progress, static_cast<double>(time_.elapsed()) / 1000.0)));
  if (progress.errorOccurred) ui_->Frame1->setTitle(QStringLiteral("Fortschritt  (Fehler aufgetreten)"));
  if (progress.filesDone != filesDone_) {
    filesDone_ = progress.filesDone;
    setWindowTitle(ToQt(ProgressCaption(isMinimized(), progress.filesDone, progress.fileCount)));
  }
}

void frmShowProgress::reject() {
  close();
}

void frmShowProgress::closeEvent(QCloseEvent* event) {
  if (asking_ || abortRequested_) return event->setAccepted(abortRequested_);  // closed again during the question
  asking_ = true;
  const MessageAnswer answer =
      messages_.Ask({.title = "QuiverionSeries  -  Makro-Ausführung abbrechen",
                     .text = "Damit wird die Makro-Ausführung beendet. Soll die Ausführung wirklich beendet werden?",
                     .buttons = MessageButtons::yesNo,
                     .icon = MessageIcon::question});
  asking_ = false;
  abortRequested_ = answer == MessageAnswer::yes;
  event->setAccepted(abortRequested_);
}

}  // namespace quiverion
