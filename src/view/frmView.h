#pragma once

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dialogs/log_text.h"
#include "dialogs/parameters/parameter_windows.h"
#include "exchange/load_any_field.h"
#include "field/context.h"
#include "picture/readout.h"
#include "picture/shown_field.h"
#include "picture/wishes.h"
#include "view/field_series.h"
#include "view/scale_sampler.h"
#include "view/vector_table.h"
#include "view/window_messages.h"

class QActionGroup;
class QLabel;

namespace Ui {
class frmView;
}

namespace quiverion {

/// What the viewer needs. The references must outlive the window.
struct ViewServices {
  FileSystem& files;
  const Clock& clock;
  std::function<void()> showHelp;
};

/// The window of QuiverionView: the picture of a field, its vectors as a table, its texts, and the series that it
/// belongs to. It only reads files, and has a context of its own.
class frmView : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmView(const ViewServices& services, QWidget* parent = nullptr);
  ~frmView() override;

  /// Shows the first of the files, and pages through all of them, or, if there is only one, through its directory.
  void OpenPaths(const std::vector<std::string>& paths);

  /// The file that is shown; empty if there is none.
  std::string CurrentPath() const { return series_.IsEmpty() ? std::string() : series_.CurrentPath(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void ConnectFileMenu();
  void ConnectViewMenu();
  void ConnectSeries();
  void ConnectPicture();
  void AddQuantities();
  void AddKey(QAction* action);

  void Guarded(const std::function<void()>& action);

  void ChooseFiles();
  void WithPicture(const std::function<void(const Picture&)>& action);
  void AskLimits();
  void AskVector();

  void GoTo(int index);
  void Reload();
  void LoadCurrent();
  void ObeyViewSettings();
  void BeginScale();
  void ShowField();
  void ShowSeriesPlace();
  void ShowPicture();
  void ShowTexts();
  void ShowTable();
  void ShowProfile();
  void SetQuantity(std::optional<Quantity> quantity);
  void SetPlaying(bool playing);

  void HoverPoint(std::optional<GridPoint> point);
  void ClickPoint(GridPoint point);
  void ShowPoints();
  void CopyRows();

  ViewServices services_;
  WindowMessages messages_{*this};
  RunLog log_;
  LogText logText_;
  Context context_;
  exchange::AnyFieldLoader loader_{context_};
  ShownField shown_;
  bool isLoaded_ = false;
  FieldSeries series_;
  ViewWishes wishes_;
  std::optional<bool> wishesTable_;  // what somebody has chosen
  ScaleSampler sampler_;
  ParameterWindows dialogs_{*this, messages_};
  VectorTable table_;
  std::vector<GridPoint> points_;
  std::vector<ProfileValue> profile_;
  QTimer player_;
  QActionGroup* quantities_ = nullptr;  // owned by the window
  QLabel* takenFor_ = nullptr;          // what a file of another program was taken for; owned by the window
  std::unique_ptr<Ui::frmView> ui_;
};

}  // namespace quiverion
