#pragma once

#include <QPlainTextEdit>
#include <QWidget>

class QLabel;
class QLineEdit;

namespace quiverion {

/// A line below a text in which to type what is to be found in it. Hidden until it is opened; Escape closes it.
class FindBar : public QWidget {
  Q_OBJECT

 public:
  explicit FindBar(QWidget* parent = nullptr);

  /// The text must outlive the bar. Call this first.
  void Use(QPlainTextEdit& text) { text_ = &text; }

  /// Shows the bar, with the selected text to begin with.
  void Open();

  /// Selects the next or previous place, and goes on at the other end of the text. Opens the bar if there is nothing to
  /// find yet.
  void FindNext();
  void FindPrevious();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void FindTyped();
  void Find(QTextDocument::FindFlags flags);
  void Show(const QTextCursor& found);

  QPlainTextEdit* text_ = nullptr;
  QLineEdit* typed_;
  QLabel* notFound_;
};

}  // namespace quiverion
