#include "app/run_forecast.h"

#include <QLabel>
#include <QLayout>
#include <QStatusBar>

#include "dialogs/widgets/qt_text.h"
#include "messages/failure.h"

namespace quiverion {
namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenChanges = 20ms;  // a selection that is being dragged changes often
constexpr auto kBeforePending = 80ms;   // an answer before that replaces the old one without a flicker

template <class Widget>
Widget& Named(Widget* widget, const char* name) {
  widget->setObjectName(QString::fromLatin1(name));
  return *widget;
}

}  // namespace

RunForecast::RunForecast(FileSystem& files, QStatusBar& bar, std::function<ForecastInput()> input)
    : files_(files),
      input_(std::move(input)),
      selection_(Named(new QLabel(&bar), "lblSelection")),
      findings_(Named(new ForecastButton(&bar), "cmdForecast")) {
  selection_.setTextFormat(Qt::PlainText);
  constexpr int margin = 9;  // as that of the window
  bar.setContentsMargins(margin, 0, 0, 0);
  bar.addWidget(&selection_);
  bar.addWidget(&findings_, 1);
  for (QTimer* const timer : {&begin_, &pending_}) timer->setSingleShot(true);
  begin_.setInterval(kBetweenChanges);
  pending_.setInterval(kBeforePending);
  connect(&begin_, &QTimer::timeout, this, &RunForecast::Begin);
  connect(&pending_, &QTimer::timeout, this, [this] { findings_.ShowPending(); });
  connect(&findings_, &QAbstractButton::clicked, this, &RunForecast::Show);
}

void RunForecast::Refresh() {
  ++number_;  // what is being computed is of yesterday
  forecast_ = nullptr;
  if (isStopped_) return;
  if (!begin_.isActive()) begin_.start();
  if (!pending_.isActive()) pending_.start();
}

void RunForecast::Stop() {
  isStopped_ = true;
  ++number_;
  begin_.stop();
  pending_.stop();
  task_.Stop();
}

void RunForecast::Resume() {
  isStopped_ = false;
  Refresh();
}

void RunForecast::Begin() {
  ForecastInput input = input_();
  selection_.setText(ToQt(SelectionText(input.request.files.size(), input.listed)));
  selection_.parentWidget()->layout()->activate();  // not cut off for a moment
  const std::uint64_t number = ++number_;
  task_.Run([this, number, input = std::move(input)](const NewestTask::IsCancelled& isCancelled) {
    auto forecast = std::make_shared<PlannedRun>();
    const auto failure = Attempt([&] {
      auto plan = PlanRun(files_, input.request, isCancelled);
      if (!plan) return;
      forecast->plan = std::move(*plan);
      forecast->macro = input.request.macro;
      forecast->listed = input.listed;
      if (!forecast->plan.files.empty()) forecast->findings = FindingsOf(forecast->plan);
    });
    if (failure) forecast->findings = {{Severity::warning, "Prüfung nicht möglich: " + ErrorText(failure->error)}};
    if (isCancelled()) return;
    QMetaObject::invokeMethod(
        this, [this, number, forecast] { Finish(number, forecast); }, Qt::QueuedConnection);
  });
}

void RunForecast::Finish(std::uint64_t number, std::shared_ptr<const PlannedRun> forecast) {
  if (number != number_) return;
  pending_.stop();
  forecast_ = std::move(forecast);
  findings_.ShowFindings(forecast_->findings);
  if (std::exchange(isWanted_, false)) emit Wanted(forecast_);
}

void RunForecast::Show() {
  isWanted_ = forecast_ == nullptr;
  if (forecast_) emit Wanted(forecast_);
}

}  // namespace quiverion
