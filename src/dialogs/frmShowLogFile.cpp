#include "dialogs/frmShowLogFile.h"

#include <QPrintDialog>
#include <QPrinter>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBlock>
#include <QTextCursor>

#include "dialogs/widgets/native.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "log/log_lines.h"
#include "log/log_writers.h"
#include "macro/log_messages.h"
#include "messages/system_error.h"
#include "platform/files/result_file.h"
#include "platform/text/text.h"
#include "ui_frmShowLogFile.h"

namespace quiverion {
namespace {

// Writes the pieces of a log into a document.
class DocumentSink : public LogSink {
 public:
  DocumentSink(QTextDocument* document, const LogColours& colours) : cursor_(document), colours_(colours) {
    cursor_.beginEditBlock();
  }
  ~DocumentSink() override { cursor_.endEditBlock(); }
  DocumentSink(const DocumentSink&) = delete;
  DocumentSink& operator=(const DocumentSink&) = delete;

  void Write(std::string_view text, const LogFormat& format) override {
    QTextCharFormat shown;
    shown.setForeground(QColor(colours_[static_cast<std::size_t>(format.colour)]));
    shown.setFontWeight(format.bold ? QFont::Bold : QFont::Normal);
    shown.setFontItalic(format.italic);
    shown.setFontPointSize(format.points);
    cursor_.insertText(LinesToQt(text), shown);
  }

 private:
  QTextCursor cursor_;
  LogColours colours_;
};

}  // namespace

frmShowLogFile::frmShowLogFile(const LogText& log, std::string path, FileSystem& files, UserInterface& messages,
                               QWidget* parent)
    : QDialog(parent),
      log_(log),
      path_(std::move(path)),
      files_(files),
      messages_(messages),
      ui_(std::make_unique<Ui::frmShowLogFile>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  ShowIn(OnScreen(palette()));
  // The verdict is at the end.
  ui_->RichTextBox->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  ui_->RichTextBox->moveCursor(QTextCursor::End);
  ui_->FindBar->Use(*ui_->RichTextBox);
  ui_->lblSummary->hide();
  AddKeys();
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdPrint, &QPushButton::clicked, this, &frmShowLogFile::Print);
  connect(ui_->cmdSave, &QPushButton::clicked, this, &frmShowLogFile::Save);
}

frmShowLogFile::~frmShowLogFile() = default;

void frmShowLogFile::AddKeys() {
  const auto add = [this](QKeySequence keys, auto* receiver, auto action) {
    connect(new QShortcut(keys, this), &QShortcut::activated, receiver, action);
  };
  add(Qt::CTRL | Qt::Key_F, ui_->FindBar, &FindBar::Open);
  add(Qt::Key_F3, ui_->FindBar, &FindBar::FindNext);
  add(Qt::SHIFT | Qt::Key_F3, ui_->FindBar, &FindBar::FindPrevious);
  add(Qt::Key_F8, this, &frmShowLogFile::GoToNextError);
  add(Qt::Key_F6, this, &frmShowLogFile::TableWanted);
}

void frmShowLogFile::ShowSummary(const std::string& summary) {
  ui_->lblSummary->setText(ToQt(summary + "   (F8: nächster Fehler, Strg+F: suchen, F6: Tabelle)"));
  ui_->lblSummary->show();
}

void frmShowLogFile::SelectLine(const QTextBlock& line) {
  QTextCursor cursor(line);
  cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
  ui_->RichTextBox->setTextCursor(cursor);
  ui_->RichTextBox->centerCursor();
}

void frmShowLogFile::GoTo(std::size_t place) {
  const QString before = LinesToQt(std::string_view(log_.Text()).substr(0, place));
  SelectLine(ui_->RichTextBox->document()->findBlock(static_cast<int>(before.size())));
}

// The lines after the cursor, then those before it. A mark ends its line, but a name may contain it, too.
void frmShowLogFile::GoToNextError() {
  const QTextBlock here = ui_->RichTextBox->textCursor().block();
  QTextBlock line = here;
  do {
    line = line.next().isValid() ? line.next() : ui_->RichTextBox->document()->firstBlock();
    const QString text = line.text();
    if (text.endsWith(ToQt(kErrorMark)) || text.endsWith(ToQt(kWarningMark))) return SelectLine(line);
  } while (line != here);
}

void frmShowLogFile::ShowIn(const LogColours& colours) {
  if (colours == colours_) return;
  colours_ = colours;
  QPlainTextEdit& box = *ui_->RichTextBox;
  QTextCursor cursor = box.textCursor();
  const int anchor = cursor.anchor(), position = cursor.position(), place = box.verticalScrollBar()->value();
  box.clear();
  {
    DocumentSink document(box.document(), colours);
    log_.ReplayTo(document);
  }
  cursor.setPosition(anchor);
  cursor.setPosition(position, QTextCursor::KeepAnchor);
  box.setTextCursor(cursor);
  box.verticalScrollBar()->setValue(place);
}

void frmShowLogFile::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowIn(OnScreen(palette()));
}

void frmShowLogFile::Print() {
  QPrinter printer(QPrinter::HighResolution);
  if (!CanAskHowToPrint(printer)) {
    messages_.Ask({.title = "Log-Datei drucken", .text = "Es ist kein Drucker eingerichtet!"});
    return;
  }
  const bool selected = ui_->RichTextBox->textCursor().hasSelection();
  printer.setPrintRange(selected ? QPrinter::Selection : QPrinter::AllPages);
  QPrintDialog dialog(&printer, this);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, selected);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  if (RunModal(dialog) == QDialog::Accepted) PrintTo(printer);
}

void frmShowLogFile::PrintTo(QPrinter& printer) {
  const bool selected = ui_->RichTextBox->textCursor().hasSelection();
  printer.setPrintRange(selected ? QPrinter::Selection : QPrinter::AllPages);
  const LogColours shown = colours_;
  ShowIn(kLogColoursOnPaper);
  ui_->RichTextBox->print(&printer);
  ShowIn(shown);
}

void frmShowLogFile::Save() {
  const auto failure = SaveResult(files_, &messages_, path_, [this](ResultFile& file) {
    RtfWriter rtf([&file](std::string_view bytes) { file.Write(bytes); });
    log_.ReplayTo(rtf);
    rtf.Finish();
  });
  if (failure) {
    messages_.Ask(LogNotSaved(path_, failure->error));
    return;
  }
  messages_.Ask({.title = std::string(kSaveLogTitle),
                 .text = "Datei gespeichert unter '" + std::string(TrimBlanks(path_)) + "'",
                 .icon = MessageIcon::information});
}

}  // namespace quiverion
