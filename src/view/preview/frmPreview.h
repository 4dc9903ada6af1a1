#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/macro_editing.h"
#include "view/preview/comparison_view.h"
#include "view/preview/preview_worker.h"
#include "view/preview/step_table.h"

class QActionGroup;

namespace Ui {
class frmPreview;
}

namespace quiverion {

/// What the preview needs. The references must outlive the window.
struct PreviewServices {
  FileSystem& files;
  const Clock& clock;
  char decimalSeparator = '.';
  std::function<void()> showHelp;
  /// Of the session, as it is now.
  std::function<const BufferField&()> buffer;
};

/// The window "Vorschau": what the macro does to a file of the selection, step by step, without writing anything.
/// Everything is computed beside the window's thread. It is hidden when it is closed, and can be shown again.
class frmPreview : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmPreview(PreviewServices services, QWidget* parent = nullptr);
  ~frmPreview() override;

  /// The macro, and which of its commands is chosen; -1 for none, which keeps the step.
  void ShowMacro(const MacroEventList& macro, int command);

  /// The same with a command that is being edited; none ends that.
  void ShowDraft(const std::optional<DraftCommand>& draft);

  /// The files of a run, in its order.
  void ShowFiles(const std::string& directory, std::vector<std::string> names);

  /// Looks at all files again.
  void Reload();

  /// Stops computing, so that no file is open, and refuses input until Reload.
  void Stop();

 signals:
  /// Somebody moves a limit of the search that is command `command` of what is shown.
  void LimitMoved(int command, const QString& key, const QString& text);

  /// A movement of a limit has ended.
  void LimitReleased();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void ConnectChoices();
  void ConnectKeys();
  void AddQuantities();
  void AddKey(QAction* action);
  QAction* ModeAction(ComparisonMode mode) const;

  const MacroEventList& ShownMacro() const { return draft_ ? draftMacro_ : macro_; }
  void GoToFile(int index);
  void GoToStep(int step);
  void ChooseMode(ComparisonMode mode);
  void Ask();
  std::shared_ptr<const BufferField> BufferBeforeRun();
  void TakeAnswer(const PreviewAnswer& answer);
  void ShowSteps();
  void ShowStep();
  void ShowSearch();
  void ShowSample();
  void ShowPlaces();
  bool CurrentIsSearch() const;

  PreviewServices services_;
  MacroEventList macro_;
  std::optional<DraftCommand> draft_;
  MacroEventList draftMacro_;
  std::string directory_;
  std::shared_ptr<const std::vector<std::string>> names_;
  std::shared_ptr<const BufferField> buffer_;
  int file_ = 0;
  int step_ = 0;
  bool followsEnd_ = true;  // the last step is shown until somebody chooses one
  bool isStopped_ = false;
  bool isShowing_ = false;  // the table is told the step, and does not choose it
  ViewWishes wishes_;
  std::uint64_t asked_ = 0;

  StepTable table_;
  std::shared_ptr<const std::vector<StepReport>> steps_;
  std::optional<SearchReport> search_;
  std::vector<SampledFile> sample_;
  QActionGroup* modes_ = nullptr;  // owned by the window
  std::unique_ptr<Ui::frmPreview> ui_;
  PreviewWorker worker_;
};

}  // namespace quiverion
