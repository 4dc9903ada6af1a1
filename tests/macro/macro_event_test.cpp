#include "macro/macro_event.h"

#include <gtest/gtest.h>

#include "support/error_of.h"

namespace quiverion::test {
namespace {

MacroEvent EventWith(MacroValue value) {
  MacroEvent event(30001);
  event.Set("Value", std::move(value));
  return event;
}

TEST(MacroEvent, FindsNamesWithoutRegardToCase) {
  MacroEvent event(30002);
  event.Set("ChkPosX", 1);
  event.Set("CHKPOSX", 2);
  EXPECT_EQ(event.Integer("chkposx"), 2);
  EXPECT_EQ(event.Integer("EventID"), 30002);
  EXPECT_EQ(event.Values().size(), 2u);
  EXPECT_EQ(event.Find("ChkPos"), nullptr);
}

TEST(MacroEvent, ConvertsEveryKind) {
  struct Case {
    MacroValue value;
    std::int32_t integer;
    double number;
    bool flag;
    std::string text;
  };
  const Case cases[] = {{-7, -7, -7.0, true, "-7"},
                        {0, 0, 0.0, false, "0"},
                        {2.5, 2, 2.5, true, "2.5"},
                        {3.5, 4, 3.5, true, "3.5"},
                        {-1.5, -2, -1.5, true, "-1.5"},
                        {-0.25, 0, -0.25, true, "-0.25"},
                        {1e-5, 0, 1e-5, true, "1E-05"},
                        {true, -1, -1.0, true, "-1"},
                        {false, 0, 0.0, false, "0"},
                        {std::string(" 1 2.5e0x"), 12, 12.5, true, " 1 2.5e0x"},
                        {std::string("-3"), -3, -3.0, true, "-3"},
                        {std::string("2,5"), 2, 2.0, true, "2,5"},
                        {std::string(), 0, 0.0, false, ""}};
  for (const Case& c : cases) {
    const MacroEvent event = EventWith(c.value);
    SCOPED_TRACE(c.text);
    EXPECT_EQ(event.Integer("Value"), c.integer);
    EXPECT_EQ(event.Number("Value"), c.number);
    EXPECT_EQ(event.Flag("Value"), c.flag);
    EXPECT_EQ(event.Text("Value"), c.text);
  }
}

TEST(MacroEvent, ReportsAMissingValueAsError5) {
  const MacroEvent event(40001);
  EXPECT_EQ(ErrorOf([&] { event.Integer("Value"); }), 5);
  EXPECT_EQ(ErrorOf([&] { event.Number("Value"); }), 5);
  EXPECT_EQ(ErrorOf([&] { event.Flag("Value"); }), 5);
  EXPECT_EQ(ErrorOf([&] { event.Text("Value"); }), 5);
}

TEST(MacroEvent, ReportsANumberThatDoesNotFitAsError6) {
  EXPECT_EQ(EventWith(2147483647.25).Integer("Value"), 2147483647);
  EXPECT_EQ(EventWith(-2147483648.5).Integer("Value"), -2147483647 - 1);
  for (const MacroValue& value :
       {MacroValue(2147483647.5), MacroValue(-2147483649.0), MacroValue(std::string("3e9"))}) {
    EXPECT_EQ(ErrorOf([&] { EventWith(value).Integer("Value"); }), 6);
  }
  EXPECT_EQ(ErrorOf([] { EventWith(std::string("1e999")).Number("Value"); }), 6);
}

}  // namespace
}  // namespace quiverion::test
