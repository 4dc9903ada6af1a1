#include "dialogs/parameters/frmChooseMacroEvent.h"

#include <QIcon>
#include <map>

#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "macro/command_catalogue.h"
#include "ui_frmChooseMacroEvent.h"

namespace quiverion {
namespace {

constexpr int kKey = Qt::UserRole;  // "K" and the id of a node

std::int32_t EventIdOf(const QTreeWidgetItem& node) {
  return node.data(0, kKey).toString().mid(1).toInt();
}

}  // namespace

frmChooseMacroEvent::frmChooseMacroEvent(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmChooseMacroEvent>()) {
  UseIcons();
  ui_->setupUi(this);
  FillTree();
  ui_->cmdOk->setEnabled(false);
  QTreeWidget* const tree = ui_->tvwMacroEvents;
  connect(tree, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* node) {
    ui_->cmdOk->setEnabled(CommandIsSelected());
    const CommandRow* const command = node == nullptr ? nullptr : FindCommand(EventIdOf(*node));
    setProperty("helpTopic", command == nullptr ? QString() : ToQt(command->constantName));
  });
  connect(tree, &QTreeWidget::itemClicked, this, [this] { ui_->cmdOk->setEnabled(CommandIsSelected()); });
  connect(tree, &QTreeWidget::itemDoubleClicked, this,
          [this] { AcceptCommand(); });  // Enter presses the default button
  connect(ui_->cmdOk, &QPushButton::clicked, this, [this] { AcceptCommand(); });
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmChooseMacroEvent::~frmChooseMacroEvent() = default;

void frmChooseMacroEvent::FillTree() {
  const QIcon closedMenu(":/icons/menu-closed.ico"), openMenu(":/icons/menu-open.ico"), command(":/icons/command.ico");
  std::map<std::int32_t, QTreeWidgetItem*> nodes;
  for (const CommandRow& row : CommandCatalogue()) {
    auto* const node =
        row.parent == 0 ? new QTreeWidgetItem(ui_->tvwMacroEvents) : new QTreeWidgetItem(nodes.at(row.parent));
    nodes[row.eventId] = node;
    node->setText(0, ToQt(MacroEventDescription(row.eventId, false)));
    node->setData(0, kKey, QStringLiteral("K%1").arg(row.eventId));
    node->setIcon(0, row.IsMenu() ? closedMenu : command);
  }
  // The key "*" would expand commands, too.
  const auto showIcon = [](const QIcon& icon) {
    return [icon](QTreeWidgetItem* node) {
      if (node->childCount() > 0) node->setIcon(0, icon);
    };
  };
  connect(ui_->tvwMacroEvents, &QTreeWidget::itemExpanded, this, showIcon(openMenu));
  connect(ui_->tvwMacroEvents, &QTreeWidget::itemCollapsed, this, showIcon(closedMenu));
}

bool frmChooseMacroEvent::CommandIsSelected() const {
  const QTreeWidgetItem* const node = ui_->tvwMacroEvents->currentItem();
  return node != nullptr && node->childCount() == 0;
}

void frmChooseMacroEvent::AcceptCommand() {
  if (CommandIsSelected()) accept();
}

std::optional<std::int32_t> frmChooseMacroEvent::Choose() {
  ui_->tvwMacroEvents->setFocus();
  if (RunModal(*this) != Accepted) return std::nullopt;
  return EventIdOf(*ui_->tvwMacroEvents->currentItem());
}

}  // namespace quiverion
