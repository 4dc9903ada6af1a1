#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "cli/commands.h"
#include "cli/services.h"
#include "exchange/formats.h"
#include "exchange/import_file.h"
#include "field/formats/load_original_file.h"
#include "log/first_lines.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Range {
  double min = std::nan("");
  double max = std::nan("");

  void Take(double value) {
    if (!(min <= value)) min = value;
    if (!(max >= value)) max = value;
  }
};

struct Summary {
  Range x, y;        // mm
  Range velX, velY;  // m/s, valid vectors
  std::map<std::int32_t, std::int64_t> statusCounts;
};

Summary Summarise(const VectorField& field) {
  Summary summary;
  for (const double x : field.posX) summary.x.Take(x);
  for (const double y : field.posY) summary.y.Take(y);
  const auto status = field.status.Values();
  for (std::size_t p = 0; p < status.size(); ++p) {
    ++summary.statusCounts[status[p]];
    if (status[p] <= 0) continue;
    summary.velX.Take(field.velX.Values()[p]);
    summary.velY.Take(field.velY.Values()[p]);
  }
  return summary;
}

std::string Line(std::string_view label, const std::string& value) {
  return std::string(label) + ": " + value + "\n";
}

std::string RangeText(const Range& range, const std::string& unit) {
  if (std::isnan(range.min)) return "(keine gültigen Werte)";
  return FormatNumber(range.min) + " bis " + FormatNumber(range.max) + " " + unit;
}

std::string PairText(std::int32_t a, std::int32_t b, const std::string& unit) {
  return std::to_string(a) + " x " + std::to_string(b) + " " + unit;
}

std::string AsText(const VectorField& field, const Summary& summary) {
  std::string text = Line("Datei", field.filePath);
  text +=
      Line("Gitter", std::to_string(field.columnCount) + " Spalten x " + std::to_string(field.rowCount) + " Zeilen");
  text += Line("x", RangeText(summary.x, "mm")) + Line("y", RangeText(summary.y, "mm"));
  text += Line("Vx der gültigen Vektoren", RangeText(summary.velX, "m/s"));
  text += Line("Vy der gültigen Vektoren", RangeText(summary.velY, "m/s"));
  for (const auto& [status, count] : summary.statusCounts) {
    text += Line("Status " + std::to_string(status), std::to_string(count) + " Vektoren");
  }
  text += Line("Gültige Vektoren laut Quelle", std::to_string(field.validVectorCount));
  text += Line("Bild", PairText(field.imageWidth, field.imageHeight, "Pixel"));
  text += Line("Interrogation Window", PairText(field.windowWidth, field.windowHeight, "Pixel"));
  text += Line("Gitterabstand", PairText(field.gridStepX, field.gridStepY, "Pixel"));
  text += Line("Erster Gitterpunkt", PairText(field.firstPixelX, field.firstPixelY, "Pixel"));
  text += Line("Abbildungsmaßstab", std::to_string(field.pixelScale));
  text += Line("Pulsabstand", std::to_string(field.pulseDelay) + " µs");
  for (std::size_t k = 0; k < field.headerLines.size(); ++k) {
    text += Line("Header " + std::to_string(k + 1), field.headerLines[k]);
  }
  std::string info = field.infoText;
  std::erase(info, '\r');
  text += "Info-Text:" + std::string(info.empty() ? "" : "\n") + info;
  ReplaceControls(text, "\n\t");
  return text.ends_with('\n') ? text : text + "\n";
}

Json RangeJson(const Range& range) {
  // JSON has neither NaN nor infinity.
  const auto number = [](double value) { return std::isfinite(value) ? Json(value) : Json(); };
  return {{"min", number(range.min)}, {"max", number(range.max)}};
}

std::string AsJson(const VectorField& field, const Summary& summary) {
  Json counts = Json::object();
  for (const auto& [status, count] : summary.statusCounts) counts[std::to_string(status)] = count;
  const Json object = {{"filePath", field.filePath},
                       {"columnCount", field.columnCount},
                       {"rowCount", field.rowCount},
                       {"posX", RangeJson(summary.x)},
                       {"posY", RangeJson(summary.y)},
                       {"velX", RangeJson(summary.velX)},
                       {"velY", RangeJson(summary.velY)},
                       {"status", counts},
                       {"validVectorCount", field.validVectorCount},
                       {"imageWidth", field.imageWidth},
                       {"imageHeight", field.imageHeight},
                       {"windowWidth", field.windowWidth},
                       {"windowHeight", field.windowHeight},
                       {"gridStepX", field.gridStepX},
                       {"gridStepY", field.gridStepY},
                       {"firstPixelX", field.firstPixelX},
                       {"firstPixelY", field.firstPixelY},
                       {"pixelScale", field.pixelScale},
                       {"pulseDelay", field.pulseDelay},
                       {"headerLines", field.headerLines},
                       {"infoText", field.infoText}};
  // A file name may contain bytes that are not UTF-8.
  return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

// True for a file that another program has written, by its content. One that cannot be opened is none.
bool IsForeign(FileSystem& files, const std::string& path) {
  const exchange::ForeignFormat* format = nullptr;
  const auto failure = Attempt([&] { format = exchange::RecogniseFormat(*files.OpenForReading(path)); });
  return !failure && format != nullptr && format->isForeign;
}

std::string ForeignText(const exchange::ForeignFile& foreign, const std::string& text) {
  const std::size_t second = text.find('\n') + 1;  // after the line with the path
  std::string said = Line("Format", foreign.report.Line());
  for (const std::string& warning : foreign.report.warnings) said += Line("Warnung", warning);
  ReplaceControls(said, "\n\t");
  return text.substr(0, second) + said + text.substr(second);
}

std::string ForeignJson(const exchange::ForeignFile& foreign, const std::string& text) {
  const exchange::ImportReport& report = foreign.report;
  Json object = {{"format", report.format},
                 {"dialect", report.dialect},
                 {"fieldCount", report.fieldCount},
                 {"lengthUnit", report.lengthUnit},
                 {"velocityUnit", report.velocityUnit},
                 {"y", report.yPointsDown ? "down" : "up"},
                 {"statusRule", report.statusRule},
                 {"warnings", report.warnings}};
  object.update(Json::parse(text));
  return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

// What would be imported; of several fields, the first one in detail.
int ShowForeign(Services& services, const std::string& path, bool json) {
  exchange::ForeignFile foreign;
  if (const auto failure = Attempt([&] { foreign = exchange::ReadForeignFile(*services.files, path, {}); })) {
    services.terminal.PrintError("'" + path + "': " + failure->formatMessage.value_or(ErrorText(failure->error)) +
                                 "\n");
    return kFailed;
  }
  VectorField& field = foreign.fields.front().field;
  field.filePath = path;
  const Summary summary = Summarise(field);
  services.terminal.Print(json ? ForeignJson(foreign, AsJson(field, summary))
                               : ForeignText(foreign, AsText(field, summary)));
  return services.Done();
}

}  // namespace

int ShowInfo(const std::string& path, bool json) {
  Services services;
  if (IsForeign(*services.files, path)) return ShowForeign(services, path, json);
  FirstLines lines;
  services.log.Attach(lines);
  Context& context = services.session.context;
  LoadOriginalFile(context, path);
  if (context.abortCurrentFile || context.runHadError) services.terminal.PrintError(lines.Text());
  if (context.abortCurrentFile) return kFailed;
  const Summary summary = Summarise(context.field);
  services.terminal.Print(json ? AsJson(context.field, summary) : AsText(context.field, summary));
  return services.Done();
}

}  // namespace quiverion::cli
