#include "view/scale_sampler.h"

#include <QElapsedTimer>
#include <algorithm>

#include "field/formats/load_original_file.h"

namespace quiverion {
namespace {

constexpr int kFields = 20;
constexpr qint64 kAtOnce = 100;  // ms

}  // namespace

ScaleSampler::ScaleSampler(FileSystem& files, const Clock& clock, std::function<void()> changed)
    : files_(files), context_(files_, ui_, log_, clock), changed_(std::move(changed)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, [this] { Continue(); });
}

void ScaleSampler::Begin(const FieldSeries& series, Quantity quantity) {
  left_.clear();
  for (const int index : series.Sample(kFields)) left_.push_back(series.Path(index));
  std::ranges::reverse(left_);
  quantity_ = quantity;
  values_.emplace(quantity);
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
  const std::string path = left_.back();
  left_.pop_back();
  context_.abortCurrentFile = false;
  LoadOriginalFile(context_, path);
  if (!context_.abortCurrentFile) values_->Add(context_.field);
}

void ScaleSampler::Conclude() {
  scale_ = HeldScale{quantity_, values_->Reference(), values_->BarLimits()};
  if (!left_.empty()) return;
  context_.field = {};  // its memory
}

}  // namespace quiverion
