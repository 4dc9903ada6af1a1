#include "view/picture_files.h"

#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>

#include "dialogs/widgets/qt_text.h"
#include "messages/system_error.h"
#include "picture/svg.h"
#include "platform/files/paths.h"
#include "view/picture_painter.h"

namespace quiverion {
namespace {

constexpr int kPngQuality = 80;  // quick compression: more effort saves hardly anything here
constexpr double kPointsPerPixel = 72.0 / 96.0;
constexpr double kCellResolution = 2.0;  // image pixels for each pixel of the picture, in a PDF

QByteArray PngOf(const Picture& picture, double scale) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  const QImage image = ImageOf(picture, scale);
  if (image.isNull() || !image.save(&buffer, "PNG", kPngQuality)) throw SystemError(ErrorNumber::outOfMemory);
  return bytes;
}

// Qt writes the time into the file, in several places. All of them get the same length of a fixed one.
void RemoveTimes(QByteArray& pdf) {
  const QByteArray key = "/CreationDate (D:";
  for (qsizetype at = pdf.indexOf(key); at >= 0; at = pdf.indexOf(key, at + 1)) {
    const qsizetype begin = at + key.size(), end = pdf.indexOf(')', begin);
    for (qsizetype k = begin; k < end; ++k) {
      if (pdf[k] >= '0' && pdf[k] <= '9') pdf[k] = '0';
      if (pdf[k] == '+' || pdf[k] == '-') pdf[k] = '+';
    }
    pdf.replace(begin, 8, "20000101");
  }
}

QByteArray PdfOf(const Picture& picture) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setPageSize(
      QPageSize(QSizeF(picture.width, picture.height) * kPointsPerPixel, QPageSize::Point, {}, QPageSize::ExactMatch));
  writer.setPageMargins({});
  writer.setResolution(1200);
  QPainter painter(&writer);
  painter.scale(1200.0 / 96.0, 1200.0 / 96.0);
  PaintPicture(painter, picture, kCellResolution);
  painter.end();
  RemoveTimes(bytes);
  return bytes;
}

}  // namespace

std::optional<PictureFormat> PictureFormatOf(std::string_view path) {
  const std::string extension = ExtensionOf(FileNameOf(path));
  if (extension == "PNG") return PictureFormat::png;
  if (extension == "SVG") return PictureFormat::svg;
  if (extension == "PDF") return PictureFormat::pdf;
  return std::nullopt;
}

QByteArray BytesOf(const Picture& picture, PictureFormat format, double scale) {
  switch (format) {
    case PictureFormat::png:
      return PngOf(picture, scale);
    case PictureFormat::svg:
      return QByteArray::fromStdString(SvgOf(picture));
    default:
      return PdfOf(picture);
  }
}

std::optional<SaveFailure> SavePicture(FileSystem& files, UserInterface* ui, const std::string& path,
                                       const Picture& picture, PictureFormat format, double scale) {
  return SaveResult(files, ui, path, [&](ResultFile& file) {
    const QByteArray bytes = BytesOf(picture, format, scale);
    file.Write({bytes.data(), static_cast<std::size_t>(bytes.size())});
  });
}

}  // namespace quiverion
