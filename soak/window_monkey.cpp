// A user without aim in the whole program: random keys, clicks, texts, drops and file names, as the window system
// delivers them, for the windows that are up and now and then for those behind a dialog. Nothing may bring the program
// down, hold it up or leave it in disorder. The files are in memory, so that no harm is done.
//
//   window_monkey SECONDS SEED     prints every step; where something is wrong, the last ones lead to it
#include <unistd.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <QWindow>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "app/frmMain.h"
#include "dialogs/application.h"
#include "dialogs/widgets/qt_text.h"
#include "generator/foreign_files.h"
#include "generator/sample_files.h"
#include "platform/files/paths.h"
#include "support/bytes.h"
#include "support/memory_file_system.h"

namespace quiverion::soak {
namespace {

using Time = std::chrono::steady_clock;

constexpr int kStepsOfAWindow = 1500;
constexpr int kMostSettlingSteps = 20000;
constexpr unsigned kLongestStep = 30;  // s

class Monkey : public QObject {
 public:
  Monkey(std::uint32_t seed, Time::time_point end, std::string place)
      : random_(seed), end_(end), place_(std::move(place)) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &Monkey::Step);
  }

  /// A program from its start to its end. False where the time is over.
  bool PlayOnce() {
    LayFiles();
    QDir::setCurrent(ToQt(place_));
    const SystemClock clock;
    frmMain window({.files = files_,
                    .clock = clock,
                    .listDrives =
                        [this] {
                          return std::vector<std::string>{"/", place_ + "serie", "/nicht/da"};
                        },
                    .startDirectory = place_ + "serie",
                    .helpFile = HELP_FILE});
    window_ = &window;
    steps_ = settlingSteps_ = 0;
    window.show();
    timer_.start(0);
    QCoreApplication::exec();
    timer_.stop();
    const std::lock_guard<std::recursive_mutex> lock(files_.mutex);
    for (const auto& [path, bytes] : files_.files) {
      Expect(path.starts_with(place_), ("a file lies elsewhere: " + path).c_str());
    }
    return Time::now() < end_;
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <class List>
  auto OneOf(const List& list) {
    return *std::next(std::begin(list), Below(static_cast<int>(std::size(list))));
  }

  static void Expect(bool holds, const char* what) {
    if (holds) return;
    std::printf("WRONG: %s\n", what);
    std::fflush(stdout);
    std::abort();
  }
  static std::string ClassOf(const QWidget& widget) {
    return FromQt(QString(widget.metaObject()->className()).section("::", -1));
  }
  static void Note(const QWidget& window, const std::string& what) {
    std::printf("%s: %s\n", ClassOf(window).c_str(), what.c_str());
  }

  void LayFiles() {
    const std::lock_guard<std::recursive_mutex> lock(files_.mutex);
    const auto sample = [](int index) { return samples::MakeSampleField({.index = index, .columns = 8, .rows = 6}); };
    const auto collection = [&](std::size_t count) {
      return samples::CollectionBytes(std::vector(count, sample(0)), std::vector<std::string>(count, "C:\\ä.dat"));
    };
    using test::Bytes;
    const std::pair<std::string, std::string> content[] = {
        {"serie/a.dat", samples::DatBytes(sample(1))},
        {"serie/b.vas", samples::VasBytes(sample(2))},
        {"serie/c.vec", samples::VecBytes(sample(3), 1)},
        {"serie/kaputt.vas", samples::VasBytes(sample(2)).substr(0, 200)},
        {"serie/notes.txt", "no field"},
        {"fremd/B1.txt", samples::ForeignSampleOf("davis8.txt").bytes(sample(5))},
        {"fremd/B2.txt", samples::ForeignSampleOf("davis8.txt").bytes(sample(6)).substr(0, 500)},
        {"fremd/L1.vec", samples::ForeignSampleOf("insight.vec").bytes(sample(7))},
        {"Größe 1/Übung ä.vas", samples::VasBytes(sample(4))},
        {"Größe 1/Übung ä.col", collection(3)},
        {"viele.col", collection(400)},
        {"kaputt.col", collection(2).substr(0, 300)},
        {"makro.mak", Bytes().I32(3).I32(40001).I32(40101).I32(50101)},
        {"kaputt.mak", Bytes().I32(2147483647)}};
    files_.files.clear();
    files_.faults = {};
    for (const auto& [name, bytes] : content) {
      files_.files[place_ + name] = bytes;
      // Qt's file dialogs show what they find on the machine.
      const QString path = ToQt(place_ + name);
      QDir().mkpath(QFileInfo(path).path());
      QFile(path).open(QIODevice::WriteOnly);
    }
  }

  void Step() {
    ::alarm(kLongestStep);
    timer_.start(0);  // before anything opens: a timer that is in its own slot does not tick in the loop of a window
    if (window_->isVisible() && !window_->windowHandle()->isExposed()) return;
    const bool atRest = QThread::currentThread()->loopLevel() == 1 && !window_->TheSession().context.busy &&
                        QApplication::activePopupWidget() == nullptr;
    if (atRest) CheckRest();
    if (settlingSteps_ > 0 || ++steps_ > kStepsOfAWindow || Time::now() > end_) return Settle(atRest);
    if (QWidget* const window = PickWindow()) Act(*window);
  }

  // Nothing runs and nothing asks: the main window has to be ready.
  void CheckRest() {
    Expect(QApplication::activeModalWidget() == nullptr, "nothing is going on, but a modal window is up");
    Expect(window_->IsQuitting() || (window_->isVisible() && window_->isEnabled()), "the main window cannot be used");
    Expect(window_->IsQuitting() || window_->findChild<QWidget*>("cmdOk")->isVisible(), "there is no Start");
    Expect(!window_->findChild<QProgressBar*>()->isVisible(), "the progress of a computation is shown");
    Expect(window_->cursor().shape() == Qt::ArrowCursor, "the cursor shows waiting");
  }

  // Takes back what is open, as a user does who has had enough.
  void Settle(bool atRest) {
    Expect(++settlingSteps_ < kMostSettlingSteps, "what is open cannot be closed");
    if (QWidget* const popup = QApplication::activePopupWidget()) {
      popup->close();
    } else if (QWidget* const modal = QApplication::activeModalWidget()) {
      Press(*modal, Qt::Key_Escape);
    } else if (atRest) {
      timer_.stop();
      QCoreApplication::exit();
    }
  }

  QWidget* PickWindow() {
    QWidget* const popup = QApplication::activePopupWidget();
    if (popup != nullptr && Chance(90)) return popup;
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal != nullptr && modal->isVisible() && Chance(85)) return modal;
    std::vector<QWidget*> windows;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
      const bool usable = window->isVisible() && window->windowHandle() != nullptr;
      if (usable && window->windowType() != Qt::ToolTip) windows.push_back(window);
    }
    std::ranges::sort(windows, {}, [](const QWidget* window) { return ClassOf(*window); });  // Qt sorts by addresses
    return windows.empty() ? nullptr : OneOf(windows);
  }

  // Faults, and what other programs do to the files.
  void ChangeFiles() {
    const std::lock_guard<std::recursive_mutex> lock(files_.mutex);
    if (Chance(5)) files_.faults = {.open = Chance(50) ? std::optional(ErrorNumber::accessDenied) : std::nullopt};
    if (Chance(5)) files_.faults = {.diskSize = static_cast<std::uint64_t>(Below(4000))};
    if (Chance(20)) files_.faults = {};
    if (Chance(1)) files_.files.erase(std::next(files_.files.begin(), Below(static_cast<int>(files_.files.size()))));
    if (files_.files.size() < 5 || files_.files.size() > 150) LayFiles();
  }

  void Act(QWidget& window) {
    ChangeFiles();
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const above = window.windowFlags().testFlag(Qt::Popup) && modal != nullptr ? modal : &window;
    // Qt's own dialogs could print, and change files.
    if (above->inherits("QPrintDialog")) return Press(window, Qt::Key_Escape);
    if (above->inherits("QFileDialog")) return Chance(85) ? NameFile(window) : Press(window, Qt::Key_Escape);
    if (ClassOf(window) == "frmChooseMacroEvent" && Chance(60)) return ChooseCommand(window);
    const int lot = Below(100);
    if (&window == window_ && lot < 25) return ChooseItem(window);
    if (&window == window_ && lot < 32) return Drop(window);
    if (lot < 70) return Click(window);
    if (lot < 85) return Key(window);
    if (lot < 96) return Type(window);
    Note(window, lot < 98 ? "resize" : "close");
    if (window.windowFlags().testFlag(Qt::Popup)) return;
    if (lot < 98) return window.resize(1 + Below(1500), 1 + Below(1000));
    window.windowHandle()->close();  // as the window manager asks for it
  }

  void Mouse(QWidget& control, QPoint place, int clicks = 1, Qt::MouseButton button = Qt::LeftButton) {
    const QPointer<QWindow> window = control.window()->windowHandle();
    const QPointF local = control.mapTo(control.window(), place), global = control.mapToGlobal(place);
    time_ += 1000;  // no double click with the one before
    const auto send = [&](QEvent::Type type, Qt::MouseButtons held, Qt::MouseButton changed) {
      if (window != nullptr) qt_handleMouseEvent(window, local, global, held, changed, type, {}, time_ += 10);
    };
    send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    for (int k = 0; k < clicks; ++k) {
      send(QEvent::MouseButtonPress, button, button);
      send(QEvent::MouseButtonRelease, Qt::NoButton, button);
    }
  }
  void Press(QWidget& window, QKeyCombination keys, const QString& text = {}) {
    const QPointer<QWindow> target = window.windowHandle();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      if (target != nullptr) qt_handleKeyEvent(target, type, keys.key(), keys.keyboardModifiers(), text);
    }
  }

  void Click(QWidget& window) {
    std::vector<QWidget*> controls;
    for (QWidget* const child : window.findChildren<QWidget*>()) {
      if (child->window() != &window || !child->isVisible() || child->rect().isEmpty()) continue;
      if (child->objectName() == "cmdCancel" && &window == window_ && !Chance(3)) continue;  // ends the program
      controls.push_back(child);
    }
    if (window.inherits("QMessageBox") && Chance(80)) {
      std::erase_if(controls, [](QWidget* child) { return !child->inherits("QAbstractButton"); });
    }
    QWidget& control = controls.empty() ? window : *OneOf(controls);
    QPoint place(Below(control.width()), Below(control.height()));
    const auto* const view = qobject_cast<QAbstractItemView*>(control.parentWidget());
    if (view != nullptr && view->model()->rowCount() > 0) {
      place = view->visualRect(view->model()->index(Below(view->model()->rowCount()), 0)).center();
    }
    const int clicks = 1 + Below(2);
    Note(window, std::to_string(clicks) + " clicks on " + FromQt(control.objectName()));
    Mouse(control, place, clicks, Chance(90) ? Qt::LeftButton : Qt::RightButton);
  }

  void Key(QWidget& window) {
    static const QStringList keys = QString(
                                        "Return Tab Backtab Space Up Down Left Right Home End PgUp F1 F2 F3 F4 F5 F6 "
                                        "F7 F8 F10 Del Esc Menu Backspace "
                                        "Shift+Down Ctrl+O "
                                        "Ctrl+S Ctrl+A Ctrl+C Ctrl+F Ctrl+V Ctrl+Z Ctrl+Y Ctrl+L Shift+Up Alt+Up "
                                        "Alt+Down Alt+Left Alt+D Alt+S Alt+E Alt+P Alt+L Alt+O "
                                        "Alt+J Alt+C Alt+H Alt+I Alt+X")
                                        .split(' ');
    const QString key = OneOf(keys);
    Note(window, "key " + FromQt(key));
    Press(window, QKeySequence::fromString(key)[0], key == "Space" ? " " : "");
  }

  void Type(QWidget& window) {
    static const QStringList texts =
        QString("1|0|-7.5|3,2|1e400|neu\\|_ä|Übung ß€|--..,,-1|..\\|/|a:b?|<b>x|%1").split('|');
    const QString text = OneOf(texts);
    const QWidget* const focus = QApplication::focusWidget();
    if (focus != nullptr && focus->objectName() == "txtDirectory") return;  // results would lie anywhere
    Note(window, "type " + FromQt(text));
    const QPointer<QWidget> still = &window;
    for (const QChar letter : text) {
      if (still != nullptr) Press(window, static_cast<Qt::Key>(letter.toUpper().unicode()), letter);
    }
  }

  void ChooseItem(QWidget& window) {
    if (Chance(30)) {
      Note(window, "mark all files and start");
      Press(window, Qt::CTRL | Qt::Key_A);
      return Press(window, Qt::Key_Return);
    }
    QAction* const item = OneOf(window.findChildren<QAction*>(QRegularExpression("^mnu")));
    Note(window, "menu item " + FromQt(item->objectName()));
    if (QApplication::activeModalWidget() == nullptr) item->trigger();
  }

  void ChooseCommand(QWidget& window) {
    auto* const tree = window.findChild<QTreeWidget*>();
    QTreeWidgetItem* const line = OneOf(tree->findItems("*", Qt::MatchWildcard | Qt::MatchRecursive));
    Note(window, "choose " + FromQt(line->text(0)));
    tree->expandAll();
    tree->scrollToItem(line);
    Mouse(*tree->viewport(), tree->visualItemRect(line).center(), 2);
  }

  std::string SomePath() {
    if (Chance(25))
      return OneOf(std::array<std::string, 6>{"neu", "neu.mak", "fehlt/neu.vas", "*.vas", "serie", "fremd"});
    const std::lock_guard<std::recursive_mutex> lock(files_.mutex);
    return OneOf(files_.files).first.substr(place_.size());
  }

  void NameFile(QWidget& dialog) {
    auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
    if (name == nullptr || QApplication::activeModalWidget() != &dialog) return;
    const std::string path = SomePath();
    Note(dialog, "file name " + path);
    name->setText(ToQt(place_ + path));
    name->setFocus();
    Press(dialog, Qt::Key_Return);
  }

  void Drop(QWidget& window) {
    const std::string path = SomePath();
    Note(window, "drop " + path);
    if (QApplication::activeModalWidget() != nullptr) return;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(ToQt(place_ + path)), QUrl::fromLocalFile(ToQt(place_ + SomePath()))});
    QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&window, &event);
  }

  std::mt19937 random_;
  Time::time_point end_;
  std::string place_;
  test::MemoryFileSystem files_;
  QTimer timer_;
  frmMain* window_ = nullptr;
  int steps_ = 0;
  int settlingSteps_ = 0;
  int time_ = 0;  // ms, of the mouse
};

}  // namespace
}  // namespace quiverion::soak

int main(int argc, char** argv) {
  if (argc != 3) return std::puts("window_monkey SECONDS SEED"), 2;
  const QTemporaryDir home;
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    qputenv(name, home.path().toUtf8());  // what Qt keeps for the user
  }
  qputenv("PATH", "");  // no other program is started
  QApplication application(argc, argv);
  quiverion::PrepareApplication(application);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(argv[1]));
  quiverion::soak::Monkey monkey(static_cast<std::uint32_t>(std::atoi(argv[2])), end,
                                 quiverion::FromQt(home.path()) + "/");
  while (monkey.PlayOnce()) {
  }
  return 0;
}
