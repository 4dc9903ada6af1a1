// Runs every file of the given directories through a fuzz target, with any compiler. With --mutate N also N seeded
// random changes of them.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;

void Run(const Input& input) {
  const Input exact(input);  // no spare bytes behind it
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

class Mutator {
 public:
  Input Mutate(Input input) {
    for (std::uint64_t turn = 0, count = 1 + Below(4); turn < count; ++turn) MutateOnce(input);
    return input;
  }
  std::uint64_t Below(std::uint64_t limit) { return random_() % limit; }

 private:
  static constexpr std::int32_t kExtremes[] = {
      0, -1, 1, 2, 50, 51, 255, 32767, -32768, 65535, 1 << 30, 2147483647, -2147483647 - 1};

  void MutateOnce(Input& input) {
    const std::uint64_t at = Below(input.size() + 1);
    const auto place = input.begin() + static_cast<std::ptrdiff_t>(at);
    switch (Below(5)) {
      case 0:
        if (at < input.size()) input[at] ^= static_cast<std::uint8_t>(1u << Below(8));
        break;
      case 1:
        input.resize(at);
        break;
      case 2:
        input.insert(place, 1 + Below(9), static_cast<std::uint8_t>(Below(256)));
        break;
      case 3: {
        const std::uint64_t count = std::min<std::uint64_t>(1 + Below(9), input.size() - at);
        input.erase(place, place + static_cast<std::ptrdiff_t>(count));
        break;
      }
      default: {
        const std::int32_t value = kExtremes[Below(std::size(kExtremes))];
        for (std::uint64_t k = 0; k < 4 && at + k < input.size(); ++k) {
          input[at + k] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> (8 * k));
        }
      }
    }
  }

  std::mt19937_64 random_{1};
};

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
  Mutator mutator;
  for (std::uint64_t k = 0; k < mutations; ++k) Run(mutator.Mutate(inputs[mutator.Below(inputs.size())]));
  std::printf("%zu files and %llu mutations passed\n", inputs.size(), static_cast<unsigned long long>(mutations));
  return 0;
}
