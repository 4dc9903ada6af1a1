#pragma once

#include <QWidget>
#include <functional>

#include "picture/compose.h"

namespace quiverion {

/// Paints whatever picture it is given for its size: the profile along a line.
class ProfileView : public QWidget {
  Q_OBJECT

 public:
  explicit ProfileView(QWidget* parent = nullptr);

  /// `compose` makes the picture for a size; it must stay callable until the next call.
  void Show(std::function<Picture(const PictureChoices&)> compose);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::function<Picture(const PictureChoices&)> compose_;
};

}  // namespace quiverion
