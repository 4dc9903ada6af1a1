#include "field/formats/dat_fields.h"

#include <algorithm>

#include "messages/system_error.h"

namespace quiverion {

DatFields::DatFields(InputFile& file) {
  const auto size = static_cast<std::size_t>(file.Size());
  text_.reset(new char[size + kPadding]);  // not zeroed: the file overwrites it
  end_ = file.Read(text_.get(), size);
  std::fill_n(text_.get() + end_, kPadding, '\0');
}

void DatFields::TakeSeparator() {
  if (AtEnd()) return;
  const char separator = text_[at_++];
  if (separator == '\r' && !AtEnd() && text_[at_] == '\n') ++at_;
}

std::string_view DatFields::NextQuoted() {
  const std::string_view rest = Rest().substr(1);
  const std::size_t length = std::min(rest.find('"'), rest.size());
  at_ += 1 + length;
  if (!AtEnd()) ++at_;
  while (!AtEnd() && text_[at_] == ' ') ++at_;
  if (!AtEnd() && std::string_view(",\r\n").find(text_[at_]) != std::string_view::npos) TakeSeparator();
  return rest.substr(0, length);
}

std::string_view DatFields::Next() {
  if (AtEnd()) throw SystemError(ErrorNumber::endOfFile);
  while (!AtEnd() && text_[at_] == ' ') ++at_;
  if (!AtEnd() && text_[at_] == '"') return NextQuoted();
  const std::string_view rest = Rest();
  const std::size_t length = std::min(rest.find_first_of(",\r\n"), rest.size());
  at_ += length;
  TakeSeparator();
  return rest.substr(0, length);
}

}  // namespace quiverion
