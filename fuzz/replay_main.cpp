// Runs every file of the given directories through a fuzz target, with any compiler. With --mutate N, also N seeded
// random mutations of each.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "damage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::string;

void Run(const Input& input) {
  const std::vector<std::uint8_t> exact(input.begin(), input.end());  // no spare bytes after it
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

std::vector<Input> ReadInputs(const std::vector<std::string>& directories) {
  std::vector<std::filesystem::path> paths;
  for (const std::string& directory : directories) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(directory, missing)) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());  // the same order everywhere
  std::vector<Input> inputs;
  for (const auto& path : paths) {
    std::ifstream file(path, std::ios::binary);
    inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return inputs;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> directories;
  std::uint64_t mutations = 0;
  for (int k = 1; k < argc; ++k) {
    const std::string_view argument = argv[k];
    if (argument == "--mutate" && k + 1 < argc) {
      const std::string_view number = argv[++k];
      std::from_chars(number.data(), number.data() + number.size(), mutations);
    } else {
      directories.emplace_back(argument);
    }
  }
  const std::vector<Input> inputs = ReadInputs(directories);
  if (inputs.empty()) {
    std::fprintf(stderr, "no files; usage: %s [--mutate N] directory...\n", argv[0]);
    return 1;
  }
  for (const Input& input : inputs) Run(input);
  quiverion::test::Damage damage(1);
  const auto any = [&]() -> const Input& { return inputs[damage.Below(inputs.size())]; };
  for (std::uint64_t k = 0; k < mutations; ++k) Run(damage(any(), any()));
  std::printf("%zu files and %llu mutations passed\n", inputs.size(), static_cast<unsigned long long>(mutations));
  return 0;
}
