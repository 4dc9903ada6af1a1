#include "dialogs/macro_history.h"

#include <algorithm>
#include <utility>

namespace quiverion {

// The commands of the macro between an equal beginning and an equal end, before and after.
class MacroHistory::Step : public QUndoCommand {
 public:
  Step(MacroHistory& history, const QString& what, const MacroEventList& before, const MacroEventList& after,
       int movement)
      : QUndoCommand(what), history_(history), movement_(movement) {
    const auto [oldBegin, newBegin] = std::ranges::mismatch(before, after);
    place_ = oldBegin - before.begin();
    std::ptrdiff_t equal = 0;
    const std::ptrdiff_t most = std::min(before.end() - oldBegin, after.end() - newBegin);
    while (equal < most && before.end()[-equal - 1] == after.end()[-equal - 1]) ++equal;
    removed_.assign(oldBegin, before.end() - equal);
    inserted_.assign(newBegin, after.end() - equal);
  }

  void undo() override { Exchange(inserted_, removed_); }
  void redo() override {
    if (!std::exchange(isNew_, false)) Exchange(removed_, inserted_);
  }

  int id() const override { return movement_; }
  bool mergeWith(const QUndoCommand* other) override {
    const auto& next = static_cast<const Step&>(*other);
    if (next.place_ != place_ || next.text() != text() || next.removed_ != inserted_) return false;
    inserted_ = next.inserted_;
    setObsolete(inserted_ == removed_);
    return true;
  }

 private:
  void Exchange(const MacroEventList& present, const MacroEventList& wanted) const {
    MacroEventList& macro = history_.session_.macro;
    const auto begin = macro.begin() + place_;
    macro.insert(macro.erase(begin, begin + std::ssize(present)), wanted.begin(), wanted.end());
    emit history_.MacroRestored(static_cast<int>(place_));
  }

  MacroHistory& history_;
  int movement_;
  bool isNew_ = true;  // what it does has been done
  std::ptrdiff_t place_ = 0;
  MacroEventList removed_, inserted_;
};

MacroHistory::MacroHistory(Session& session) : session_(session) {
  stack_.setUndoLimit(kSteps);
}

void MacroHistory::Edit(const QString& what, const std::function<void()>& edit) {
  constexpr int isWhole = -1;  // never merged
  Record(what, edit, isWhole);
}

void MacroHistory::Move(const QString& what, const std::function<void()>& edit) {
  Record(what, edit, movement_);
}

void MacroHistory::Record(const QString& what, const std::function<void()>& edit, int movement) {
  const MacroEventList before = session_.macro;
  const auto record = [&] {
    if (session_.macro != before) stack_.push(new Step(*this, what, before, session_.macro, movement));
  };
  try {
    edit();
  } catch (...) {
    record();
    throw;
  }
  record();
}

}  // namespace quiverion
