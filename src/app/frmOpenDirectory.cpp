#include "app/frmOpenDirectory.h"

#include <QCompleter>
#include <QDir>
#include <QFileSystemModel>

#include "dialogs/widgets/qt_text.h"
#include "ui_frmOpenDirectory.h"

namespace quiverion {

frmOpenDirectory::frmOpenDirectory(const std::string& directory, QWidget* parent)
    : QDialog(parent), directory_(directory), ui_(std::make_unique<Ui::frmOpenDirectory>()) {
  ui_->setupUi(this);
  auto* const directories = new QFileSystemModel(this);
  directories->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives);
  directories->setOption(QFileSystemModel::DontUseCustomDirectoryIcons);
  directories->setRootPath(QString());
  auto* const completer = new QCompleter(directories, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  ui_->txtPath->setCompleter(completer);
  ui_->txtPath->setText(QDir::toNativeSeparators(PathToQt(directory)));
  ui_->txtPath->selectAll();
  const int letter = fontMetrics().averageCharWidth();
  resize(sizeHint().expandedTo({70 * letter, 0}));
  connect(ui_->cmdOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmOpenDirectory::~frmOpenDirectory() = default;

std::string frmOpenDirectory::Path() const {
  if (!ui_->txtPath->isModified()) return directory_;  // it may have bytes that are no text
  QString path = ui_->txtPath->text().trimmed();
  if (path.size() > 1 && path.startsWith(u'"') && path.endsWith(u'"')) path = path.mid(1, path.size() - 2);
  if (path == u"~" || path.startsWith(u"~/")) path = QDir::homePath() + path.mid(1);
  if (path.isEmpty()) return {};
  return PathFromQt(QDir::cleanPath(QDir(PathToQt(directory_)).filePath(path)));
}

}  // namespace quiverion
