#include "dialogs/help/help_browser.h"

#include <QEvent>
#include <QScrollBar>

#include "dialogs/widgets/dark_palette.h"

namespace quiverion {

// The pages are made for paper, as browsers show them. What is added here comes last and wins.
QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
  const QVariant resource = QTextBrowser::loadResource(type, name);
  if (type != QTextDocument::StyleSheetResource) return resource;
  QString style = QString::fromUtf8(resource.toByteArray());
  if (IsDark(palette())) {
    style += QString::fromUtf8(QTextBrowser::loadResource(type, QUrl(QStringLiteral("dunkel.css"))).toByteArray());
  }
  return style + QStringLiteral("body { background-color: %1; color: %2; }")
                     .arg(palette().color(QPalette::Base).name(), palette().color(QPalette::Text).name());
}

void HelpBrowser::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || source().isEmpty()) return;
  const int place = verticalScrollBar()->value();
  reload();
  verticalScrollBar()->setValue(place);
}

}  // namespace quiverion
