#pragma once

#include <QTextBrowser>

namespace quiverion {

/// Shows a page of the manual in the colours of the palette.
class HelpBrowser : public QTextBrowser {
  Q_OBJECT

 public:
  using QTextBrowser::QTextBrowser;

  QVariant loadResource(int type, const QUrl& name) override;

 protected:
  void changeEvent(QEvent* event) override;
};

}  // namespace quiverion
