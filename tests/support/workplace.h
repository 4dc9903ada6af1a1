#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quiverion::cli {

/// The path for a UTF-8 text, with the separators of the system.
std::filesystem::path PathOf(const std::string& utf8);

/// Removes a file or a directory with everything in it, including read-only files. Failures are ignored.
void RemoveTree(const std::filesystem::path& path);

/// A temporary directory for a test, removed at the end. The program runs in it.
class Workplace {
 public:
  Workplace();
  ~Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  const std::string& Path() const { return path_; }  // ends in a separator

  /// The path of a file, with the separators of the system.
  std::string At(const std::string& name) const;

  /// Creates or replaces a file, with missing directories.
  void Write(const std::string& name, const std::string& content) const;
  /// The content; an empty text and a test failure if the file is missing.
  std::string Read(const std::string& name) const;
  bool Has(const std::string& name) const;
  /// Relative paths of all files below, sorted.
  std::vector<std::string> Files() const;

 private:
  std::string path_;
};

/// As test::ExpectApproved; the path of `place` is written <hier>/.
void ExpectApproved(const Workplace& place, const std::string& name, std::string text);

}  // namespace quiverion::cli
