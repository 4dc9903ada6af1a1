#pragma once

#include <QPalette>
#include <QWidget>

namespace quiverion {

/// Black on white whatever the desktop's colours are: for texts whose own colours are made for paper.
inline void ShowAsPaper(QWidget& widget) {
  QPalette paper = widget.palette();
  paper.setColor(QPalette::Base, Qt::white);
  paper.setColor(QPalette::Text, Qt::black);
  widget.setPalette(paper);
}

}  // namespace quiverion
