#include "view/preview/comparison_view.h"

#include <QHBoxLayout>

#include "dialogs/widgets/qt_text.h"
#include "picture/scales.h"
#include "picture/statuses.h"

namespace quiverion {
namespace {

constexpr int kBlink = 600;  // ms

}  // namespace

ComparisonView::ComparisonView(QWidget* parent)
    : QWidget(parent), main_(new FieldView(this)), other_(new FieldView(this)) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(other_, 1);
  layout->addWidget(main_, 1);
  main_->setObjectName("FieldView");
  main_->setAccessibleName(tr("Vektorfeld"));
  other_->setObjectName("FieldViewBefore");
  other_->setAccessibleName(tr("Vektorfeld vorher"));
  other_->hide();
  blinker_.setInterval(kBlink);
  connect(&blinker_, &QTimer::timeout, this, [this] {
    showsBefore_ = !showsBefore_;
    ShowFields();
  });
  for (const auto& [from, to] : {std::pair(main_, other_), std::pair(other_, main_)}) {
    connect(from, &FieldView::ViewChanged, this, [this, from = from, to = to] { Follow(*from, *to); });
    connect(from, &FieldView::PointHovered, this, &ComparisonView::PointHovered);
    connect(from, &FieldView::LegendClicked, this, &ComparisonView::LegendClicked);
  }
}

void ComparisonView::Follow(FieldView& from, FieldView& to) {
  if (to.isVisible()) to.SetView(from.View());
}

void ComparisonView::Show(std::shared_ptr<PreviewFields> fields, const ViewWishes& wishes) {
  // What was shown must live until the views show something else.
  const std::shared_ptr<PreviewFields> last = std::exchange(fields_, std::move(fields));
  wishes_ = wishes;
  ShowFields();
}

void ComparisonView::ShowMessage(const QString& text) {
  main_->ShowMessage(text);
  other_->ShowMessage({});
  other_->hide();
  fields_.reset();
}

void ComparisonView::SetMode(ComparisonMode mode) {
  mode_ = mode;
  showsBefore_ = false;
  if (mode == ComparisonMode::blink) {
    blinker_.start();
  } else {
    blinker_.stop();
  }
  ShowFields();
}

void ComparisonView::Fit() {
  main_->Fit();
}

void ComparisonView::ShowIn(FieldView& view, PreparedField& field, bool ownScale) {
  ViewWishes wishes = wishes_;
  if (ownScale) {
    wishes.quantity = Quantity::speed;
    wishes.limits.reset();
  }
  PictureChoices choices =
      ChoicesFor(*field.field, field.shown.Summary(), wishes, ownScale ? std::nullopt : fields_->scale);
  choices.processed = true;  // the file's own limits were chosen for the field as it was
  view.ShowField(field.shown, choices);
}

void ComparisonView::ShowFields() {
  if (fields_ == nullptr) return;
  const bool beside = mode_ == ComparisonMode::sideBySide;
  const bool before = mode_ == ComparisonMode::before || (mode_ == ComparisonMode::blink && showsBefore_);
  const QString tagBefore =
      fields_->comparedStep == 0 ? tr("geladen") : tr("nach Schritt %1").arg(fields_->comparedStep);
  const QString tagAfter = fields_->step == 0 ? tr("geladen") : tr("nach Schritt %1").arg(fields_->step);
  other_->setVisible(beside);
  if (!beside) other_->ShowMessage({});  // it must not keep what will be gone
  if (mode_ == ComparisonMode::difference) {
    if (fields_->difference == nullptr) {
      main_->ShowMessage(tr("Die Gitter liegen nicht an derselben Stelle: Es gibt keine Differenz."));
      return;
    }
    ShowIn(*main_, *fields_->difference, true);
    main_->ShowTag(tr("Änderung, ") + tagAfter);
    return;
  }
  ShowIn(*main_, before ? *fields_->before : *fields_->after, false);
  if (mode_ == ComparisonMode::wipe) main_->ShowLeftOfLine(&fields_->before->shown);
  main_->ShowTag(before ? tagBefore : tagAfter, tagBefore);
  if (!beside) return;
  ShowIn(*other_, *fields_->before, false);
  other_->ShowTag(tagBefore);
  other_->SetView(main_->View());
}

QString ComparisonView::Readout(GridPoint point) const {
  if (fields_ == nullptr) return {};
  const auto text = [&](const std::shared_ptr<PreparedField>& field) {
    const bool has = field && point.i <= field->field->columnCount && point.j <= field->field->rowCount;
    return has ? ToQt(ReadoutText(*field->field, point)) : QString();
  };
  if (mode_ == ComparisonMode::difference) return text(fields_->difference);
  const VectorField& before = *fields_->before->field;
  QString line = text(fields_->after);
  if (point.i <= before.columnCount && point.j <= before.rowCount) {
    const VectorValues values = ValuesAt(before, point);
    line += tr("   |   vorher: u %1  v %2 m/s, %3")
                .arg(ToQt(NumberText(values.u, 5)), ToQt(NumberText(values.v, 5)),
                     ToQt(NameOf(KindOf(values.status), OriginOf(before))));
  }
  return line;
}

}  // namespace quiverion
