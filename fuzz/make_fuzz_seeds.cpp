// Writes small valid seed files: make_fuzz_seeds DIR creates a directory per reader in DIR, such as DIR/vas.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/formats.h"
#include "generator/foreign_files.h"
#include "generator/sample_files.h"
#include "macro/command_catalogue.h"
#include "macro/macro_file.h"
#include "platform/files/file_system.h"

namespace quiverion::fuzz {
namespace {

class SeedWriter {
 public:
  explicit SeedWriter(std::string directory) : directory_(std::move(directory)) {}

  void Put(const std::string& name, std::string_view bytes) {
    ResultFile file = Create(name);
    file.Write(bytes);
    file.Commit();
  }
  void Put(const std::string& name, const MacroEventList& macro) {
    ResultFile file = Create(name);
    WriteMacro(file, macro);
    file.Commit();
  }

 private:
  ResultFile Create(const std::string& name) {
    const std::string path = directory_ + "/" + name;
    CreatePathDirectories(*files_, path);
    return ResultFile(*files_, nullptr, path);
  }

  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  std::string directory_;
};

MacroEvent EventWithParameters(const CommandRow& row) {
  MacroEvent event(row.eventId);
  for (const Parameter& parameter : row.parameters) {
    switch (parameter.kind) {
      case ParameterKind::text:
        event.Set(parameter.key, std::string("Größe 1.5"));
        break;
      case ParameterKind::flag:
        event.Set(parameter.key, true);
        break;
      case ParameterKind::checkState:
      case ParameterKind::integer:
        event.Set(parameter.key, std::int32_t{1});
        break;
      case ParameterKind::number:
        event.Set(parameter.key, -2.5);
        break;
    }
  }
  return event;
}

void WriteFieldSeeds(SeedWriter& seeds) {
  const samples::SampleField small = samples::MakeSampleField({.columns = 8, .rows = 6});
  const samples::SampleField single = samples::MakeSampleField({.columns = 1, .rows = 1, .maskedBody = false});
  samples::SampleField streamlines = samples::MakeSampleField({.columns = 3, .rows = 2});
  streamlines.streamlines.resize(52);
  seeds.Put("vas/small.vas", samples::VasBytes(small));
  seeds.Put("vas/single.vas", samples::VasBytes(single));
  seeds.Put("vas/streamlines.vas", samples::VasBytes(streamlines));
  std::string lines = samples::DatBytes(small);
  seeds.Put("dat/small.dat", lines);
  seeds.Put("dat/single.dat", samples::DatBytes(single));
  std::erase(lines, '\r');
  std::erase(lines, '"');
  std::replace(lines.begin(), lines.end(), ',', ';');
  seeds.Put("dat/newlines.dat", lines);
  seeds.Put("dat/aligned.dat", samples::DatBytes(small, {.width = 9, .positionDecimals = 1, .decimals = 4}));
  seeds.Put("dat/exponents.dat", samples::DatBytes(small, {.decimals = 18, .exponents = true, .columns = 12}));
  for (const int subType : {1, 2, 3}) {
    const std::string number = std::to_string(subType);
    seeds.Put("vec/small" + number + ".vec", samples::VecBytes(small, subType));
    seeds.Put("vec/single" + number + ".vec", samples::VecBytes(single, subType));
  }
}

// Two bytes in front choose the format and the options.
void WriteForeignSeeds(SeedWriter& seeds) {
  const samples::SampleField small = samples::MakeSampleField({.columns = 5, .rows = 4});
  for (const samples::ForeignSample& kind : samples::ForeignSamples()) {
    const std::string bytes = kind.bytes(small);
    const auto formats = exchange::ForeignFormats();
    const auto row = std::ranges::find(formats, kind.format, &exchange::ForeignFormat::name);
    const auto number = static_cast<char>(row - formats.begin() + 1);
    seeds.Put("foreign/" + std::string(kind.name), std::string(2, '\0') + bytes);
    seeds.Put("foreign/" + std::string(kind.name) + ".options", std::string{number, '\x4F'} + bytes);
  }
}

void WriteMacroSeeds(SeedWriter& seeds) {
  MacroEventList all;
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    all.push_back(EventWithParameters(row));
    if (!row.parameters.empty()) seeds.Put("mak/" + std::string(row.constantName) + ".mak", {all.back()});
  }
  seeds.Put("mak/all.mak", all);
  seeds.Put("mak/empty.mak", MacroEventList{});
}

void WriteCollectionSeeds(SeedWriter& seeds) {
  for (const auto& [columns, rows] : {std::pair{3, 2}, {4, 2}, {1, 1}, {7, 5}}) {
    std::vector<samples::SampleField> fields;
    std::vector<std::string> paths;
    for (int k = 1; k <= 3; ++k) {
      fields.push_back(samples::MakeSampleField({.index = k, .columns = columns, .rows = rows, .maskedBody = false}));
      paths.push_back("C:\\Düse\\" + std::to_string(k) + ".vas");
      const std::string name = std::to_string(columns) + "x" + std::to_string(rows) + "_" + std::to_string(k);
      seeds.Put("col/" + name + ".col", samples::CollectionBytes(fields, paths));
    }
  }
}

}  // namespace
}  // namespace quiverion::fuzz

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s directory\n", argv[0]);
    return 1;
  }
  try {
    quiverion::fuzz::SeedWriter seeds(argv[1]);
    quiverion::fuzz::WriteFieldSeeds(seeds);
    quiverion::fuzz::WriteForeignSeeds(seeds);
    quiverion::fuzz::WriteMacroSeeds(seeds);
    quiverion::fuzz::WriteCollectionSeeds(seeds);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
