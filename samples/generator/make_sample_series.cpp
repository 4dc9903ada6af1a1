// Writes a series of synthetic measurements in all input formats.

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "sample_field.h"
#include "sample_files.h"

namespace quiverion::samples {
namespace {

constexpr int kExitWriteError = 1;
constexpr int kExitUsage = 2;

constexpr std::string_view kUsage =
    "Aufruf: make_sample_series VERZEICHNIS [--count N] [--seed N] [--columns N] [--rows N]\n";

// The counts of a VEC header are 16-bit numbers, and its rows are those of all ten frames together.
constexpr int kMaxColumns = 30000;
constexpr int kMaxRows = 3276;
constexpr int kMaxPoints = 1 << 26;
constexpr int kMaxFiles = 100000;

struct Arguments {
  std::string directory;
  int count = 10;
  SampleOptions options;
};

template <typename Number>
bool ParseNumber(std::string_view text, Number smallest, Number largest, Number& value) {
  const char* end = text.data() + text.size();
  Number parsed{};
  const auto result = std::from_chars(text.data(), end, parsed);
  if (result.ec != std::errc{} || result.ptr != end || parsed < smallest || parsed > largest) return false;
  value = parsed;
  return true;
}

/// Returns the German message for the first argument that does not fit, or an empty text.
std::string SetOption(std::string_view name, std::string_view text, Arguments& arguments) {
  SampleOptions& options = arguments.options;
  bool good = false;
  if (name == "--count") {
    good = ParseNumber(text, 1, kMaxFiles, arguments.count);
  } else if (name == "--seed") {
    good = ParseNumber(text, std::uint64_t{0}, UINT64_MAX, options.seed);
  } else if (name == "--columns") {
    good = ParseNumber(text, 1, kMaxColumns, options.columns);
  } else if (name == "--rows") {
    good = ParseNumber(text, 1, kMaxRows, options.rows);
  } else {
    return "Unbekannte Option: " + std::string(name);
  }
  return good ? std::string() : "Ungültiger Wert für " + std::string(name) + ": " + std::string(text);
}

std::string ReadArguments(const std::vector<std::string>& words, Arguments& arguments) {
  for (std::size_t k = 0; k < words.size(); ++k) {
    if (!words[k].starts_with("--")) {
      if (words[k].empty() || !arguments.directory.empty()) return "Genau ein Verzeichnis angeben.";
      arguments.directory = words[k];
      continue;
    }
    if (k + 1 == words.size()) return "Option unbekannt oder ohne Wert: " + words[k];
    std::string message = SetOption(words[k], words[k + 1], arguments);
    if (!message.empty()) return message;
    ++k;
  }
  if (arguments.directory.empty()) return "Genau ein Verzeichnis angeben.";
  if (arguments.options.columns > kMaxPoints / arguments.options.rows) return "Das Gitter ist zu groß.";
  return {};
}

// All numbers of a series have the same width, so that the names sort in the order of the measurements.
std::string FileName(int number, int count, std::string_view extension) {
  const std::string digits = std::to_string(number);
  const std::size_t width = std::max<std::size_t>(2, std::to_string(count).size());
  return "run" + std::string(width - digits.size(), '0') + digits + std::string(extension);
}

struct SampleFile {
  std::string extension;
  std::string bytes;
};

// The formats alternate.
SampleFile MakeFile(const SampleField& field, int index) {
  switch (index % 5) {
    case 0:
      return {".vas", VasBytes(field)};
    case 1:
      return {".dat", DatBytes(field)};
    default:
      return {".vec", VecBytes(field, index % 5 - 1)};
  }
}

bool WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) return false;
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file) return true;
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
  return false;
}

int WriteSeries(const Arguments& arguments) {
  const std::filesystem::path directory(arguments.directory);
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (!std::filesystem::is_directory(directory, error)) {
    std::cerr << "Das Verzeichnis '" << arguments.directory << "' kann nicht angelegt werden.\n";
    return kExitWriteError;
  }
  SampleOptions options = arguments.options;
  for (int k = 0; k < arguments.count; ++k) {
    options.index = k;
    const SampleFile file = MakeFile(MakeSampleField(options), k);
    const std::string name = FileName(k + 1, arguments.count, file.extension);
    if (!WriteFile(directory / name, file.bytes)) {
      std::cerr << "Die Datei '" << name << "' kann in '" << arguments.directory << "' nicht geschrieben werden.\n";
      return kExitWriteError;
    }
  }
  std::cout << std::to_string(arguments.count) << (arguments.count == 1 ? " Datei" : " Dateien") << " mit "
            << std::to_string(options.columns) << " x " << std::to_string(options.rows) << " Vektoren in '"
            << arguments.directory << "' geschrieben.\n";
  return 0;
}

int Main(const std::vector<std::string>& words) {
  Arguments arguments;
  const std::string message = ReadArguments(words, arguments);
  if (!message.empty()) {
    std::cerr << message << '\n' << kUsage;
    return kExitUsage;
  }
  return WriteSeries(arguments);
}

}  // namespace
}  // namespace quiverion::samples

int main(int argc, char** argv) {
  try {
    return quiverion::samples::Main(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  } catch (const std::bad_alloc&) {
    std::cerr << "Nicht genügend Speicher.\n";
  } catch (const std::exception& error) {
    std::cerr << "Fehler: " << error.what() << '\n';
  }
  return 1;
}
