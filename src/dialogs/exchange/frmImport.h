#pragma once

#include <QDialog>
#include <QTimer>
#include <memory>
#include <string>
#include <vector>

#include "dialogs/exchange/background_tasks.h"
#include "dialogs/exchange/exchange_services.h"
#include "dialogs/exchange/import_choices.h"
#include "dialogs/exchange/import_list.h"

namespace Ui {
class frmImport;
}

namespace quiverion {

/// Imports files of other programs: what each was taken for, what somebody knows better, the target directory. All
/// files are read and written in another thread.
class frmImport : public QDialog {
  Q_OBJECT

 public:
  explicit frmImport(const ExchangeServices& services, QWidget* parent = nullptr);
  ~frmImport() override;

  /// Adds files; a directory stands for those in it that are not hidden.
  void AddPaths(const std::vector<std::string>& paths);

  void SetDirectory(const std::string& directory);

  /// Where files are looked for as long as there are none.
  void BeginIn(const std::string& directory) { begin_ = directory; }

  /// The directory of the last import, and the names of the files that were written into it.
  const std::string& ImportedDirectory() const { return importedDirectory_; }
  const std::vector<std::string>& ImportedNames() const { return importedNames_; }

 protected:
  void changeEvent(QEvent* event) override;
  void reject() override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  enum class Work { none, reading, importing };

  void ConnectControls();
  void ConnectChoices();
  void UseProblemColour();

  // The marked rows, all rows if none is marked.
  std::vector<int> ChosenRows() const;
  void ShowChoices();
  void ApplyChoices();
  exchange::ImportOptions CommonOptions() const;

  void ChooseFiles();
  void RemoveFiles();
  void Read(const std::vector<int>& rows);
  void TakeFinding(std::uint64_t request, ImportFinding finding);
  std::string Directory() const;
  void CompareResults();
  bool MayReplace(const std::vector<int>& rows);
  void Import();
  void TakeResult(std::uint64_t request, const std::string& problem, const std::vector<std::string>& written);
  void Cancel();
  void CountDone();
  void FitColumns();
  void ShowProgress();
  void ShowWork();

  ExchangeServices services_;
  ImportList list_;
  ImportChoices shown_;  // in the drop-downs
  Work work_ = Work::none;
  std::uint64_t nextRequest_ = 1;
  int done_ = 0, total_ = 0;  // files of the work
  QTimer compareLater_;
  bool isFitted_ = false;
  std::string directory_;  // as bytes, as long as nobody types another one
  std::string begin_;
  std::string importedDirectory_;
  std::vector<std::string> importedNames_;
  std::unique_ptr<Ui::frmImport> ui_;
  BackgroundTasks tasks_;  // ends first
};

}  // namespace quiverion
