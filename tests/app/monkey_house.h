#pragma once

#include <QByteArray>
#include <QDebug>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <random>
#include <thread>

#include "dialogs/widgets/qt_text.h"
#include "hang.h"
#include "platform/files/file_system.h"
#include "support/soak.h"
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#endif

/// What keeps the monkey from doing harm, and tells what it has done.
namespace quiverion::test {

/// The machine's files, where nothing but `place` can be listed or changed. A try to change something else is remembered.
/// Until the machine is `healthy`, a file fails now and then.
class ConfinedFiles : public FileSystem {
 public:
  explicit ConfinedFiles(std::string place) : place_(std::move(place)) {}

  std::vector<std::string> refused;
  bool healthy = false;

  std::unique_ptr<InputFile> OpenForReading(const std::string& path) override {
    FailNowAndThen(ErrorNumber::pathAccess);
    return files_->OpenForReading(path);
  }
  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) override {
    return std::make_unique<Output>(*this, Changed(path).CreateResultFile(path, existing));
  }
  std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) override {
    return std::make_unique<Output>(*this, Changed(path).OpenForAppending(path));
  }
  std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) override {
    return Changed(path).OpenForUpdating(path);
  }
  void SetFileSize(const std::string& path, std::uint64_t length) override { Changed(path).SetFileSize(path, length); }
  void RemoveFileQuietly(const std::string& path) override {
    if (IsInside(path)) return files_->RemoveFileQuietly(path);
    refused.push_back(path);
  }
  void CreateDirectoryQuietly(const std::string& path) override {
    if (IsInside(path)) return files_->CreateDirectoryQuietly(path);
    if (!IsDirectory(path)) refused.push_back(path);
  }
  void ClearReadOnly(const std::string& path) override { Changed(path).ClearReadOnly(path); }
  std::vector<std::string> ListFiles(const std::string& path) override { return Listed(path).ListFiles(path); }
  std::vector<std::string> ListDirectories(const std::string& path) override {
    return Listed(path).ListDirectories(path);
  }
  bool IsDirectory(const std::string& path) override { return files_->IsDirectory(path); }
  bool IsReadOnly(const std::string& path) override { return files_->IsReadOnly(path); }
  DriveKind KindOfDrive(const std::string& directory) override { return files_->KindOfDrive(directory); }
  std::uint64_t FreeDiskBytes(const std::string& directory) override { return files_->FreeDiskBytes(directory); }

 private:
  struct Output : OutputFile {
    Output(ConfinedFiles& owner, std::unique_ptr<OutputFile> outputFile) : files(owner), file(std::move(outputFile)) {}
    bool IsNew() const override { return file->IsNew(); }
    std::size_t WriteSome(const void* source, std::size_t size) override {
      files.FailNowAndThen(ErrorNumber::diskFull);
      return file->WriteSome(source, size);
    }
    void Commit() override {
      files.FailNowAndThen(ErrorNumber::diskFull);
      file->Commit();
    }
    ConfinedFiles& files;
    std::unique_ptr<OutputFile> file;
  };

  static std::u8string Normal(std::string path) {
    std::ranges::replace(path, '\\', '/');
    return std::filesystem::path(std::u8string(path.begin(), path.end())).lexically_normal().generic_u8string();
  }
  bool IsInside(const std::string& path) const { return Normal(path + "/").starts_with(Normal(place_)); }
  FileSystem& Changed(const std::string& path) {
    FailNowAndThen(ErrorNumber::accessDenied);
    if (IsInside(path)) return *files_;
    refused.push_back(path);
    throw SystemError(ErrorNumber::accessDenied);
  }
  void FailNowAndThen(ErrorNumber error) {
    if (!healthy && random_() % 80 == 0) throw SystemError(error);
  }
  FileSystem& Listed(const std::string& path) {
    return IsInside(path) ? *files_ : throw SystemError(ErrorNumber::pathAccess);
  }

  std::string place_;
  std::mt19937 random_{Seed()};
  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
};

