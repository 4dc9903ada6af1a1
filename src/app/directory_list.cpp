#include "app/directory_list.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>

#include "app/navigation.h"
#include "dialogs/widgets/qt_text.h"

namespace quiverion {
namespace {

constexpr int kPath = Qt::UserRole;
constexpr int kIndent = 10;  // pixels for each level
constexpr int kIconSize = 16;

// The picture after the indent of a line.
QIcon IndentedIcon(const QIcon& icon, int depth, qreal scale) {
  const int width = depth * kIndent + kIconSize;
  QPixmap picture((QSizeF(width, kIconSize) * scale).toSize());
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  icon.paint(&painter, QRect(depth * kIndent, 0, kIconSize, kIconSize));
  return picture;
}

}  // namespace

DirectoryList::DirectoryList(QWidget* parent) : QListWidget(parent) {
  connect(this, &QListWidget::itemDoubleClicked, this, &DirectoryList::Choose);
}

void DirectoryList::Choose(const QListWidgetItem* line) {
  if (line != nullptr) emit Chosen(line->data(kPath).toByteArray());
}

void DirectoryList::SetPath(const std::string& path) {
  const std::vector<DirectoryLine> lines = DirectoryLines(path, files_->ListDirectories(path));
  path_ = path;
  clear();
  setIconSize({static_cast<int>(lines.size()) * kIndent + kIconSize, kIconSize});  // enough for the deepest line
  const QIcon open(":/icons/directory-open.ico"), closed(":/icons/directory.ico");
  int current = 0;
  for (const DirectoryLine& line : lines) {
    auto* const item = new QListWidgetItem(IndentedIcon(line.open ? open : closed, line.depth, devicePixelRatioF()),
                                           ToQt(line.name), this);
    item->setData(kPath, QByteArray::fromStdString(line.path));
    if (line.open) current = line.depth;
  }
  setCurrentRow(current);
}

// A click outside the lines keeps the current directory selected.
QItemSelectionModel::SelectionFlags DirectoryList::selectionCommand(const QModelIndex& index,
                                                                    const QEvent* event) const {
  return index.isValid() ? QListWidget::selectionCommand(index, event) : QItemSelectionModel::NoUpdate;
}

void DirectoryList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Choose(currentItem());
    case Qt::Key_Backspace:
      if (const std::string above = ParentDirectory(path_); !above.empty()) {
        emit Chosen(QByteArray::fromStdString(above));
      }
      return;
    default:
      QListWidget::keyPressEvent(event);
  }
}

}  // namespace quiverion
