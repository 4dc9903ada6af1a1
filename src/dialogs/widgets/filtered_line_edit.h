#pragma once

#include <QLineEdit>
#include <string>

#include "dialogs/widgets/key_filter.h"

namespace quiverion {

/// A text box that accepts only the characters of its rule, whether typed, pasted or dropped. Its whole text is
/// selected when it receives the focus.
class FilteredLineEdit : public QLineEdit {
  Q_OBJECT

 public:
  explicit FilteredLineEdit(QWidget* parent = nullptr);

  void SetRule(KeyRule rule) { rule_ = rule; }

  /// Shows a stored text unchanged, without applying the rule.
  void ShowText(const std::string& text);

  std::string Text() const;

  /// Wide enough for the numbers that are usual, and for one that is shown.
  QSize minimumSizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  class Filter;

  void InsertFiltered(const QString& typed);

  KeyRule rule_ = KeyRule::signedNumber;
  QString held_;            // the text before the change that is being filtered
  bool selectAll_ = false;  // the click in progress has set the focus
};

}  // namespace quiverion
