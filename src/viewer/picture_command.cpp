#include "viewer/picture_command.h"

#include <algorithm>
#include <set>

#include "cli/exit_code.h"
#include "cli/terminal.h"
#include "exchange/load_any_field.h"
#include "log/first_lines.h"
#include "macro/macro_file.h"
#include "macro/run_driver.h"
#include "macro/series_files.h"
#include "messages/silent_user_interface.h"
#include "picture/shown_field.h"
#include "picture/wishes.h"
#include "platform/files/overlay_files.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "view/picture_files.h"

namespace quiverion {
namespace {

class PictureRun {
 public:
  explicit PictureRun(const PictureOptions& options) : options_(options) {}

  int Execute() {
    if (const int code = ReadInputs(); code != cli::kDone) return code;
    if (const int code = ReadMacroSteps(); code != cli::kDone) return code;
    const bool many = inputs_.size() > 1 || isDirectory_;
    if (many) return WriteSeries();
    const auto format = PictureFormatOf(options_.output);
    if (!format) {
      return Refuse("'" + options_.output + "' endet weder auf .png noch auf .svg noch auf .pdf");
    }
    return Write(inputs_.front(), options_.output, *format) ? cli::kDone : cli::kFailed;
  }

 private:
  int Refuse(const std::string& reason) {
    terminal_.PrintError(reason + "\n");
    return cli::kUsage;
  }

  // A directory stands for its fields.
  int ReadInputs() {
    for (const std::string& input : options_.inputs) {
      if (!files_->IsDirectory(input)) {
        inputs_.push_back(input);
        continue;
      }
      isDirectory_ = true;
      std::vector<std::string> names;
      const auto failure = Attempt([&] { names = ListSeriesFiles(*files_, input); });
      if (failure || names.empty()) {
        terminal_.PrintError("'" + input + "': " + (failure ? ErrorText(failure->error) : "keine Vektorfelder") + "\n");
        return cli::kFailed;
      }
      for (const std::string& name : names) inputs_.push_back(WithSeparator(input) + name);
    }
    return cli::kDone;
  }

  int ReadMacroSteps() {
    if (options_.macro.empty()) return options_.step ? Refuse("--step braucht --macro") : cli::kDone;
    if (!LoadMacroFile(session_, options_.macro)) {
      terminal_.PrintError("Die Makrodatei kann nicht gelesen werden: '" + options_.macro + "'\n");
      return cli::kFailed;
    }
    const std::size_t count = session_.macro.size();
    if (options_.step.value_or(0) > count) {
      return Refuse("--step: das Makro hat nur " + std::to_string(count) + " Befehle");
    }
    session_.macro.resize(options_.step.value_or(count));
    return cli::kDone;
  }

  int WriteSeries() {
    const PictureFormat format = PictureFormatOf(options_.output).value_or(PictureFormat::png);
    constexpr std::string_view extensions[] = {".png", ".svg", ".pdf"};
    std::set<std::string> keys;
    std::vector<std::string> outputs;
    for (const std::string& input : inputs_) {
      const std::string name =
          std::string(BaseNameOf(FileNameOf(input))).append(extensions[static_cast<std::size_t>(format)]);
      if (!keys.insert(FileNameKey(name)).second) return Refuse("Zwei Eingabedateien ergeben das Bild '" + name + "'");
      outputs.push_back(WithSeparator(options_.output) + name);
    }
    MeasureSeries();
    bool failed = false;
    for (std::size_t k = 0; k < inputs_.size(); ++k) failed = !Write(inputs_[k], outputs[k], format) || failed;
    return failed ? cli::kFailed : cli::kDone;
  }

  // One scale for all fields like the first one; a file that cannot be read is reported when its turn comes.
  void MeasureSeries() {
    VectorField& field = session_.context.field;
    std::optional<SeriesScale> scale;
    HeldScale held;
    const std::size_t perField = std::clamp<std::size_t>(20000000 / inputs_.size(), 100, 5000);
    for (const std::string& input : inputs_) {
      FirstLines ignored;
      if (!Load(input, ignored)) continue;
      if (!scale) {
        held.quantity = QuantityFor(field, Wishes());
        held.result = StatisticResultOf(field);
        scale.emplace(held.quantity, perField);
      }
      if (StatisticResultOf(field) == held.result) scale->Add(field);
    }
    if (!scale) return;
    held.reference = scale->Reference();
    held.limits = scale->BarLimits();
    held_ = held;
  }

  ViewWishes Wishes() const { return {.quantity = options_.background, .limits = options_.limits}; }

  // False, with the reason in `lines`, if there is no field to show. What the macro writes is never written.
  bool Load(const std::string& input, FirstLines& lines) {
    Context& context = session_.context;
    log_.Attach(lines);
    context.abortCurrentFile = context.runHadError = false;
    overlay_.Clear();  // memory does not grow with the series
    if (options_.macro.empty()) {
      loader_.Load(input);
    } else {
      session_.inputDirectory = DirectoryPrefixOf(input);
      session_.selectedFiles = {std::string(FileNameOf(input))};
      RunMacro(session_);
    }
    log_.Detach(lines);
    return !context.abortCurrentFile;
  }

  bool Write(const std::string& input, const std::string& output, PictureFormat format) {
    FirstLines lines;
    const bool loaded = Load(input, lines);
    if (!loaded || session_.context.runHadError) terminal_.PrintError(lines.Text());
    if (!loaded) return false;
    ShownField field(session_.context.field);
    PictureChoices choices = ChoicesFor(field.Field(), field.Summary(), Wishes(), held_);
    choices.processed = !session_.macro.empty();
    choices.width = options_.width;
    choices.height = options_.height;
    if (options_.reference) choices.reference = options_.reference;
    const auto failure = SavePicture(*files_, nullptr, output, field.Compose(choices).picture, format);
    if (failure) terminal_.PrintError("'" + output + "': " + ErrorText(failure->error) + "\n");
    return !failure && !session_.context.runHadError;
  }

  const PictureOptions& options_;
  cli::Terminal terminal_;
  SilentUserInterface ui_;
  RunLog log_;
  SystemClock clock_;
  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  OverlayFiles overlay_{*files_};
  Session session_{overlay_, ui_, log_, clock_};
  exchange::AnyFieldLoader loader_{session_.context};
  std::vector<std::string> inputs_;
  bool isDirectory_ = false;
  std::optional<HeldScale> held_;  // of a series
};

}  // namespace

int WritePictures(const PictureOptions& options) {
  return PictureRun(options).Execute();
}

}  // namespace quiverion
