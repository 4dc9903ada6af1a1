#include "export/table_writer.h"

namespace quiverion {

PrintedNumbers::PrintedNumbers(std::span<const double> values, char decimalSeparator) {
  printed_.reserve(values.size());
  for (const double value : values) {
    char text[kMaxNumberLength];
    const char* const end = PrintNumberTo(text, value, decimalSeparator);
    Printed& printed = printed_.emplace_back();
    std::memcpy(printed.text, text, sizeof printed.text);
    printed.length = static_cast<unsigned char>(end - text);
  }
}

TableWriter::TableWriter(ResultFile& file, char decimalSeparator)
    : file_(file),
      decimalSeparator_(decimalSeparator),
      block_(std::make_unique_for_overwrite<char[]>(kBlockSize)),
      end_(block_.get()) {}

void TableWriter::Finish() {
  const std::string_view written(block_.get(), static_cast<std::size_t>(end_ - block_.get()));
  end_ = block_.get();
  file_.Write(written);
}

}  // namespace quiverion
