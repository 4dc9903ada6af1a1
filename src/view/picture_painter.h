#pragma once

#include <QImage>
#include <QPainter>

#include "picture/picture.h"

namespace quiverion {

/// Paints a picture; its pixels are the units of the painter. Cells become an image of `resolution` pixels for each of
/// these.
void PaintPicture(QPainter& painter, const Picture& picture, double resolution = 1.0);

/// The picture as an image, `scale` times as large.
QImage ImageOf(const Picture& picture, double scale = 1.0);

/// The family of all texts in pictures: the first of DejaVu Sans, Arial and Liberation Sans that the machine has, else
/// the one of its windows. No font comes with the program.
QString PictureFontFamily();

}  // namespace quiverion
