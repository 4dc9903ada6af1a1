#pragma once

#include <optional>
#include <string>

#include "exchange/foreign_field.h"
#include "field/context.h"

namespace quiverion::exchange {

/// Loads fields of any program for those who only look at them.
class AnyFieldLoader {
 public:
  explicit AnyFieldLoader(Context& context) : context_(context) {}

  /// Loads field `index` (from 0) of a file into the current field: as LoadOriginalFile does, or, if another program
  /// has written the file, with everything assumed that it does not say. The log and `abortCurrentFile` say whether
  /// that has worked.
  void Load(const std::string& path, std::size_t index = 0);

  /// Of the last file that was loaded.
  std::size_t FieldCount() const { return fieldCount_; }

  /// What the last file was taken for, a German line; empty for one that needs no import.
  const std::string& TakenFor() const { return takenFor_; }

  /// The fields of the last file are kept if there are several. After this, they are read again.
  void Forget() { kept_.reset(); }

 private:
  bool IsForeign(const std::string& path) const;
  void LoadForeign(const std::string& path, std::size_t index);

  Context& context_;
  std::size_t fieldCount_ = 1;
  std::string takenFor_;
  std::string keptPath_;
  std::optional<ForeignFile> kept_;
};

}  // namespace quiverion::exchange
