#include "view/picture_painter.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {
namespace {

QColor ToQt(Colour colour) {
  return QColor(colour.red, colour.green, colour.blue);
}

QPointF ToQt(Point point) {
  return {point.x, point.y};
}

QRectF ToQt(const Rectangle& area) {
  return {area.left, area.top, area.width, area.height};
}

// The cell that each pixel of an axis shows, -1 beside all cells. Pixel k lies at (k + 0.5) / resolution.
std::vector<int> CellsOfPixels(const std::vector<double>& edges, double begin, double resolution, int pixels) {
  std::vector<int> cells(static_cast<std::size_t>(pixels), -1);
  std::size_t cell = 0;
  for (int k = 0; k < pixels; ++k) {
    const double at = begin + (k + 0.5) / resolution;
    while (cell + 1 < edges.size() && edges[cell + 1] <= at) ++cell;
    const bool inside = cell + 1 < edges.size() && edges[cell] <= at;
    if (inside) cells[static_cast<std::size_t>(k)] = static_cast<int>(cell);
  }
  return cells;
}

QImage ImageOfCells(const Cells& cells, const Rectangle& plot, double resolution) {
  const int width = std::max(1, static_cast<int>(std::lround(plot.width * resolution)));
  const int height = std::max(1, static_cast<int>(std::lround(plot.height * resolution)));
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) return image;  // no memory
  std::vector<QRgb> colours(256, qRgba(0, 0, 0, 0));
  for (std::size_t k = 0; k < cells.colours.size(); ++k) colours[k] = ToQt(cells.colours[k]).rgba();
  const std::vector<int> columns = CellsOfPixels(cells.xEdges, plot.left, resolution, width);
  const std::vector<int> rows = CellsOfPixels(cells.yEdges, plot.top, resolution, height);
  for (int y = 0; y < height; ++y) {
    auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
    const int row = rows[static_cast<std::size_t>(y)];
    if (y > 0 && row == rows[static_cast<std::size_t>(y - 1)]) {
      std::memcpy(line, image.constScanLine(y - 1), static_cast<std::size_t>(width) * sizeof *line);
      continue;
    }
    const std::uint8_t* const indices =
        cells.indices.data() + static_cast<std::size_t>(std::max(row, 0)) * cells.Columns();
    for (int x = 0; x < width; ++x) {
      const int column = columns[static_cast<std::size_t>(x)];
      line[x] = row < 0 || column < 0 ? 0 : colours[indices[column]];
    }
  }
  return image;
}

void PaintShapes(QPainter& painter, const Shapes& shapes) {
  const QColor colour = ToQt(shapes.colour);
  for (const Rectangle& area : shapes.areas) painter.fillRect(ToQt(area), colour);
  if (!shapes.triangles.empty()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const Triangle& triangle : shapes.triangles) {
      const QPointF corners[] = {ToQt(triangle.a), ToQt(triangle.b), ToQt(triangle.c)};
      painter.drawConvexPolygon(corners, 3);
    }
  }
  if (shapes.lines.empty()) return;
  QPen pen(colour, shapes.lineWidth);
  pen.setCapStyle(Qt::FlatCap);
  painter.setPen(pen);
  std::vector<QLineF> lines;
  lines.reserve(shapes.lines.size());
  for (const Segment& line : shapes.lines) lines.emplace_back(ToQt(line.from), ToQt(line.to));
  painter.drawLines(lines.data(), static_cast<int>(lines.size()));
}

void PaintLabel(QPainter& painter, const Label& label, const QString& family) {
  QFont font(family);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(label.size))));
  font.setBold(label.bold);
  font.setHintingPreference(QFont::PreferNoHinting);  // the same shapes at every scale
  painter.setFont(font);
  painter.setPen(ToQt(label.colour));
  const QString text = quiverion::ToQt(label.text);
  const double width = QFontMetricsF(font).horizontalAdvance(text);
  const double before = label.align == Align::start ? 0.0 : label.align == Align::middle ? width / 2.0 : width;
  const double below = 0.36 * label.size;  // from the middle of the text to its base line
  painter.save();
  painter.translate(ToQt(label.at));
  if (label.upwards) painter.rotate(-90.0);
  painter.drawText(QPointF(-before, below), text);
  painter.restore();
}

}  // namespace

void PaintPicture(QPainter& painter, const Picture& picture, double resolution) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRectF(0.0, 0.0, picture.width, picture.height), ToQt(picture.paper));
  if (!picture.cells.indices.empty()) {
    painter.drawImage(ToQt(picture.plot), ImageOfCells(picture.cells, picture.plot, resolution));
  }
  for (const Shapes& shapes : picture.shapes) {
    if (shapes.inPlot) {
      painter.setClipRect(ToQt(picture.plot));
    } else {
      painter.setClipping(false);
    }
    PaintShapes(painter, shapes);
  }
  painter.setClipping(false);
  const QString family = PictureFontFamily();
  for (const Label& label : picture.labels) PaintLabel(painter, label, family);
}

QImage ImageOf(const Picture& picture, double scale) {
  QImage image(static_cast<int>(std::lround(picture.width * scale)),
               static_cast<int>(std::lround(picture.height * scale)), QImage::Format_RGB32);
  if (image.isNull()) return image;
  QPainter painter(&image);
  painter.scale(scale, scale);
  PaintPicture(painter, picture, scale);
  return image;
}

QString PictureFontFamily() {
  static const QString family = [] {
    const QStringList families = QFontDatabase::families();
    for (const char* const wanted : {"DejaVu Sans", "Arial", "Liberation Sans"}) {
      if (families.contains(QLatin1String(wanted))) return QString(QLatin1String(wanted));
    }
    return QGuiApplication::font().family();
  }();
  return family;
}

}  // namespace quiverion