/// What Qt keeps for the user, and what is named without a directory, lies in a directory of the test.
class OwnHome {
 public:
  explicit OwnHome(const std::string& home) : directory_(std::filesystem::current_path()) {
    std::filesystem::create_directories(home);
    std::filesystem::current_path(home);
    for (std::size_t k = 0; k < std::size(kNames); ++k) {
      old_[k] = qgetenv(kNames[k]);
      qputenv(kNames[k], home.c_str());
    }
  }
  ~OwnHome() {
    for (std::size_t k = 0; k < std::size(kNames); ++k) {
      old_[k].isNull() ? qunsetenv(kNames[k]) : qputenv(kNames[k], old_[k]);
    }
    std::filesystem::current_path(directory_);
  }

 private:
  static constexpr const char* kNames[] = {"HOME",           "XDG_CONFIG_HOME", "XDG_DATA_HOME",   "XDG_CACHE_HOME",
                                           "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "XDG_DESKTOP_DIR", "TMPDIR",
                                           "USERPROFILE"};
  std::filesystem::path directory_;
  std::array<QByteArray, std::size(kNames)> old_;
};

/// The last things that were done. In fixed memory: it is read when the program has crashed, and by other threads.
class History {
 public:
  using Time = std::chrono::steady_clock;

  /// The program has looked for events.
  void Beat() { beat_ = Time::now(); }
  Time::time_point LastBeat() const { return beat_; }

  void Add(const std::string& what) {
    std::strncpy(lines_[count_ % lines_.size()].data(), what.c_str(), lines_[0].size() - 1);
    ++count_;
  }
  std::string Text() const {
    std::string text = "The last of " + std::to_string(count_) + " steps:\n";
    for (std::size_t k = count_ > lines_.size() ? count_ - lines_.size() : 0; k < count_; ++k) {
      text += std::string("  ") + lines_[k % lines_.size()].data() + "\n";
    }
    return text;
  }

 private:
  std::array<std::array<char, 120>, 50> lines_{};
  std::atomic<std::size_t> count_ = 0;
  std::atomic<Time::time_point> beat_ = Time::now();
};

/// Says what was done where the program crashes, ends itself or no longer looks for events.
class Witness {
 public:
  explicit Witness(const History& history)
      : thread_([&history](const std::stop_token& stop) { Watch(history, stop); }) {
    past = &history;
    std::signal(SIGABRT, [](int) {
      Testify();
      std::signal(SIGABRT, SIG_DFL);
      std::raise(SIGABRT);
    });
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_death_callback(Testify);
#endif
    qInstallMessageHandler(Hear);
  }
  ~Witness() {
    qInstallMessageHandler(nullptr);
    std::signal(SIGABRT, SIG_DFL);
    past = nullptr;
  }

  /// What Qt has complained about since the last call.
  static std::string Heard() {
    const std::lock_guard guard(mutex);
    return std::exchange(heard, {});
  }

 private:
  static void Testify() {
    const History* const history = past.exchange(nullptr);
    if (history == nullptr) return;
    std::fputs(history->Text().c_str(), stderr);
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_print_stack_trace();
#endif
  }

  static void Watch(const History& history, const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      if (History::Time::now() - history.LastBeat() < std::chrono::seconds(30)) continue;
      std::fputs("The program does not look for events any more.\n", stderr);
      EndWhatHangs();
      return;
    }
  }

  static void Hear(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    static constexpr const char* kOfTheDisplay[] = {"This plugin does not support propagateSizeHints()",
                                                    "This plugin does not support raise()",
                                                    "This plugin does not support grabbing the keyboard"};
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    for (const char* const harmless : kOfTheDisplay) {
      if (text == harmless) return;
    }
    const std::lock_guard guard(mutex);
    heard += FromQt(text) + "\n";
  }

  static inline std::atomic<const History*> past = nullptr;
  static inline std::mutex mutex;
  static inline std::string heard;
  std::jthread thread_;
};

}  // namespace quiverion::test
