#include "dialogs/widgets/icons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

// Outside any namespace, as the macro requires.
void UseIcons() {
  Q_INIT_RESOURCE(icons);
}

namespace quiverion {
namespace {

class TextColourEngine : public QIconEngine {
 public:
  explicit TextColourEngine(const QIcon& picture) : picture_(picture) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
    QPixmap shape(size);
    shape.fill(Qt::transparent);
    QPainter painter(&shape);
    picture_.paint(&painter, shape.rect());
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    painter.fillRect(shape.rect(), QApplication::palette().color(group, QPalette::ButtonText));
    return shape;
  }

  QIconEngine* clone() const override { return new TextColourEngine(picture_); }

 private:
  QIcon picture_;
};

}  // namespace

QIcon InTextColour(const QIcon& picture) {
  return QIcon(new TextColourEngine(picture));
}

}  // namespace quiverion
