#include "macro/run_table.h"

#include "log/log_lines.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

// A piece that is the mark and nothing else; names in other pieces may contain it.
bool IsMark(std::string_view piece, std::string_view mark) {
  return piece.starts_with(mark) && piece.find_first_not_of("\r\n", mark.size()) == std::string_view::npos;
}

}  // namespace

std::string_view WordOf(FileResult result) {
  switch (result) {
    case FileResult::done:
      return "fertig";
    case FileResult::warning:
      return "Warnung";
    case FileResult::failed:
      return "Fehler";
    case FileResult::aborted:
      return "abgebrochen";
    case FileResult::notRun:
      break;
  }
  return "nicht bearbeitet";
}

void ErrorSink::WatchFor(FileRow* row) {
  row_ = row;
  hasError_ = collectsMessage_ = false;
  if (row_ != nullptr) row_->logPlace = bytes_;
}

void ErrorSink::Write(std::string_view text, const LogFormat& /*format*/) {
  bytes_ += text.size();
  if (row_ == nullptr) return;
  if (text.starts_with("!!!")) {
    const bool isError = IsMark(text, kErrorMark);
    if (!isError && !IsMark(text, kWarningMark)) return;
    collectsMessage_ = row_->errors == 0 || (isError && !hasError_);
    if (collectsMessage_) {
      row_->message.clear();
      row_->logPlace = bytes_ - text.size();
    }
    ++row_->errors;
    hasError_ = hasError_ || isError;
  } else if (collectsMessage_) {
    // A sentence that ends in a colon goes on in the next line.
    const std::string_view line = TrimBlanks(text.substr(0, text.find_first_of("\r\n")));
    row_->message.append(row_->message.empty() ? "" : " ").append(line);
    collectsMessage_ = line.ends_with(':');
  }
}

FileResult ErrorSink::Result() const {
  if (hasError_) return FileResult::failed;
  return row_ != nullptr && row_->errors > 0 ? FileResult::warning : FileResult::done;
}

void RunTable::RunBegins(const Session& session) {
  rows_.clear();
  rows_.reserve(session.selectedFiles.size());
  for (const std::string& name : session.selectedFiles) rows_.emplace_back().name = name;
  errors_ = {};
  log_.Attach(errors_);
}

void RunTable::FileBegins(std::size_t index) {
  row_ = &rows_[index];
  errors_.WatchFor(row_);
  begun_ = std::chrono::steady_clock::now();
}

void RunTable::Loaded(const Context& context) {
  if (context.abortCurrentFile) return;
  row_->validBefore = row_->validAfter = UpdateValidFlags(valid_, context.field.status).valid;
  moved_ = false;
}

void RunTable::Executing(const CommandRow* row, const Context& context) {
  if (row == nullptr || row->statuses != StatusEffect::changes || !moved_) return;
  UpdateValidFlags(valid_, context.field.status);
  moved_ = false;
}

void RunTable::Executed(const CommandRow* row, const Context& context) {
  if (row == nullptr || !row_->validBefore) return;
  if (row->statuses == StatusEffect::moves) moved_ = true;
  if (row->statuses == StatusEffect::changes) {
    const FieldChanges changes = UpdateValidFlags(valid_, context.field.status);
    row_->rejected += changes.rejected;
    row_->filled += changes.filled;
    row_->validAfter = changes.valid;
  }
  if (row->findsVortices && !context.abortCurrentFile) row_->vortices = context.vortexCentres;
}

void RunTable::FileEnds(bool interrupted) {
  row_->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun_).count();
  const FileResult logged = errors_.Result();
  row_->result = interrupted && logged != FileResult::failed ? FileResult::aborted : logged;
  errors_.WatchFor(nullptr);
  row_ = nullptr;
}

void RunTable::RunEnds() {
  log_.Detach(errors_);
}

}  // namespace quiverion
