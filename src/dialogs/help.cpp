#include "dialogs/help.h"

#include <QApplication>
#include <QKeyEvent>
#include <QResource>

#include "dialogs/qt_text.h"

namespace quiverion {
namespace {

constexpr const char* kRoot = "/hilfe";

// The name of a window's class without its namespace.
QString ClassOf(const QWidget& window) {
  return QString(window.metaObject()->className()).section("::", -1);
}

}  // namespace

Help::Help(std::string file, std::function<std::string()> topic, QWidget& home, UserInterface& messages)
    : file_(std::move(file)), topic_(std::move(topic)), home_(home), messages_(messages) {
  qApp->installEventFilter(this);
}

Help::~Help() {
  if (!window_) return;
  delete window_;
  QResource::unregisterResource(QFile::decodeName(file_.c_str()), kRoot);
}

bool Help::HasWindow() {
  if (window_) return true;
  if (!QResource::registerResource(QFile::decodeName(file_.c_str()), kRoot)) {
    messages_.Ask({.title = "QuiverionSeries", .text = "Die Hilfe-Datei '" + file_ + "' ist nicht vorhanden!"});
    return false;
  }
  window_ = new frmHelp(QString(":") + kRoot, &home_);
  return true;
}

void Help::FollowDialog() {
  QWidget* const modal = QApplication::activeModalWidget();
  QWidget* const owner = modal != nullptr ? modal : &home_;
  if (!window_ || owner == window_->parentWidget()) return;
  const bool visible = window_->isVisible();
  const QPoint place = window_->pos();
  window_->setParent(owner, window_->windowFlags());  // hides it
  if (visible) {
    window_->move(place);
    window_->show();
  }
  if (auto* const dialog = qobject_cast<QDialog*>(owner)) {
    connect(dialog, &QDialog::finished, this, &Help::FollowDialog, Qt::UniqueConnection);
  }
}

void Help::Raise() {
  FollowDialog();
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void Help::ShowContents() {
  if (!HasWindow()) return;
  window_->ShowContents();
  Raise();
}

void Help::ShowIndex() {
  if (!HasWindow()) return;
  window_->ShowIndex();
  Raise();
}

void Help::ShowFor(const QWidget& window) {
  if (!HasWindow()) return;
  const QString own = window.property("helpTopic").toString();
  QString shown = QStringLiteral("frmMain");
  for (const QString& topic : {own, ClassOf(window), ToQt(topic_())}) {
    if (window_->Pages().TargetOf(topic).isEmpty()) continue;
    shown = topic;
    break;
  }
  window_->ShowTopic(shown);
  Raise();
}

bool Help::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  const QWidget* const window = static_cast<QWidget*>(watched)->window();
  if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || window == &home_) return false;
  if (window != window_) ShowFor(*window);
  return true;
}

}  // namespace quiverion
