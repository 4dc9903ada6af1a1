// Files that another program has opened exclusively.
#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <gtest/gtest.h>

#include "macro/pre_run_checks.h"
#include "support/test_session.h"
#include "support/workplace.h"

namespace quiverion::cli {
namespace {

using namespace test;

TEST(PreRun, AFileThatAnotherProgramHoldsIsThereAgainWithRetry) {
  const Workplace place;
  place.Write("a.vas", "x");
  const std::string path = place.At("a.vas");
  windows::Handle held(
      ::CreateFileW(windows::OpenablePath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(held.IsOpen());
  const auto files = MakeSystemFileSystem();
  ScriptedProgram program(*files);
  program.session.inputDirectory = place.Path();
  program.session.selectedFiles = {"a.vas"};
  program.ui.answers = {MessageAnswer::retry, MessageAnswer::retry};
  program.ui.onAsk = [&](const Message& message) {
    EXPECT_EQ(message.text, "Die Datei '" + path +
                                "' kann nicht geöffnet werden!\r\n"
                                "Datei nicht vorhanden, beschädigt oder wird bereits verwendet.");
    if (program.ui.messages.size() == 2) held.Close();
  };
  EXPECT_TRUE(PreRunChecks(program.session));
  EXPECT_EQ(program.ui.messages.size(), 2u);
}

}  // namespace
}  // namespace quiverion::cli
