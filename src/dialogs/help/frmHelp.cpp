#include "dialogs/help/frmHelp.h"

#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>
#include <QTabBar>
#include <QTreeWidgetItemIterator>
#include <algorithm>

#include "ui_frmHelp.h"

namespace quiverion {
namespace {

constexpr int kTarget = Qt::UserRole;

}  // namespace

frmHelp::frmHelp(const QString& directory, QWidget* parent)
    : QDialog(parent), directory_(directory), pages_(directory), ui_(std::make_unique<Ui::frmHelp>()) {
  ui_->setupUi(this);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  ui_->splitter->setSizes({250, 650});
  ui_->txtPage->setSearchPaths({directory_});
  FillContents();
  for (const HelpEntry& keyword : pages_.Keywords()) {
    auto* const line = new QListWidgetItem(keyword.text, ui_->lstKeywords);
    line->setData(kTarget, keyword.target);
  }
  const auto openTree = [this](QTreeWidgetItem* item) {
    if (item != nullptr) Open(item->data(0, kTarget).toString());
  };
  connect(ui_->tvwContents, &QTreeWidget::itemClicked, this, openTree);
  connect(ui_->tvwContents, &QTreeWidget::itemActivated, this, openTree);
  const auto openLine = [this](QListWidgetItem* item) {
    if (item != nullptr) Open(item->data(kTarget).toString());
  };
  connect(ui_->lstKeywords, &QListWidget::itemClicked, this, openLine);
  connect(ui_->lstKeywords, &QListWidget::itemActivated, this, openLine);
  ui_->txtKeyword->installEventFilter(this);
  // By its access key or the mouse; the arrow keys move on to the next tab.
  connect(ui_->tabs, &QTabWidget::currentChanged, this, [this] {
    if (ui_->tabs->currentWidget() == ui_->tabIndex && !ui_->tabs->tabBar()->hasFocus()) ui_->txtKeyword->setFocus();
  });
  connect(ui_->txtKeyword, &QLineEdit::textChanged, this, &frmHelp::FilterKeywords);
  connect(ui_->txtKeyword, &QLineEdit::returnPressed, this,
          [this, openLine] { openLine(ui_->lstKeywords->currentItem()); });
  connect(ui_->cmdBack, &QPushButton::clicked, ui_->txtPage, &QTextBrowser::backward);
  connect(ui_->cmdForward, &QPushButton::clicked, ui_->txtPage, &QTextBrowser::forward);
  connect(ui_->cmdClose, &QPushButton::clicked, this, &QDialog::close);
  connect(ui_->txtPage, &QTextBrowser::backwardAvailable, ui_->cmdBack, &QWidget::setEnabled);
  connect(ui_->txtPage, &QTextBrowser::forwardAvailable, ui_->cmdForward, &QWidget::setEnabled);
  connect(ui_->txtPage, &QTextBrowser::sourceChanged, this, &frmHelp::PageChanged);
  connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, ui_->cmdBack, &QPushButton::click);
  connect(new QShortcut(QKeySequence::Forward, this), &QShortcut::activated, ui_->cmdForward, &QPushButton::click);
}

frmHelp::~frmHelp() = default;

void frmHelp::FillContents() {
  std::vector<QTreeWidgetItem*> branch;  // the last item of each depth
  for (const HelpEntry& entry : pages_.Contents()) {
    const auto depth = std::min(static_cast<std::size_t>(entry.depth), branch.size());
    branch.resize(depth);
    auto* const item = new QTreeWidgetItem({entry.text});
    item->setData(0, kTarget, entry.target);
    if (branch.empty()) {
      ui_->tvwContents->addTopLevelItem(item);
    } else {
      branch.back()->addChild(item);
    }
    branch.push_back(item);
  }
}

void frmHelp::Open(const QString& target) {
  ui_->txtPage->setSource(QUrl(target));
}

void frmHelp::ShowContents() {
  ui_->tabs->setCurrentWidget(ui_->tabContents);
  Open(QStringLiteral("inhalt.html"));
  ui_->tvwContents->setFocus();
}

void frmHelp::ShowIndex() {
  ui_->tabs->setCurrentWidget(ui_->tabIndex);
  if (ui_->txtPage->source().isEmpty()) Open(QStringLiteral("stichworte.html"));
  ui_->txtKeyword->setFocus();
  ui_->txtKeyword->selectAll();
}

void frmHelp::ShowTopic(const QString& topic) {
  const QString target = pages_.TargetOf(topic);
  if (target.isEmpty()) return ShowContents();
  Open(target);
  ui_->txtPage->setFocus();
}

bool frmHelp::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  constexpr int moving[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
  if (std::ranges::find(moving, static_cast<QKeyEvent*>(event)->key()) == std::end(moving)) return false;
  QApplication::sendEvent(ui_->lstKeywords, event);
  return true;
}

// Keywords that contain the text anywhere; the first one is selected.
void frmHelp::FilterKeywords(const QString& text) {
  QListWidgetItem* first = nullptr;
  for (int row = 0; row < ui_->lstKeywords->count(); ++row) {
    QListWidgetItem* const line = ui_->lstKeywords->item(row);
    const bool matches = line->text().contains(text, Qt::CaseInsensitive);
    line->setHidden(!matches);
    if (matches && first == nullptr) first = line;
  }
  ui_->lstKeywords->setCurrentItem(first);
}

// The table of contents follows the page.
void frmHelp::PageChanged(const QUrl& url) {
  const QString target = url.toString();
  setWindowTitle("QuiverionSeries - Hilfe: " + ui_->txtPage->documentTitle());
  QTreeWidgetItem* page = nullptr;
  for (QTreeWidgetItemIterator item(ui_->tvwContents); *item != nullptr; ++item) {
    const QString candidate = (*item)->data(0, kTarget).toString();
    if (candidate == target) {
      page = *item;
      break;
    }
    if (candidate == target.section(u'#', 0, 0)) page = *item;
  }
  if (page == nullptr) return;
  ui_->tvwContents->setCurrentItem(page);
  ui_->tvwContents->scrollToItem(page);
}

}  // namespace quiverion
