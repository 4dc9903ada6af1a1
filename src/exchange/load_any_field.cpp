#include "exchange/load_any_field.h"

#include <algorithm>

#include "exchange/formats.h"
#include "exchange/import_file.h"
#include "field/formats/load_original_file.h"
#include "field/frames.h"
#include "messages/failure.h"
#include "platform/files/paths.h"

namespace quiverion::exchange {

bool AnyFieldLoader::IsForeign(const std::string& path) const {
  const ForeignFormat* format = nullptr;
  Attempt([&] { format = RecogniseFormat(*context_.files.OpenForReading(path)); });
  return format != nullptr && format->isForeign;
}

void AnyFieldLoader::Load(const std::string& path, std::size_t index) {
  if (kept_ && keptPath_ == path && index < kept_->fields.size()) return LoadForeign(path, index);
  Forget();
  fieldCount_ = 1;
  takenFor_.clear();
  // Most files are VAS files, which one look less opens sooner.
  if (ExtensionOf(FileNameOf(path)) == "VAS" || !IsForeign(path)) return LoadOriginalFile(context_, path);
  LoadForeign(path, index);
}

void AnyFieldLoader::LoadForeign(const std::string& path, std::size_t index) {
  context_.log.WriteLogLine("Datei '" + path + "' einladen... ");
  const auto failure = Attempt([&] {
    if (!kept_) kept_ = ReadForeignFile(context_.files, path, {});
    fieldCount_ = kept_->fields.size();
    takenFor_ = kept_->report.Line();
    ForeignField& field = kept_->fields[std::min(index, fieldCount_ - 1)];
    ResetForLoad(context_.field, path);
    const Source source = context_.field;
    if (fieldCount_ > 1) {
      context_.field = field.field;
    } else {
      context_.field = std::move(field.field);
      kept_.reset();
    }
    static_cast<Source&>(context_.field) = source;
    keptPath_ = path;
    LogLines(context_.log, {kDoneText});
  });
  if (!failure) return;
  kept_.reset();
  const std::string reason = failure->formatMessage.value_or(ErrorText(failure->error));
  FailLoad(context_, {"    " + reason});
}

}  // namespace quiverion::exchange
