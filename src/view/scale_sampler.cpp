#include "view/scale_sampler.h"

#include <QElapsedTimer>
#include <algorithm>

namespace quiverion {
namespace {

constexpr int kFields = 20;
constexpr qint64 kAtOnce = 100;                         // ms
constexpr std::size_t kLargest = std::size_t{1} << 21;  // vectors of a field

}  // namespace

ScaleSampler::ScaleSampler(FileSystem& files, const Clock& clock, std::function<void()> changed)
    : files_(files), context_(files_, ui_, log_, clock), changed_(std::move(changed)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, [this] { Continue(); });
}

void ScaleSampler::Begin(const FieldSeries& series, ShownField& shown, Quantity quantity) {
  left_.clear();
  const bool many = shown.Field().status.Values().size() <= kLargest;
  for (const int index : series.Sample(many ? kFields : 1)) left_.push_back(series.At(index));
  left_.erase(left_.begin());  // the one that is shown
  std::ranges::reverse(left_);
  quantity_ = quantity;
  result_ = StatisticResultOf(shown.Field());
  values_.emplace(quantity);
  values_->Add(shown.Field(), shown.Values(quantity).grid);
  scale_.reset();
  QElapsedTimer time;
  time.start();
  while (!left_.empty() && time.elapsed() < kAtOnce) AddNext();
  Conclude();
  if (!left_.empty()) timer_.start(0);
}

void ScaleSampler::Continue() {
  AddNext();
  if (!left_.empty()) return timer_.start(0);
  Conclude();
  changed_();
}

void ScaleSampler::AddNext() {
  const FieldSeries::Item item = left_.back();
  left_.pop_back();
  context_.abortCurrentFile = false;
  loader_.Load(item.path, item.field);
  if (!context_.abortCurrentFile && StatisticResultOf(context_.field) == result_) values_->Add(context_.field);
}

void ScaleSampler::Conclude() {
  scale_ = HeldScale{quantity_, result_, values_->Reference(), values_->BarLimits()};
  if (!left_.empty()) return;
  context_.field = {};  // its memory
  loader_.Forget();
}

}  // namespace quiverion
