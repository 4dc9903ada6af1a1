#include "app/last_run.h"

#include "dialogs/frmRunTable.h"
#include "dialogs/frmShowLogFile.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/run_modal.h"
#include "macro/pre_run_checks.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

// As the directory list names it: without a separator at the end, except for a root.
std::string Opened(const std::string& directory) {
  const std::string_view name = DirectoryOf(directory);
  return name.empty() || name.ends_with(':') ? directory : std::string(name);
}

}  // namespace

bool LastRun::Start() {
  const AttachedSink attached(log_, logText_);  // the checks log nothing
  RunTable table(log_);
  const auto begin = [this] {
    rows_.clear();
    logText_.Clear();
    directory_ = session_.inputDirectory;
  };
  const bool started = StartRun(session_, begin, &table);
  if (started) rows_ = table.TakeRows();
  return started;
}

void LastRun::ShowLog() {
  frmShowLogFile log(logText_, LogPath(), machine_.files, session_.context.ui);
  log.ShowSummary(ErrorCountText(rows_));
  connect(&log, &frmShowLogFile::TableWanted, &log, [&] {
    ShowTableOver(log, [&log](QDialog& table, const FileRow& row) {
      table.accept();
      log.GoTo(row.logPlace);
    });
  });
  RunModal(log);
}

void LastRun::ShowLogAt(const FileRow& row, QWidget& parent) {
  frmShowLogFile log(logText_, LogPath(), machine_.files, session_.context.ui, &parent);
  log.ShowSummary(ErrorCountText(rows_));
  log.GoTo(row.logPlace);
  connect(&log, &frmShowLogFile::TableWanted, &log, &QDialog::accept);  // it is below
  RunModal(log);
}

void LastRun::ShowTable(QWidget& parent) {
  if (rows_.empty()) {
    session_.context.ui.Ask({.title = "QuiverionSeries  -  Letzter Lauf",
                             .text = "Seit dem Start des Programms gab es noch keinen Lauf!",
                             .icon = MessageIcon::information});
    return;
  }
  Guarded(session_.context.ui,
          [&] { ShowTableOver(parent, [this](QDialog& table, const FileRow& row) { ShowLogAt(row, table); }); });
}

void LastRun::ShowTableOver(QWidget& parent, const std::function<void(QDialog&, const FileRow&)>& showLog) {
  frmRunTable* shown = nullptr;
  frmRunTable table(
      {.rows = rows_,
       .directory = directory_,
       .decimalSeparator = machine_.decimalSeparator,
       .files = machine_.files,
       .messages = session_.context.ui,
       .showField = [this](const FileRow& row) { emit FieldWanted(directory_ + row.name); },
       .showLog = [&](const FileRow& row) { showLog(*shown, row); },
       .select = [this](const std::vector<std::string>& names) { emit FilesChosen(Opened(directory_), names); }},
      &parent);
  shown = &table;
  RunModal(table);
}

}  // namespace quiverion
