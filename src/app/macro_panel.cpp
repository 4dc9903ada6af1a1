#include "app/macro_panel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QShortcut>
#include <QToolTip>
#include <algorithm>

#include "app/mouse_rules.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/tool_tip.h"
#include "json/macro_json.h"
#include "macro/command_words.h"
#include "macro/macro_file.h"
#include "messages/failure.h"
#include "ui_frmMain.h"

namespace quiverion {
namespace {

constexpr std::string_view kPasteTitle = "QuiverionSeries - Befehle einfügen";

QString ToolTipOf(const MacroEvent& event) {
  QStringList lines{ToQt(MacroEventDescription(event.EventId(), true))};
  for (const std::string& line : ParametersInWords(event)) lines.append("    " + ToQt(line));
  return quiverion::ToolTipOf(lines);
}

std::string ReasonOf(const Failure& failure) {
  constexpr std::size_t most = 300;  // it may repeat what was read
  std::string reason = failure.formatMessage.value_or(ErrorText(failure.error));
  if (reason.size() > most) reason = FromQt(ToQt(reason.substr(0, most))) + "...";
  return reason;
}

// "&Rückgängig: Befehl löschen"
void ShowStep(QAction& action, const QString& name, const QString& step, bool isPossible) {
  action.setText(step.isEmpty() ? name : name + ": " + step);
  action.setEnabled(isPossible);
}

}  // namespace

MacroPanel::MacroPanel(Ui::frmMain& controls, Session& session, ParameterWindows& dialogs, MacroEditing& editing,
                       std::function<std::string()> directory)
    : ui_(controls),
      session_(session),
      dialogs_(dialogs),
      editing_(editing),
      directory_(std::move(directory)),
      history_(session) {
  for (QPushButton* const arrow : {ui_.cmdMoveUp, ui_.cmdMoveDown}) arrow->setIcon(InTextColour(arrow->icon()));
  ui_.lstMacroList->viewport()->installEventFilter(this);
  ConnectEdits();
  ConnectKeys();
}

void MacroPanel::Guarded(const std::function<void()>& action) {
  dialogs_.SetTopic({});
  quiverion::Guarded(session_.context.ui, action);
}

void MacroPanel::ConnectEdits() {
  QListWidget* const list = ui_.lstMacroList;
  connect(ui_.cmdNewMacroEvent, &QPushButton::clicked, this, &MacroPanel::Insert);
  connect(ui_.cmdEditMacroEvent, &QPushButton::clicked, this, &MacroPanel::Edit);
  connect(ui_.cmdDeleteMacroEvent, &QPushButton::clicked, this, &MacroPanel::Delete);
  connect(ui_.cmdMoveUp, &QPushButton::clicked, this, [this] { Move(-1); });
  connect(ui_.cmdMoveDown, &QPushButton::clicked, this, [this] { Move(1); });
  connect(list, &QListWidget::itemDoubleClicked, this, &MacroPanel::Edit);
  connect(list, &QListWidget::itemSelectionChanged, this, &MacroPanel::ShowChosen);
  new RightButton(*list, [this] {
    ui_.lstMacroList->clearSelection();
    ui_.cmdOk->setFocus();
  });
  connect(ui_.mnuUndo, &QAction::triggered, &history_, &MacroHistory::Undo);
  connect(ui_.mnuRedo, &QAction::triggered, &history_, &MacroHistory::Redo);
  connect(ui_.mnuCopyCommands, &QAction::triggered, this, &MacroPanel::Copy);
  connect(ui_.mnuPasteCommands, &QAction::triggered, this, &MacroPanel::Paste);
  connect(&history_, &MacroHistory::MacroRestored, this, [this](int line) {
    ShowMacro();
    ShowAround(line);
  });
  const auto showSteps = [this, undo = ui_.mnuUndo->text(), redo = ui_.mnuRedo->text()] {
    const QUndoStack& steps = history_.Stack();
    ShowStep(*ui_.mnuUndo, undo, steps.undoText(), steps.canUndo());
    ShowStep(*ui_.mnuRedo, redo, steps.redoText(), steps.canRedo());
  };
  connect(&history_.Stack(), &QUndoStack::indexChanged, this, showSteps);
  showSteps();
}

void MacroPanel::ConnectKeys() {
  const auto onKeys = [this](const QKeySequence& keys, QWidget* where, Qt::ShortcutContext context, auto action) {
    auto* const shortcut = new QShortcut(keys, where);
    shortcut->setContext(context);
    connect(shortcut, &QShortcut::activated, this, action);
  };
  onKeys(Qt::Key_Delete, ui_.lstMacroList, Qt::WidgetShortcut, [this] { Delete(); });
  onKeys(Qt::Key_Insert, ui_.lstMacroList, Qt::WidgetShortcut, [this] { Insert(); });
  const auto inside = Qt::WidgetWithChildrenShortcut;
  for (QAction* const action : {ui_.mnuCopyCommands, ui_.mnuPasteCommands}) {  // other lists have their own
    action->setShortcutContext(inside);
    ui_.fraMacroList->addAction(action);
  }
  onKeys(Qt::ALT | Qt::Key_Up, ui_.fraMacroList, inside, [this] { Move(-1); });
  onKeys(Qt::ALT | Qt::Key_Down, ui_.fraMacroList, inside, [this] { Move(1); });
}

bool MacroPanel::eventFilter(QObject* /*viewport*/, QEvent* event) {
  if (event->type() != QEvent::ToolTip) return false;
  const auto* const help = static_cast<QHelpEvent*>(event);
  const QModelIndex index = ui_.lstMacroList->indexAt(help->pos());
  const auto line = static_cast<std::size_t>(index.row());
  if (!index.isValid() || line >= session_.macro.size()) {
    QToolTip::hideText();
  } else {
    QToolTip::showText(help->globalPos(), ToolTipOf(session_.macro[line]), ui_.lstMacroList->viewport());
  }
  return true;
}

std::vector<int> MacroPanel::SelectedLines() const {
  std::vector<int> lines;
  for (const QModelIndex& index : ui_.lstMacroList->selectionModel()->selectedIndexes()) lines.push_back(index.row());
  std::ranges::sort(lines);
  return lines;
}

int MacroPanel::SelectedLine() const {
  const std::vector<int> lines = SelectedLines();
  return lines.empty() ? -1 : lines.front();
}

void MacroPanel::ShowMacro(const std::vector<int>& selected) {
  QListWidget* const list = ui_.lstMacroList;
  const int current = std::max(list->currentRow(), 0);
  {
    const QSignalBlocker blocker(list);  // one change is told, not each line
    list->clear();
    for (const MacroEvent& event : session_.macro) list->addItem(ToQt(MacroEventDescription(event.EventId(), true)));
    // The keyboard focus continues from its position, even if no line is selected.
    const int line = selected.empty() ? std::min(current, list->count() - 1) : selected.front();
    list->setCurrentRow(line, QItemSelectionModel::NoUpdate);
    for (const int each : selected) list->item(each)->setSelected(true);
  }
  ShowChosen();
}

void MacroPanel::ShowChosen() {
  ShowParameters();
  emit Changed(SelectedLine());
}

void MacroPanel::ShowParameters() {
  const std::vector<int> lines = SelectedLines();
  QString brief;
  if (lines.size() == 1) brief = ToQt(ParametersInBrief(session_.macro[static_cast<std::size_t>(lines.front())]));
  ui_.lblParameters->setText(brief.simplified());
}

void MacroPanel::ShowAround(int line) {
  QListWidget* const list = ui_.lstMacroList;
  if (list->count() > 0) list->scrollToItem(list->item(std::clamp(line, 0, list->count() - 1)));
}

void MacroPanel::Insert() {
  Guarded([this] {
    int position = -1;
    history_.Edit(QStringLiteral("Befehl einfügen"), [&] { position = editing_.Insert(SelectedLine(), directory_()); });
    if (position < 0) return;
    ShowMacro();
    ShowAround(position);
  });
}

void MacroPanel::Edit() {
  Guarded([this] {
    bool changed = false;
    history_.Edit(QStringLiteral("Parameter bearbeiten"),
                  [&] { changed = editing_.Edit(SelectedLine(), directory_()); });
    if (changed) ShowMacro();
  });
}

void MacroPanel::Delete() {
  Guarded([this] {
    bool changed = false;
    const std::vector<int> lines = SelectedLines();
    history_.Edit(lines.size() > 1 ? QStringLiteral("Befehle löschen") : QStringLiteral("Befehl löschen"),
                  [&] { changed = editing_.Delete(lines); });
    if (changed) ShowMacro();
  });
}

void MacroPanel::Move(int by) {
  Guarded([this, by] {
    const std::vector<int> selected = SelectedLines();
    std::vector<int> moved;
    history_.Edit(QStringLiteral("Befehl verschieben"), [&] { moved = editing_.Move(selected, by); });
    if (moved != selected) ShowMacro(moved);
  });
}

void MacroPanel::Load(const std::string& path) {
  bool loaded = false;
  history_.Edit(QStringLiteral("Makro öffnen"), [&] { loaded = LoadMacroFile(session_, path); });
  if (loaded) ShowMacro();
}

void MacroPanel::Copy() {
  Guarded([this] {
    MacroEventList commands;
    for (const int line : SelectedLines()) commands.push_back(session_.macro[static_cast<std::size_t>(line)]);
    if (!commands.empty()) QGuiApplication::clipboard()->setText(ToQt(MacroToJson(commands)));
  });
}

void MacroPanel::Paste() {
  Guarded([this] {
    MacroEventList commands;
    const std::string text = FromQt(QGuiApplication::clipboard()->text());
    if (const auto failure = Attempt([&] { commands = MacroFromJson(text); })) {
      session_.context.ui.Ask({.title = std::string(kPasteTitle),
                               .text = "Die Zwischenablage enthält keine Befehle!\r\n" + ReasonOf(*failure)});
      return;
    }
    MacroEventList& macro = session_.macro;
    const int selected = SelectedLine();
    const std::ptrdiff_t position = selected < 0 ? std::ssize(macro) : selected;
    history_.Edit(commands.size() == 1 ? QStringLiteral("Befehl einfügen") : QStringLiteral("Befehle einfügen"),
                  [&] { macro.insert(macro.begin() + position, commands.begin(), commands.end()); });
    ShowMacro();
    ShowAround(static_cast<int>(position));
  });
}

}  // namespace quiverion
