// Names, attributes and sharing on Windows.
#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <ctime>

#include "platform/files/paths.h"
#include "platform/process/clock.h"
#include "platform/process/environment.h"
#include "platform/system_files.h"

namespace quiverion::test {
namespace {

using windows::Handle;
using windows::OpenablePath;

Handle OpenSharing(const std::string& path, DWORD sharing) {
  return Handle(::CreateFileW(OpenablePath(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
}

// A device name swallows a result, a name with ":" leads into another file, and the Explorer can delete neither.
TEST_F(SystemFiles, NamesThatAreNoFilesAreRefused) {
  for (const std::string name : {"NUL", "nul.vas", "Con", "con .txt", "COM1.dat", "LPT¹", "aux/x.vas", "a.vas:b.vas",
                                 "C:\\a.vas", "a?.vas", "*.vas", "a|b", "tab\t", "\xFF", "CONOUT$"}) {
    EXPECT_EQ(OpenError(At(name)), 75) << name;
    EXPECT_EQ(CreateError(At(name)), 75) << name;
    EXPECT_EQ(AppendError(At(name)), 75) << name;
    CreatePathDirectories(*files_, At(name + "/x"));
  }
  for (const std::string path : {R"(\\.\C:)", R"(\\?\C:\x.vas)", R"(\\.\pipe\x)"}) EXPECT_EQ(OpenError(path), 75);
  EXPECT_TRUE(Names().empty());
  for (const std::string name : {"COM.vas", "CONTROL.vas", "nul1", "com10.txt"}) {
    files_->CreateResultFile(At(name), ExistingFile::replace)->Commit();
    EXPECT_EQ(OpenError(At(name)), 0) << name;
  }
}

// Half a surrogate pair is not valid text, but may be part of a name.
TEST(Utf16, ComesBackWhole) {
  for (const std::wstring text : {L"half \xD83C.vas", L"\xDF00\xD83C", L"\xD83C\xDF00 ä", L"\xFFFD"}) {
    EXPECT_EQ(windows::Utf16FromUtf8(windows::Utf8FromUtf16(text)), text);
  }
  EXPECT_EQ(windows::Utf8FromUtf16(L"\xD83C\xDF00"), "🌀");
  EXPECT_EQ(windows::ShownUtf16("a\xFF"), L"a\xFFFD");
}

TEST(Paths, AreShownAsWindowsWritesThem) {
  EXPECT_EQ(WithOwnSeparators("Z:\\Serie/Ergebnis/x.vas"), "Z:\\Serie\\Ergebnis\\x.vas");
}

TEST_F(SystemFiles, EveryNameComesBackAsItIsListed) {
  const std::wstring names[] = {L"Düse 3 – Ω", L"\xD83C\xDF00.vas", L"日本語.dat", std::wstring(240, L'x')};
  for (const std::wstring& name : names) {
    const std::string path = At(windows::Utf8FromUtf16(name));
    const auto file = files_->CreateResultFile(path, ExistingFile::replace);
    WriteAll(*file, path);
    file->Commit();
  }
  const NameList listed = files_->ListFiles(root_);
  EXPECT_EQ(listed.size(), std::size(names));
  for (const std::string& name : listed) EXPECT_EQ(ReadWholeFile(*files_, At(name)), At(name));
}

TEST_F(SystemFiles, APathMayBeLongerThan260Characters) {
  std::string directory = root_;
  while (directory.size() < 2000) directory += "\\Versuchsreihe mit Düse und langem Namen";
  const std::string path = directory + "\\sub/../x.vas";
  EXPECT_EQ(CreateError(path), 76);
  CreatePathDirectories(*files_, directory + "\\x.vas");
  const auto file = files_->CreateResultFile(path, ExistingFile::replace);
  WriteAll(*file, "far down");
  file->Commit();
  EXPECT_EQ(ReadWholeFile(*files_, directory + "/x.vas"), "far down");
  EXPECT_EQ(files_->ListFiles(directory), NameList{"x.vas"});
  EXPECT_TRUE(IsSameFile(path, directory + "/X.VAS"));
  files_->RemoveFileQuietly(path);
  EXPECT_EQ(OpenError(path), 53);
  EXPECT_EQ(CreateError(At(std::string(33000, 'x'))), 75);
  for (; directory.size() > root_.size(); directory.resize(directory.rfind('\\'))) {
    EXPECT_NE(::RemoveDirectoryW(OpenablePath(directory).c_str()), 0) << directory;
  }
}

TEST_F(SystemFiles, ANewResultCannotBeOpenedBeforeItIsComplete) {
  for (const bool commits : {false, true}) {
    auto file = files_->CreateResultFile(At("x.vas"), ExistingFile::replace);
    EXPECT_TRUE(file->IsNew());
    WriteAll(*file, "new");
    EXPECT_EQ(OpenError(At("x.vas")), 70);
    EXPECT_EQ(CreateError(At("x.vas")), 70) << "by another run";
    if (commits) file->Commit();
    file.reset();
    EXPECT_EQ(Names(), commits ? NameList{"x.vas"} : NameList());
  }
  EXPECT_EQ(Get("x.vas"), "new");
}

TEST_F(SystemFiles, WhatAnotherProgramHoldsIsDeniedUntilItLetsGo) {
  Put("x.vas", "old");
  {
    const Handle held = OpenSharing(At("x.vas"), 0);
    EXPECT_FALSE(FileExists(*files_, At("x.vas")));
    EXPECT_EQ(OpenError(At("x.vas")), 70);
    EXPECT_EQ(CreateError(At("x.vas")), 70);
    EXPECT_EQ(AppendError(At("x.vas")), 70);
    EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(At("x.vas")); }), 70);
  }
  const auto file = files_->CreateResultFile(At("x.vas"), ExistingFile::replace);
  WriteAll(*file, "new");
  {
    const Handle reader = OpenSharing(At("x.vas"), FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(ErrorOf([&] { file->Commit(); }), 70);
    EXPECT_EQ(Get("x.vas"), "old");
  }
  file->Commit();
  EXPECT_EQ(Get("x.vas"), "new");
  EXPECT_EQ(Names(), NameList{"x.vas"});
}

TEST_F(SystemFiles, HiddenFilesAreNotListedAndStayHiddenWhenReplaced) {
  Put("hidden.vas", "x");
  fs::create_directory(At("system"));
  ::SetFileAttributesW(OpenablePath(At("hidden.vas")).c_str(), FILE_ATTRIBUTE_HIDDEN);
  ::SetFileAttributesW(OpenablePath(At("system")).c_str(), FILE_ATTRIBUTE_SYSTEM);
  EXPECT_TRUE(files_->ListFiles(root_).empty());
  EXPECT_TRUE(files_->ListDirectories(root_).empty());
  files_->CreateResultFile(At("hidden.vas"), ExistingFile::replace)->Commit();
  EXPECT_NE(::GetFileAttributesW(OpenablePath(At("hidden.vas")).c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST_F(SystemFiles, ADriveIsNamedByThreeCharacters) {
  EXPECT_GT(files_->FreeDiskBytes("C:\\Reihe\\"), 0u);
  EXPECT_EQ(files_->FreeDiskBytes("c:/"), files_->FreeDiskBytes("C:\\"));
  EXPECT_EQ(files_->FreeDiskBytes("Q:\\"), 0u);
  EXPECT_EQ(files_->FreeDiskBytes("\\\\server\\share\\"), 0u);
  EXPECT_EQ(files_->KindOfDrive("C:\\"), DriveKind::other);
}

TEST(SystemErrors, AreOfTheNumbersThatTheProgramKnows) {
  const std::pair<DWORD, int> numbers[] = {
      {ERROR_SHARING_VIOLATION, 70}, {ERROR_DISK_FULL, 61},           {1295, 61},           {ERROR_BAD_NETPATH, 76},
      {ERROR_WRITE_PROTECT, 75},     {ERROR_TOO_MANY_OPEN_FILES, 67}, {ERROR_NOT_READY, 57}};
  for (const auto& [code, number] : numbers) EXPECT_EQ(ErrorOf([&c = code] { windows::ThrowError(c); }), number);
  try {
    windows::ThrowError(ERROR_NOT_READY);
  } catch (const SystemError& error) {
    EXPECT_TRUE(error.Description().starts_with("Geräte-E/A-Fehler (")) << error.Description();
    EXPECT_TRUE(error.Description().ends_with(")")) << "no line break of the system";
  }
}

TEST(Surroundings, PathsAreWrittenWithBackslashesFromTheDriveOn) {
  EXPECT_EQ(AbsolutePath("C:/a/../b\\x.vas"), "C:\\b\\x.vas");
  EXPECT_EQ(AbsolutePath("//server/share/x"), "\\\\server\\share\\x");
  EXPECT_EQ(AbsolutePath("x.vas").substr(1, 2), ":\\");
  EXPECT_EQ(SystemClock().DateAndTime().find(std::to_string(std::time(nullptr) / 31556952 + 1970)) != std::string::npos,
            true);
}

}  // namespace
}  // namespace quiverion::test
