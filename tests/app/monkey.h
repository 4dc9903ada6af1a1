#pragma once

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QRegularExpression>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <QWindow>
#include <algorithm>
#include <map>
#include <random>

#include "app/frmMain.h"
#include "dialogs/qt_text.h"
#include "dialogs/run_modal.h"
#include "monkey_house.h"
#include "platform/paths.h"

namespace quiverion::test {

/// A user without aim: random keys, clicks, texts, drops and file names for the windows that are up, as the window system
/// would deliver them. Windows behind a dialog get their share, too: the program has to keep that from them.
class Monkey : public QObject {
 public:
  struct Game {
    std::function<bool()> isOver;
    std::function<void()> otherProgram;                 // changes files, now and then
    std::function<void()> atRest;                       // when the game is over: only the main window is up
    std::function<void(const std::string& what)> fail;  // something is wrong; the game is over then
  };

  /// What is typed into file dialogs lies in `place`, which ends in a separator.
  Monkey(std::uint32_t seed, std::string place) : random_(seed), place_(std::move(place)) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &Monkey::Step);
  }

  /// Plays with the window and what it opens, until the window is closed or the game is over.
  void PlayWith(frmMain& window, const Game& game) {
    window_ = &window;
    game_ = game;
    settlingSteps_ = 0;
    for (const QAction* const item : window.findChildren<QAction*>()) {
      connect(item, &QAction::triggered, this, [this, item] { ++reached_[FromQt(item->objectName())]; });
    }
    timer_.start(0);
    QCoreApplication::exec();
    timer_.stop();
  }

  std::size_t Steps() const { return steps_; }
  const History& Past() const { return history_; }

  /// How often each window was played with ("frmHelp"), each button clicked ("frmHelp.cmdBack"), each menu item chosen.
  const std::map<std::string, int>& Reached() const { return reached_; }

 private:
  struct Deed {
    int weight;
    void (Monkey::*act)(QWidget& window);
  };
  static constexpr int kMostSettlingSteps = 20000;

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <class List>
  auto OneOf(const List& list) {
    return *std::next(std::begin(list), Below(static_cast<int>(std::size(list))));
  }

  void Step() {
    history_.Beat();
    // Before anything opens: a timer that is in its own slot does not tick in the loop of a window.
    timer_.start(0);
    // While the window waits for its place, what the user does is held back.
    if (window_->isVisible() && !window_->windowHandle()->isExposed()) return;
    try {
      if (IsAtRest()) CheckRest();
      if (settlingSteps_ > 0 || game_.isOver()) return Settle();
      ++steps_;
      if (window_->TheSession().context.busy && window_->isVisible()) ++reached_["a computation"];
      Act();
    } catch (const std::exception& error) {
      Fail(std::string("an exception came out of an event: ") + error.what());
    }
  }

  void Fail(const std::string& what) {
    if (settlingSteps_ < kMostSettlingSteps) game_.fail(what);
    settlingSteps_ = kMostSettlingSteps;
  }

  bool IsAtRest() const {
    return QThread::currentThread()->loopLevel() == 1 && !window_->TheSession().context.busy &&
           QApplication::activePopupWidget() == nullptr;
  }

  // Nothing runs and nothing asks: the main window has to be ready.
  void CheckRest() {
    const auto expect = [this](bool holds, const char* what) {
      if (!holds) Fail(std::string("nothing is going on, but ") + what);
    };
    expect(QApplication::activeModalWidget() == nullptr, "a modal window is up");
    expect(window_->isVisible() && window_->isEnabled(), "the main window cannot be used");
    expect(window_->findChild<QWidget*>("cmdOk")->isVisible(), "there is no Start");
    expect(!window_->findChild<QProgressBar*>()->isVisible(), "the progress of a computation is shown");
    expect(window_->cursor().shape() == Qt::ArrowCursor, "the cursor shows waiting");
    for (const QWidget* const other : QApplication::topLevelWidgets()) {
      const bool mayBe = qobject_cast<const QDialog*>(other) == nullptr || ClassOf(*other) == "frmHelp";
      expect(mayBe || !other->isVisible(), "another window is up");
    }
  }

  // Takes back what is open, as a user does who has had enough.
  void Settle() {
    if (++settlingSteps_ == kMostSettlingSteps) game_.fail("what is open cannot be closed");
    if (QWidget* const popup = QApplication::activePopupWidget()) {
      popup->close();
    } else if (QWidget* const modal = QApplication::activeModalWidget()) {
      Press(*modal, Qt::Key_Escape);
    } else if (IsAtRest() || settlingSteps_ > kMostSettlingSteps) {
      timer_.stop();
      if (IsAtRest()) game_.atRest();
      QCoreApplication::exit();
    }
  }

  void Act() {
    using M = Monkey;
    static constexpr Deed inMain[] = {{35, &M::Click},     {16, &M::Key},        {3, &M::Type}, {2, &M::Resize},
                                      {1, &M::Close},      {2, &M::Pause},       {6, &M::Drop}, {8, &M::MarkAndStart},
                                      {9, &M::ChooseItem}, {3, &M::OtherProgram}};
    static constexpr Deed inDialog[] = {{48, &M::Click}, {15, &M::Key},  {20, &M::Type},       {3, &M::Resize},
                                        {2, &M::Close},  {2, &M::Pause}, {1, &M::OtherProgram}};
    static constexpr Deed inTree[] = {
        {60, &M::ChooseCommand}, {15, &M::Click}, {10, &M::Key}, {2, &M::Resize}, {2, &M::Close}};
    static constexpr Deed inBox[] = {{70, &M::Answer}, {10, &M::Click}, {15, &M::Key}, {2, &M::Resize}, {5, &M::Close}};
    static constexpr Deed inFileDialog[] = {
        {40, &M::NameFile}, {20, &M::TouchFileDialog}, {8, &M::HarmlessKey}, {3, &M::Resize}, {5, &M::Close},
        {6, &M::Pause},     {2, &M::OtherProgram}};
    static constexpr Deed inItsPopup[] = {{1, &M::Click}, {1, &M::HarmlessKey}};
    static constexpr Deed inPrintDialog[] = {{8, &M::HarmlessKey}, {2, &M::Resize}, {3, &M::Close}};
    QWidget* const window = PickWindow();
    if (window == nullptr) return;
    if (!IsBehindDialog(*window)) ++reached_[ClassOf(*window)];
    if (!IsBehindDialog(*window) || Chance(10)) window->activateWindow();
    // Qt's own dialogs could lead elsewhere, and print.
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const above = window->windowFlags().testFlag(Qt::Popup) && modal != nullptr ? modal : window;
    if (above->inherits("QPrintDialog")) return Do(inPrintDialog, *window);
    if (above->inherits("QFileDialog")) return above == window ? Do(inFileDialog, *window) : Do(inItsPopup, *window);
    if (window == window_) return Do(inMain, *window);
    if (ClassOf(*window) == "frmChooseMacroEvent") return Do(inTree, *window);
    window->inherits("QMessageBox") ? Do(inBox, *window) : Do(inDialog, *window);
  }

  template <std::size_t count>
  void Do(const Deed (&deeds)[count], QWidget& window) {
    int sum = 0;
    for (const Deed& deed : deeds) sum += deed.weight;
    int chosen = Below(sum);
    for (const Deed& deed : deeds) {
      chosen -= deed.weight;
      if (chosen < 0) return (this->*deed.act)(window);
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

  // Rather what a user would aim at.
  QWidget& PickControl(QWidget& window) {
    std::vector<QWidget*> all, usable;
    for (QWidget* const child : window.findChildren<QWidget*>()) {
      if (child->window() != &window || !child->isVisible() || child->rect().isEmpty()) continue;
      // Closing the main window ends the program.
      if (&window == window_ && child->objectName() == "cmdCancel" && !Chance(3)) continue;
      all.push_back(child);
      const bool isViewport = qobject_cast<QAbstractScrollArea*>(child->parentWidget()) != nullptr;
      const bool takesFocus =
          child->focusPolicy() != Qt::NoFocus && qobject_cast<QAbstractScrollArea*>(child) == nullptr;
      if (isViewport || takesFocus || qobject_cast<QMenuBar*>(child) != nullptr) usable.push_back(child);
    }
    if (all.empty()) return window;
    return *(usable.empty() || Chance(5) ? OneOf(all) : OneOf(usable));
  }

  // Rather a line of a list or an item of a menu than beside them.
  QPoint PickPlace(QWidget& control) {
    const QPoint anywhere(Below(control.width()), Below(control.height()));
    if (Chance(15)) return anywhere;
    const QList<QAction*> items = control.actions();
    if (const auto* const menu = qobject_cast<QMenu*>(&control)) return menu->actionGeometry(OneOf(items)).center();
    if (const auto* const bar = qobject_cast<QMenuBar*>(&control)) return bar->actionGeometry(OneOf(items)).center();
    const auto* const view = qobject_cast<QAbstractItemView*>(control.parentWidget());
    const int rows = view == nullptr || view->viewport() != &control ? 0 : view->model()->rowCount(view->rootIndex());
    if (rows == 0) return anywhere;
    const QPoint line = view->visualRect(view->model()->index(Below(rows), 0, view->rootIndex())).center();
    return control.rect().contains(line) ? line : anywhere;
  }

  void Mouse(QWidget& control, QPoint place, int clicks = 1, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers keys = {}) {
    const QPointer<QWindow> window = control.window()->windowHandle();
    const QPointF local = control.mapTo(control.window(), place), global = control.mapToGlobal(place);
    time_ += 1000;  // no double click with the one before
    const auto send = [&](QEvent::Type type, Qt::MouseButtons held, Qt::MouseButton changed) {
      if (window != nullptr) qt_handleMouseEvent(window, local, global, held, changed, type, keys, time_ += 10);
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
    constexpr Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier};
    QWidget& control = PickControl(window);
    const bool plain = Chance(75);
    const Qt::MouseButton button = plain || Chance(60) ? Qt::LeftButton : Qt::RightButton;
    const int clicks = plain || button == Qt::RightButton ? 1 : 1 + Below(3);
    Note(window, (button == Qt::LeftButton ? std::to_string(clicks) : "right") + " click on " + NameOf(control));
    const bool isButton = qobject_cast<QAbstractButton*>(&control) != nullptr && control.isEnabled();
    if (isButton && !IsBehindDialog(window)) ++reached_[ClassOf(window) + "." + NameOf(control)];
    Mouse(control, PickPlace(control), clicks, button, plain ? Qt::NoModifier : OneOf(modifiers));
  }

  void Key(QWidget& window) {
    static const QStringList keys =
        QString(
            "Return Enter Tab Backtab Space Space Up Down Left Right Home End PgUp F1 F2 F5 F10 Del Ins Esc Menu "
            "Backspace Shift+Down Shift+End Ctrl+O Ctrl+S Ctrl+A Ctrl+C Ctrl+X Ctrl+Z Ctrl+Y Ctrl+Tab Alt+Up "
            "Alt+Down Alt+Left Alt+Right Alt+D Alt+S Alt+E Alt+P Alt+L Alt+A Alt+O Alt+J Alt+N")
            .split(' ');
    const QKeyCombination key = QKeySequence::fromString(OneOf(keys))[0];
    if (&window == window_ && key == (Qt::ALT | Qt::Key_A) && !Chance(3)) return;  // ends the program
    Note(window, "key " + FromQt(QKeySequence(key).toString()));
    Press(window, key, key.key() == Qt::Key_Space ? " " : "");
  }

  void HarmlessKey(QWidget& window) {
    constexpr Qt::Key keys[] = {Qt::Key_Escape, Qt::Key_Tab, Qt::Key_F1};
    const Qt::Key key = OneOf(keys);
    Note(window, "key " + FromQt(QKeySequence(key).toString()));
    Press(window, key);
  }

  // By keys or from the clipboard.
  void Type(QWidget& window) {
    static const QStringList texts =
        QString("1|0|-7.5|3,2|1e400|0.00001|neu\\|_ä|Übung ß€|--..,,-1|..\\|/|a:b?|<b>x|%1|\xF0\x9D\x84\x9E| |a\tb\nc")
            .split('|');
    const QString text = Chance(90) ? OneOf(texts) : QString(1 + Below(Chance(20) ? 20000 : 400), u"91b/"[Below(4)]);
    QList<QLineEdit*> boxes = window.findChildren<QLineEdit*>();
    boxes.removeIf([](const QLineEdit* box) { return !box->isVisible(); });
    if (!boxes.isEmpty() && Chance(80)) Mouse(*OneOf(boxes), {3, 3});
    Note(window, "type " + std::to_string(text.size()) + " letters: " + FromQt(text.left(20)));
    if (Chance(50)) Press(window, Qt::CTRL | Qt::Key_A);
    if (text.size() > 40 || Chance(20)) {
      QGuiApplication::clipboard()->setText(text);
      Press(window, Qt::CTRL | Qt::Key_V);
    } else {
      const QPointer<QWidget> still = &window;
      for (const QChar letter : text) {
        if (still != nullptr) Press(window, static_cast<Qt::Key>(letter.toUpper().unicode()), letter);
      }
    }
  }

  void Resize(QWidget& window) {
    if (window.windowFlags().testFlag(Qt::Popup)) return;
    Note(window, "resize");
    if (Chance(20)) return window.isMaximized() ? window.showNormal() : window.showMaximized();
    window.resize(1 + Below(1500), 1 + Below(1000));
  }

  void Close(QWidget& window) {
    const bool ends = &window == window_ && !window_->TheSession().context.busy && !IsBehindDialog(window);
    if (ends && !Chance(20)) return;
    Note(window, "close");
    window.windowHandle()->close();  // as the window manager asks for it
  }

  void Pause(QWidget& window) {
    Note(window, "pause");
    timer_.start(Below(150));
  }

  void OtherProgram(QWidget& window) {
    Note(window, "another program changes files");
    game_.otherProgram();
  }

  void ChooseCommand(QWidget& window) {
    auto* const tree = window.findChild<QTreeWidget*>();
    const QList<QTreeWidgetItem*> all = tree->findItems("*", Qt::MatchWildcard | Qt::MatchRecursive);
    QTreeWidgetItem* const line = OneOf(all);
    Note(window, "choose " + FromQt(line->text(0)));
    tree->expandAll();
    tree->scrollToItem(line);
    Mouse(*tree->viewport(), tree->visualItemRect(line).center(), 2);
  }

  void Answer(QWidget& window) {
    QAbstractButton* const button = OneOf(window.findChildren<QAbstractButton*>());
    Note(window, "answer " + FromQt(button->text()));
    Mouse(*button, button->rect().center());
  }

  void MarkAndStart(QWidget& window) {
    Note(window, "mark all files and start");
    Press(window, Qt::CTRL | Qt::Key_A);
    Press(window, Qt::Key_Return);
  }

  void ChooseItem(QWidget& window) {
    QAction* const item = OneOf(window.findChildren<QAction*>(QRegularExpression("^mnu")));
    Note(window, "menu item " + FromQt(item->objectName()));
    if (!IsBehindDialog(window)) item->trigger();
  }

  void Drop(QWidget& window) {
    QList<QUrl> urls;
    do urls.append(QUrl::fromLocalFile(place_.c_str() + SomePath()));
    while (Chance(40));
    if (Chance(5)) urls.append(QUrl("https://example.org/a.vas"));
    Note(window, "drop " + std::to_string(urls.size()) + " files, " + FromQt(urls.front().fileName()));
    if (IsBehindDialog(window)) return;
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&window, &enter);
    QDropEvent event({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&window, &event);
    // The command line does the same without a drop.
    if (Chance(30)) window_->OpenPaths({PathFromQt(urls.front().toLocalFile())});
  }

  // Without ".." and not absolute.
  QString SomePath() {
    static const QStringList paths =
        QString(
            "serie/a.dat|serie/b.vas|serie/c.vec|serie|serie/kaputt.vas|serie/notes.txt|s.col|viele.col|Größe 1|"
            "Größe 1/Übung ä.vas|Größe 1/Übung ä.col|Größe "
            "1/alles.mak|makro.mak|kaputt.mak|kaputt.col|leer|neu|neu.mak|"
            "neu.col|neu.txt|neu.vas|fehlt/neu.vas|serie/neu 2|ß€.col|*.vas|")
            .split('|');
    return Chance(2) ? QString(300, u'x') : OneOf(paths);
  }

  void NameFile(QWidget& window) {
    const auto& dialog = static_cast<QFileDialog&>(window);
    // Rather of the kind that is asked for.
    const QString kind = dialog.nameFilters().value(0).section("*", -1).chopped(1);
    QString path = SomePath();
    for (int k = 0; k < 20 && !path.endsWith(kind) && Chance(80); ++k) path = SomePath();
    Note(window, "file name " + FromQt(path));
    if (IsBehindDialog(window)) return;
    const bool isInPlace = WithSeparator(PathFromQt(dialog.directory().absolutePath())).starts_with(place_);
    auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
    name->setText((isInPlace && Chance(30) ? "" : place_.c_str()) + path);
    name->setFocus();
    Press(window, Qt::Key_Return);
  }

  void TouchFileDialog(QWidget& dialog) {
    Note(dialog, "view, filter or line");
    auto* const filters = dialog.findChild<QComboBox*>("fileTypeCombo");
    auto* const list = dialog.findChild<QAbstractItemView*>(Chance(50) ? "listView" : "treeView");
    switch (Below(4)) {
      case 0:
        return filters->setCurrentIndex(Below(filters->count()));
      case 1:  // what begins with it is proposed
        dialog.findChild<QLineEdit*>("fileNameEdit")->setFocus();
        return Press(dialog, Qt::Key_S, "s");
      case 2:
        return dialog.findChild<QAbstractButton*>(Chance(50) ? "listModeButton" : "detailModeButton")->click();
      default:
        if (list->isVisible()) Mouse(*list->viewport(), PickPlace(*list->viewport()));
    }
  }

  static std::string ClassOf(const QWidget& widget) {
    return FromQt(QString(widget.metaObject()->className()).section("::", -1));
  }
  static std::string NameOf(const QWidget& widget) {
    return widget.objectName().isEmpty() ? ClassOf(widget) : FromQt(widget.objectName());
  }
  void Note(const QWidget& window, const std::string& what) { history_.Add(ClassOf(window) + ": " + what); }

  std::mt19937 random_;
  std::string place_;
  QTimer timer_;
  Game game_;
  frmMain* window_ = nullptr;
  int settlingSteps_ = 0;
  int time_ = 0;  // ms, of the mouse
  std::size_t steps_ = 0;
  History history_;
  std::map<std::string, int> reached_;
};

}  // namespace quiverion::test
