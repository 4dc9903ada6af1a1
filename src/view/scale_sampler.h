#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "exchange/load_any_field.h"
#include "field/context.h"
#include "messages/silent_user_interface.h"
#include "picture/shown_field.h"
#include "picture/wishes.h"
#include "view/field_series.h"

namespace quiverion {

/// Finds the scale of a series from some of its fields: at once as far as it is quick, the rest between the events.
class ScaleSampler : public QObject {
 public:
  /// `changed` is called whenever there is a better scale. Both must outlive the object.
  ScaleSampler(FileSystem& files, const Clock& clock, std::function<void()> changed);

  /// Begins anew for a quantity, with the field that is shown. The scale of another series or quantity is forgotten.
  /// Other fields do not count if they are results of another statistic, or if one alone fills much memory.
  void Begin(const FieldSeries& series, ShownField& shown, Quantity quantity);

  const std::optional<HeldScale>& Scale() const { return scale_; }

 private:
  void Continue();
  void AddNext();
  void Conclude();

  FileSystem& files_;
  SilentUserInterface ui_;
  RunLog log_;
  Context context_;
  std::function<void()> changed_;
  QTimer timer_;
  exchange::AnyFieldLoader loader_{context_};
  std::vector<FieldSeries::Item> left_;  // last one first
  std::optional<SeriesScale> values_;
  Quantity quantity_ = Quantity::none;
  std::optional<StatisticResult> result_;
  std::optional<HeldScale> scale_;
};

}  // namespace quiverion
