#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quiverion::cli {

/// The path that a UTF-8 text names, with the separators of the system.
std::filesystem::path PathOf(const std::string& utf8);

/// Removes a file or a directory with everything in it, also what is read-only. Where that fails, what is left is left.
void RemoveTree(const std::filesystem::path& path);

/// A directory of its own for a test, removed with everything in it. The program runs in it.
class Workplace {
 public:
  Workplace();
  ~Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  const std::string& Path() const { return path_; }  // ends in a separator

  /// The path of a file, with the separators of the system.
  std::string At(const std::string& name) const;

  /// Creates or replaces a file; directories on the way are created.
  void Write(const std::string& name, const std::string& content) const;
  /// The content; an empty text and a test failure where the file is missing.
  std::string Read(const std::string& name) const;
  bool Has(const std::string& name) const;
  /// Names of all files below, sorted, with the directories before them.
  std::vector<std::string> Files() const;

 private:
  std::string path_;
};

/// As test::ExpectApproved; the path of `place` is written <hier>/.
void ExpectApproved(const Workplace& place, const std::string& name, std::string text);

}  // namespace quiverion::cli
