#pragma once

#include <QAbstractButton>
#include <vector>

#include "macro/run_plan.h"

namespace quiverion {

/// Findings in one line, each in the colour of its severity; what has no room is in the tool tip. To be pressed for the
/// list behind them.
class ForecastButton : public QAbstractButton {
  Q_OBJECT

 public:
  explicit ForecastButton(QWidget* parent = nullptr);

  void ShowFindings(const std::vector<PlanFinding>& findings);

  /// That they are not known yet.
  void ShowPending();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  struct Part {
    QString text;
    Severity severity;
  };

  std::vector<Part> parts_;
  bool isPending_ = false;
};

}  // namespace quiverion
