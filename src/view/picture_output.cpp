#include "view/picture_output.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPrintDialog>
#include <QPrinter>
#include <algorithm>

#include "dialogs/widgets/native.h"
#include "dialogs/widgets/run_modal.h"
#include "platform/files/paths.h"
#include "view/picture_files.h"
#include "view/picture_painter.h"

namespace quiverion {
namespace {

constexpr double kScaleOfFiles = 2.0;  // pixels of a PNG or of the clipboard for one of the window

bool MayReplace(const OutputServices& services, const char* title, const std::string& path) {
  if (!FileExists(services.files, path)) return true;
  return services.messages.Ask({.title = title,
                                .text = "'" + path + "' existiert bereits.\r\nSoll die Datei ersetzt werden?",
                                .buttons = MessageButtons::yesNo,
                                .preselected = MessageAnswer::no}) == MessageAnswer::yes;
}

}  // namespace

void SavePictureAs(const OutputServices& services, const Picture& picture, const std::string& fieldPath) {
  constexpr const char* title = "Bild speichern";
  const auto chosen =
      services.dialogs.ChooseFile({.kind = FileQuestion::Kind::save,
                                   .title = title,
                                   .filters = {"PNG-Bild (*.png)", "SVG-Bild (*.svg)", "PDF-Datei (*.pdf)"},
                                   .directory = std::string(DirectoryOf(fieldPath)),
                                   .fileName = std::string(BaseNameOf(FileNameOf(fieldPath))) + ".png"});
  if (!chosen) return;
  const std::string path = PictureFormatOf(*chosen) ? *chosen : *chosen + ".png";
  if (!MayReplace(services, title, path)) return;
  const auto failure =
      SavePicture(services.files, &services.messages, path, picture, *PictureFormatOf(path), kScaleOfFiles);
  if (!failure) return;
  services.messages.Ask(
      {.title = title,
       .text = "Das Bild kann nicht gespeichert werden: '" + path + "'\r\n" + ErrorText(failure->error)});
}

void CopyPicture(const Picture& picture) {
  QGuiApplication::clipboard()->setImage(ImageOf(picture, kScaleOfFiles));
}

void PrintPicture(QWidget& window, UserInterface& messages, const Picture& picture) {
  QPrinter printer(QPrinter::HighResolution);
  if (!CanAskHowToPrint(printer)) {
    messages.Ask({.title = "Bild drucken", .text = "Es ist kein Drucker eingerichtet!"});
    return;
  }
  if (picture.width > picture.height) printer.setPageOrientation(QPageLayout::Landscape);
  QPrintDialog dialog(&printer, &window);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  if (RunModal(dialog) != QDialog::Accepted) return;
  QPainter painter(&printer);
  const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
  const double scale = std::min(page.width() / picture.width, page.height() / picture.height);
  painter.scale(scale, scale);
  PaintPicture(painter, picture, kScaleOfFiles);
}

}  // namespace quiverion
