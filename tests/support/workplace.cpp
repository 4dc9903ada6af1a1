#include "support/workplace.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

#include "platform/files/file_system.h"
#include "support/approved.h"

namespace quiverion::cli {
namespace {

namespace fs = std::filesystem;
using test::WithSlashes;

std::string ReadAll(const std::string& path) {
  std::ifstream file(PathOf(path), std::ios::binary);
  EXPECT_TRUE(file) << path;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string TextOf(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// Paths longer than 260 characters need a prefix.
fs::path ForLongPaths(const fs::path& path) {
  return path.has_root_name() ? fs::path("\\\\?\\") += path : path;
}

}  // namespace

void RemoveTree(const fs::path& tree) {
  const fs::path path = ForLongPaths(tree);
  std::error_code ignored;
  const auto unlock = [&ignored](const fs::path& entry) {
    fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add, ignored);
  };
  unlock(path);
  for (fs::recursive_directory_iterator entry(path, ignored), end; entry != end; entry.increment(ignored)) {
    unlock(entry->path());
  }
  fs::remove_all(path, ignored);
}

fs::path PathOf(const std::string& utf8) {
  fs::path path = fs::path(std::u8string(utf8.begin(), utf8.end())).make_preferred();
  return path.native().size() > 240 ? ForLongPaths(path) : path;
}

Workplace::Workplace() {
  std::random_device random;
  fs::path path = fs::canonical(fs::temp_directory_path()) / ("quiverion_" + std::to_string(random()));
  fs::create_directory(path);
  path_ = TextOf(path / "");
}

Workplace::~Workplace() {
  RemoveTree(PathOf(path_).parent_path());  // without the separator at the end
}

std::string Workplace::At(const std::string& name) const {
  return TextOf(PathOf(path_ + name));
}

void Workplace::Write(const std::string& name, const std::string& content) const {
  const fs::path path = PathOf(path_ + name);
  CreatePathDirectories(*MakeSystemFileSystem(), path_ + name);
  std::ofstream file(path, std::ios::binary);
  file << content;
  EXPECT_TRUE(file.flush()) << name;
}

std::string Workplace::Read(const std::string& name) const {
  return ReadAll(path_ + name);
}

bool Workplace::Has(const std::string& name) const {
  return fs::exists(PathOf(path_ + name));
}

std::vector<std::string> Workplace::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(PathOf(path_))) {
    if (entry.is_regular_file()) names.push_back(WithSlashes(TextOf(entry.path())).substr(path_.size()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

void ExpectApproved(const Workplace& place, const std::string& name, std::string text) {
  const std::string here = WithSlashes(place.Path());
  text = WithSlashes(text);
  for (std::size_t at; (at = text.find(here)) != std::string::npos;) text.replace(at, here.size(), "<hier>/");
  test::ExpectApproved(name, text);
}

}  // namespace quiverion::cli
