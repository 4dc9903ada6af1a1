#pragma once

#include <QWidget>
#include <optional>
#include <string>
#include <vector>

#include "preview/series_sample.h"

namespace quiverion {

/// What the macro does to a sample of a series: for each file a bar of the rejected and the filled share; odd files are
/// marked. A click, or Enter on the file that the arrow keys have chosen, opens it.
class SampleStrip : public QWidget {
  Q_OBJECT

 public:
  explicit SampleStrip(QWidget* parent = nullptr);

  /// `count` is the number of files that there will be.
  void Show(const std::vector<SampledFile>& files, std::size_t count, const std::vector<std::string>& names,
            std::size_t current);

 signals:
  void Chosen(int index);  ///< of the file in the series

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QRectF PlaceOf(std::size_t place) const;
  std::optional<std::size_t> FileAt(QPointF at) const;
  QString TextOf(const SampledFile& file) const;

  std::vector<SampledFile> files_;
  std::vector<std::string> names_;  // of the files
  std::size_t count_ = 0;
  std::size_t current_ = 0;  // in the series
  std::size_t focused_ = 0;
};

}  // namespace quiverion
