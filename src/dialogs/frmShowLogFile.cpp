#include "dialogs/frmShowLogFile.h"

#include <QPrintDialog>
#include <QPrinter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>

#include "dialogs/widgets/dark_palette.h"
#include "dialogs/widgets/native.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "log/log_writers.h"
#include "macro/log_messages.h"
#include "messages/system_error.h"
#include "platform/files/result_file.h"
#include "platform/text/text.h"
#include "ui_frmShowLogFile.h"

namespace quiverion {
namespace {

constexpr LogColours kOnPaper = {qRgb(0, 0, 0), qRgb(200, 0, 0), qRgb(0, 200, 0)};

// The same ones where the ground is light, else lighter ones.
LogColours OnScreen(const QPalette& palette) {
  if (!IsDark(palette)) return kOnPaper;
  return {palette.color(QPalette::Text).rgb(), qRgb(255, 120, 120), qRgb(90, 220, 90)};
}

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
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdPrint, &QPushButton::clicked, this, &frmShowLogFile::Print);
  connect(ui_->cmdSave, &QPushButton::clicked, this, &frmShowLogFile::Save);
}

frmShowLogFile::~frmShowLogFile() = default;

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
  ShowIn(kOnPaper);
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
