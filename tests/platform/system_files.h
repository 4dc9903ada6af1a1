#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "platform/files/file_system.h"
#include "support/error_of.h"

namespace quiverion::test {

namespace fs = std::filesystem;

/// Real files in a temporary directory.
class SystemFiles : public testing::Test {
 protected:
  SystemFiles() {
    std::random_device random;
    root_ = (fs::canonical(fs::temp_directory_path()) / ("quiverion-test-" + std::to_string(random()))).string();
    fs::create_directory(root_);
  }
  ~SystemFiles() override {
    std::error_code ignored;
    fs::permissions(root_, fs::perms::owner_all, ignored);
    fs::remove_all(root_, ignored);
  }

  std::string At(const std::string& name) const { return root_ + "/" + name; }

  void Put(const std::string& name, const std::string& content) const {
    std::ofstream(At(name), std::ios::binary) << content;
  }

  std::string Get(const std::string& name) const {
    std::ifstream file(At(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // Everything in the directory, including temporary files.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(root_)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  void WriteAll(OutputFile& file, std::string_view bytes) const {
    while (!bytes.empty()) bytes.remove_prefix(file.WriteSome(bytes.data(), bytes.size()));
  }

  int OpenError(const std::string& path) {
    return ErrorOf([&] { files_->OpenForReading(path); });
  }
  int CreateError(const std::string& path) {
    return ErrorOf([&] { files_->CreateResultFile(path, ExistingFile::replace); });
  }
  int AppendError(const std::string& path) {
    return ErrorOf([&] { files_->OpenForAppending(path); });
  }

  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  std::string root_;
};

using NameList = std::vector<std::string>;

}  // namespace quiverion::test
