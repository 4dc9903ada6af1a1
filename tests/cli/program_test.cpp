// The help of quiverionseries-cli.
#include <gtest/gtest.h>

#include <fstream>

#include "support/program.h"

namespace quiverion::cli {
namespace {

class Program : public testing::Test {
 protected:
  Workplace place;
};

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Program, SpeaksGermanInItsHelpAndHasItsOptionsInTheManuals) {
  const std::string manual = TextOf(HELP_PAGES "/befehlszeile.html");
  std::string page = TextOf(MANUAL_PAGES "/quiverionseries-cli.1.in");
  std::erase(page, '\\');
  const std::vector<std::string> pages[] = {{},
                                            {"run"},
                                            {"macro"},
                                            {"macro", "show"},
                                            {"macro", "export"},
                                            {"macro", "import"},
                                            {"info"},
                                            {"commands"},
                                            {"import"},
                                            {"export"},
                                            {"statistics"},
                                            {"collection"},
                                            {"collection", "list"},
                                            {"collection", "remove"}};
  for (std::vector<std::string> words : pages) {
    words.emplace_back("--help");
    const Outcome outcome = RunProgram(place, words);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("Aufruf"), std::string::npos) << words.front();
    for (const char* english : {"Usage", "Option:", "ptions:", "ositional", "ubcommand", "REQUIRED", "Print this"}) {
      EXPECT_EQ(outcome.out.find(english), std::string::npos) << outcome.out;
    }
    for (std::size_t at = 0; (at = outcome.out.find("--", at)) != std::string::npos; at += words.back().size()) {
      words.push_back(outcome.out.substr(at, outcome.out.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at) - at));
    }
    for (const std::string& word : words) {
      EXPECT_NE(manual.find(word), std::string::npos) << word;
      EXPECT_NE(page.find(word), std::string::npos) << word;
    }
  }
}

}  // namespace
}  // namespace quiverion::cli
