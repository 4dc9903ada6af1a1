#include "picture/svg.h"

#include <charconv>
#include <cmath>

namespace quiverion {
namespace {

class SvgWriter {
 public:
  std::string Write(const Picture& picture, std::string_view fontFamily) {
    text_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"";
    Number(picture.width).Raw("\" height=\"").Number(picture.height).Raw("\" viewBox=\"0 0 ");
    Number(picture.width).Raw(" ").Number(picture.height).Raw("\" font-family=\"").Escaped(fontFamily).Raw("\">\n");
    Raw("<clipPath id=\"plot\"><rect");
    Attributes(picture.plot).Raw("/></clipPath>\n<rect width=\"100%\" height=\"100%\" fill=\"");
    ColourText(picture.paper).Raw("\"/>\n");
    WriteCells(picture.cells);
    for (const Shapes& shapes : picture.shapes) WriteShapes(shapes);
    for (const Label& label : picture.labels) WriteLabel(label);
    Raw("</svg>\n");
    return std::move(text_);
  }

 private:
  SvgWriter& Raw(std::string_view text) {
    text_ += text;
    return *this;
  }

  SvgWriter& Number(double value) {
    const double rounded = std::round(value * 100.0) / 100.0 + 0.0;  // no "-0"
    char buffer[400];
    text_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, rounded, std::chars_format::fixed).ptr);
    return *this;
  }

  SvgWriter& ColourText(Colour colour) {
    constexpr std::string_view digits = "0123456789abcdef";
    text_ += '#';
    for (const std::uint8_t part : {colour.red, colour.green, colour.blue}) {
      text_ += digits[part / 16u];
      text_ += digits[part % 16u];
    }
    return *this;
  }

  SvgWriter& Escaped(std::string_view text) {
    for (const char c : text) {
      switch (c) {
        case '&':
          text_ += "&amp;";
          break;
        case '<':
          text_ += "&lt;";
          break;
        case '>':
          text_ += "&gt;";
          break;
        case '"':
          text_ += "&quot;";
          break;
        default:
          text_ += c;
      }
    }
    return *this;
  }

  SvgWriter& Attributes(const Rectangle& area) {
    Raw(" x=\"").Number(area.left).Raw("\" y=\"").Number(area.top).Raw("\" width=\"").Number(area.width);
    return Raw("\" height=\"").Number(area.height).Raw("\"");
  }

  SvgWriter& At(char command, Point point) {
    text_ += command;
    return Number(point.x).Raw(" ").Number(point.y);
  }

  void Area(const Rectangle& area) {
    At('M', {area.left, area.top}).Raw("H").Number(area.Right()).Raw("V").Number(area.Bottom());
    Raw("H").Number(area.left).Raw("z");
  }

  // One path for each colour; neighbours in a row with the same colour are one area.
  void WriteCells(const Cells& cells) {
    if (cells.indices.empty()) return;
    Raw("<g clip-path=\"url(#plot)\" shape-rendering=\"crispEdges\">\n");
    for (std::size_t colour = 0; colour < cells.colours.size(); ++colour) {
      const std::size_t before = text_.size();
      Raw("<path fill=\"").ColourText(cells.colours[colour]).Raw("\" d=\"");
      const std::size_t empty = text_.size();
      for (std::size_t row = 0; row < cells.Rows(); ++row) WriteRuns(cells, row, static_cast<std::uint8_t>(colour));
      if (text_.size() == empty) {
        text_.resize(before);
      } else {
        Raw("\"/>\n");
      }
    }
    Raw("</g>\n");
  }

  void WriteRuns(const Cells& cells, std::size_t row, std::uint8_t colour) {
    const std::uint8_t* const indices = cells.indices.data() + row * cells.Columns();
    for (std::size_t first = 0; first < cells.Columns(); ++first) {
      if (indices[first] != colour) continue;
      std::size_t end = first + 1;
      while (end < cells.Columns() && indices[end] == colour) ++end;
      Area({cells.xEdges[first], cells.yEdges[row], cells.xEdges[end] - cells.xEdges[first],
            cells.yEdges[row + 1] - cells.yEdges[row]});
      first = end;
    }
  }

  void WriteShapes(const Shapes& shapes) {
    const std::string_view clip = shapes.inPlot ? " clip-path=\"url(#plot)\"" : "";
    if (!shapes.areas.empty() || !shapes.triangles.empty()) {
      Raw("<path fill=\"").ColourText(shapes.colour).Raw("\"").Raw(clip).Raw(" d=\"");
      for (const Rectangle& area : shapes.areas) Area(area);
      for (const Triangle& t : shapes.triangles) At('M', t.a).At('L', t.b).At('L', t.c).Raw("z");
      Raw("\"/>\n");
    }
    if (shapes.lines.empty()) return;
    Raw("<path fill=\"none\" stroke=\"").ColourText(shapes.colour).Raw("\" stroke-width=\"").Number(shapes.lineWidth);
    Raw("\"").Raw(clip).Raw(" d=\"");
    for (const Segment& line : shapes.lines) At('M', line.from).At('L', line.to);
    Raw("\"/>\n");
  }

  void WriteLabel(const Label& label) {
    constexpr std::string_view anchors[] = {"start", "middle", "end"};
    const double below = 0.36 * label.size;  // from the middle of the text to its base line
    Raw("<text font-size=\"").Number(label.size).Raw("\" fill=\"").ColourText(label.colour).Raw("\" text-anchor=\"");
    Raw(anchors[static_cast<std::size_t>(label.align)]).Raw("\"");
    if (label.bold) Raw(" font-weight=\"bold\"");
    if (label.upwards) {
      Raw(" transform=\"translate(").Number(label.at.x + below).Raw(" ").Number(label.at.y).Raw(") rotate(-90)\">");
    } else {
      Raw(" x=\"").Number(label.at.x).Raw("\" y=\"").Number(label.at.y + below).Raw("\">");
    }
    Escaped(label.text).Raw("</text>\n");
  }

  std::string text_;
};

}  // namespace

std::string SvgOf(const Picture& picture, std::string_view fontFamily) {
  return SvgWriter().Write(picture, fontFamily);
}

}  // namespace quiverion
