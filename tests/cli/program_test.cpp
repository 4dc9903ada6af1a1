// quiverionseries-cli without run: macros, info, commands, help.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "generator/sample_files.h"
#include "support/bytes.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

using test::Bytes;

class Program : public testing::Test {
 protected:
  Workplace place;
};

const std::string kJson =
    "[\n"
    "  {\"EventId\": \"evtInsertComment\", \"Comment\": \"Düse\"},\n"
    "  {\"EventId\": \"evtAddConstVector\", \"XComp\": 2.0, \"YComp\": -1.0},\n"
    "  {\"EventId\": 12345}\n"
    "]\n";
const std::string kMacro = Bytes().I32(3).I32(10002).Text("D\xFCse").I32(40201).I32(2).I32(-1).I32(12345);

TEST_F(Program, TurnsJsonIntoAMacroFileAndBack) {
  place.Write("m.json", kJson);
  ASSERT_EQ(RunProgram(place, {"macro", "import", "m.json", "neu/m.mak"}).code, 0);
  EXPECT_EQ(place.Read("neu/m.mak"), kMacro);
  const Outcome exported = RunProgram(place, {"macro", "export", "neu/m.mak"});
  EXPECT_EQ(exported.out, kJson);
  EXPECT_EQ(RunProgram(place, {"macro", "import", "-", "stdin.mak"}, exported.out).code, 0);
  EXPECT_EQ(place.Read("stdin.mak"), kMacro);
  const Outcome shown = RunProgram(place, {"macro", "show", "stdin.mak"});
  EXPECT_EQ(shown.out,
            "1\t10002\tKommentar in den Info-Text einfügen\n2\t40201\tKonstanten Vektor addieren\n"
            "3\t12345\tUnbekannt!!!\n");
  EXPECT_EQ(exported.err + shown.err, "");
  EXPECT_EQ(exported.code + shown.code, 0);
}

TEST_F(Program, TellsWhatAFileHolds) {
  samples::SampleField sample = samples::MakeSampleField({.columns = 9, .rows = 7});
  for (std::size_t p = 0; p < sample.u.size(); ++p) {
    if (sample.status[p] <= 0) sample.u[p] = 1e6;  // counts for nothing
  }
  place.Write("a.vas", samples::VasBytes(sample));
  place.Write("b.DAT", samples::DatBytes(sample));
  place.Write("c.vec", samples::VecBytes(sample, 2));
  const std::string told = RunProgram(place, {"info", "a.vas"}).out +
                           RunProgram(place, {"info", "--json", "b.DAT"}).out +
                           RunProgram(place, {"info", "c.vec"}).out;
  ExpectApproved(place, "info.txt", told);
}

TEST_F(Program, ListsTheCommands) {
  const std::string text = RunProgram(place, {"commands"}).out;
  const auto commands = nlohmann::json::parse(RunProgram(place, {"commands", "--json"}).out);
  EXPECT_EQ(commands.size(), 53u);
  for (const auto& command : commands) {
    std::string line = std::to_string(command["EventId"].get<int>());
    for (const char* key : {"Constant", "ShortText", "LongText"}) line += "\t" + command[key].get<std::string>();
    EXPECT_NE(text.find(line + "\t"), std::string::npos) << line;
  }
  EXPECT_EQ(commands[1]["Parameters"], nlohmann::json::parse(R"([{"Key": "Comment", "Kind": "text"}])"));
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Program, SpeaksGermanInItsHelpAndHasItsOptionsInTheManuals) {
  const std::string manual = TextOf(HELP_PAGES "/befehlszeile.html");
  std::string page = TextOf(MANUAL_PAGES "/quiverionseries-cli.1.in");
  std::erase(page, '\\');
  const std::vector<std::string> pages[] = {
      {},       {"run"},      {"macro"},      {"macro", "show"}, {"macro", "export"},    {"macro", "import"},
      {"info"}, {"commands"}, {"statistics"}, {"collection"},    {"collection", "list"}, {"collection", "remove"}};
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
