#include "dialogs/help/help.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QResource>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {
namespace {

constexpr const char* kRoot = "/hilfe";

// The topics that a window itself provides, the best one first.
QStringList NamesOf(const QWidget& window) {
  const auto* const menu = qobject_cast<const QMenu*>(&window);
  if (menu != nullptr && menu->activeAction() != nullptr) return {menu->activeAction()->objectName()};
  // The class, without its namespace.
  return {window.property("helpTopic").toString(), QString(window.metaObject()->className()).section("::", -1)};
}

}  // namespace

Help::Help(std::string file, std::function<std::string()> topic, const QWidget& home, UserInterface& messages)
    : file_(std::move(file)), topic_(std::move(topic)), home_(home), messages_(messages) {
  qApp->installEventFilter(this);
}

Help::~Help() {
  if (!window_) return;
  window_.reset();
  QResource::unregisterResource(PathToQt(file_), kRoot);
}

bool Help::HasWindow() {
  if (window_) return true;
  const QString pages = QString(":") + kRoot;
  QResource::registerResource(PathToQt(file_), kRoot);
  if (!QFile::exists(pages + "/inhalt.html")) {
    messages_.Ask({.title = "QuiverionSeries", .text = "Die Hilfe-Datei '" + file_ + "' ist nicht vorhanden!"});
    return false;
  }
  window_ = std::make_unique<frmHelp>(pages);
  return true;
}

void Help::Raise() {
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

QString Help::TopicOf(const QWidget& window) const {
  const auto known = [this](const QString& topic) { return !window_->Pages().TargetOf(topic).isEmpty(); };
  for (const QWidget* below = &window; below != nullptr && below != &home_; below = below->parentWidget()) {
    for (const QString& name : NamesOf(*below)) {
      if (known(name)) return name;
    }
  }
  const QString current = ToQt(topic_());
  return known(current) ? current : QStringLiteral("frmMain");
}

void Help::ShowFor(const QWidget& window) {
  if (!HasWindow()) return;
  window_->ShowTopic(TopicOf(window));
  Raise();
}

bool Help::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  const QWidget* const window = static_cast<QWidget*>(watched)->window();
  if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || window == &home_) return false;
  if (window == window_.get()) return true;
  ShowFor(*window);
  if (QWidget* const menu = QApplication::activePopupWidget()) menu->close();
  return true;
}

}  // namespace quiverion
