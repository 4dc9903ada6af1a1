#include "json/macro_json.h"

#include <gtest/gtest.h>

#include "macro/command_catalogue.h"
#include "support/approved.h"

namespace quiverion {
namespace {

MacroEvent Event(std::int32_t eventId, std::initializer_list<std::pair<const char*, MacroValue>> values = {}) {
  MacroEvent event(eventId);
  for (const auto& [key, value] : values) event.Set(key, value);
  return event;
}

// One command for every kind of parameter, and its JSON.
const std::pair<MacroEvent, std::string> kCommands[] = {
    {Event(40103), R"({"EventId": "evtGauss3x3"})"},
    {Event(40201, {{"XComp", 2.5}, {"YComp", -1.0}}),
     R"({"EventId": "evtAddConstVector", "XComp": 2.5, "YComp": -1.0})"},
    {Event(10001, {{"Prefix", std::string("sub\\")}, {"Postfix", std::string("_\"ä€")}}),
     R"({"EventId": "evtSaveVas", "Prefix": "sub\\", "Postfix": "_\"ä€"})"},
    {Event(50001, {{"Checked", true}}), R"({"EventId": "evtShowHeader", "Checked": true})"},
    {Event(50002, {{"Checked", 0}}), R"({"EventId": "evtShowTable", "Checked": false})"},
    {Event(30002, {{"ChkPosX", 1}, {"ChkPosY", 2.0}}), R"({"EventId": "evtMirror", "ChkPosX": 1, "ChkPosY": 2})"},
    {Event(50104, {{"Value", 1e-300}}), R"({"EventId": "evtPaletteMin", "Value": 1e-300})"},
    {Event(12345), R"({"EventId": 12345})"},
    {Event(-1), R"({"EventId": -1})"},
    {Event(10000), R"({"EventId": "evtFileMenu"})"}};

TEST(MacroJson, HasALinePerCommandAndReadsWhatItWrites) {
  MacroEventList all;
  std::string lines;
  for (const auto& [event, line] : kCommands) {
    all.push_back(event);
    lines += (lines.empty() ? "  " : ",\n  ") + line;
  }
  EXPECT_EQ(MacroToJson(all), "[\n" + lines + "\n]\n");
  EXPECT_EQ(MacroToJson(MacroFromJson("[" + lines + "]")), "[\n" + lines + "\n]\n");
  EXPECT_EQ(MacroToJson(MacroFromJson(" [ ] ")), "[]\n");
}

TEST(MacroJson, AcceptsOtherFormsOfTheSameCommand) {
  const std::pair<const char*, std::string> cases[] = {
      {R"([{"XCOMP": 2, "ycomp": -1, "eventid": 40201}])",
       R"({"EventId": "evtAddConstVector", "XComp": 2.0, "YComp": -1.0})"},
      {R"([{"EventId": "EVTGAUSS3X3"}])", R"({"EventId": "evtGauss3x3"})"},
      {R"([{"EventId": 30002, "ChkPosX": -2147483648, "ChkPosY": 2147483647}])",
       R"({"EventId": "evtMirror", "ChkPosX": -2147483648, "ChkPosY": 2147483647})"}};
  for (const auto& [json, exported] : cases) EXPECT_EQ(MacroToJson(MacroFromJson(json)), "[\n  " + exported + "\n]\n");
}

TEST(MacroJson, NamesThePositionAndTheKeyOfWhatIsWrong) {
  std::string told;
  for (const char* json :
       {"", "[\"\xE4\"]", "{\"EventId\": 40103}", "[{}]", R"([{"EventId": "evtGauss7x7"}])",
        R"([{"EventId": 2147483648}])", R"([{"EventId": 40103, "Value": 1}])", R"([{"EventId": 10001, "Prefix": ""}])",
        R"([{"EventId": 10002, "Comment": "a", "comment": "b"}])", R"([{"EventId": 10002, "Comment": 5}])",
        R"([{"EventId": 50001, "Checked": 1}])", R"([{"EventId": 30002, "ChkPosX": 0, "ChkPosY": 1.5}])",
        R"([{"EventId": 50006, "Value": "2"}])", R"([{"EventId": 40201, "XComp": 0, "YComp": 3e9}])"}) {
    try {
      MacroFromJson(json);
      ADD_FAILURE() << "accepted: " << json;
    } catch (const MacroJsonError& error) {
      told += std::string(error.what()) + "\n";
    }
  }
  test::ExpectApproved("json_errors.txt", told);
}

}  // namespace
}  // namespace quiverion
