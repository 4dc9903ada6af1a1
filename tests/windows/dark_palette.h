#pragma once

#include <QApplication>
#include <QPalette>

namespace quiverion::test {

/// The desktop is dark for as long as this lives.
class DarkPalette {
 public:
  DarkPalette() {
    QPalette dark(QColor("#303030"));
    dark.setColor(QPalette::Base, QColor("#202020"));
    dark.setColor(QPalette::Text, QColor("#f0f0f0"));
    Use(dark);
  }
  ~DarkPalette() { Use(before_); }
  DarkPalette(const DarkPalette&) = delete;
  DarkPalette& operator=(const DarkPalette&) = delete;

 private:
  static void Use(const QPalette& palette) {
    QApplication::setPalette(palette);
    QApplication::processEvents();  // windows learn it then
  }

  QPalette before_ = QApplication::palette();
};

}  // namespace quiverion::test
