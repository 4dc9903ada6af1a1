#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/exchange/background_tasks.h"
#include "dialogs/exchange/exchange_services.h"
#include "dialogs/exchange/export_list.h"
#include "exchange/export_files.h"

namespace Ui {
class frmExport;
}

namespace quiverion {

/// Exports fields for other programs: kind, target directory, one file or an index for the series. All files are read
/// and written in another thread.
class frmExport : public QDialog {
  Q_OBJECT

 public:
  explicit frmExport(const ExchangeServices& services, QWidget* parent = nullptr);
  ~frmExport() override;

  /// Adds fields; a directory stands for those in it.
  void AddPaths(const std::vector<std::string>& paths);

  void SetDirectory(const std::string& directory);

 protected:
  void changeEvent(QEvent* event) override;
  void reject() override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void UseProblemColour();
  void ConnectControls();
  const exchange::ExportKind& Kind() const;
  void KindChanged();
  void ChooseFiles();
  void RemoveFiles();

  // What the controls say; none, after a message, if they contradict each other.
  std::optional<exchange::ExportJob> Job();
  exchange::ExportJob JobOfControls() const;
  void ShowTargets();
  std::vector<std::string> ExistingTargets(const exchange::ExportJob& job) const;
  bool MayReplace(const exchange::ExportJob& job);
  void Export();
  exchange::ExportEnd Run(const exchange::ExportJob& job);  // in the other thread
  void TakeFailure(std::size_t row, const std::string& lines);
  void Ended(exchange::ExportEnd end);
  void ShowWork();

  ExchangeServices services_;
  ExportList list_;
  bool isWorking_ = false;
  exchange::ExportJob job_;  // that runs; not changed meanwhile
  std::string directory_;    // as bytes, as long as nobody types another one
  QString proposed_;         // name of the series
  QString ended_;            // what the last export has come to
  int done_ = 0;
  std::unique_ptr<Ui::frmExport> ui_;
  BackgroundTasks tasks_;  // ends first
};

}  // namespace quiverion
