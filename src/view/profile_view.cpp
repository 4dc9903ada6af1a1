#include "view/profile_view.h"

#include <QPainter>

#include "dialogs/widgets/dark_palette.h"
#include "view/picture_painter.h"

namespace quiverion {

ProfileView::ProfileView(QWidget* parent) : QWidget(parent) {
  setMinimumSize(160, 120);
}

void ProfileView::Show(std::function<Picture(const PictureChoices&)> compose) {
  compose_ = std::move(compose);
  update();
}

void ProfileView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (!compose_) {
    painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("Mit gedrückter Strg-Taste eine Linie über das Vektorfeld ziehen"));
    return;
  }
  PictureChoices choices;
  choices.width = width();
  choices.height = height();
  choices.textSize = QFontInfo(font()).pixelSize();
  choices.darkPaper = IsDark(palette());
  PaintPicture(painter, compose_(choices), devicePixelRatioF());
}

}  // namespace quiverion
