#include "macro/command_catalogue.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>

namespace quiverion::test {
namespace {

// The texts themselves are compared with the manual.
TEST(CommandCatalogue, IsATreeWhoseMenusComeBeforeTheirEntries) {
  std::set<std::int32_t> menus = {0};
  std::set<std::int32_t> ids;
  std::set<std::string_view> names;
  for (const CommandRow& row : CommandCatalogue()) {
    SCOPED_TRACE(row.constantName);
    EXPECT_TRUE(ids.insert(row.eventId).second && names.insert(row.constantName).second) << "twice";
    EXPECT_TRUE(menus.contains(row.parent));
    const bool menu = row.eventId % 100 == 0;
    EXPECT_EQ(row.run == nullptr, menu) << "menus and only menus do nothing";
    if (menu) menus.insert(row.eventId);
    EXPECT_EQ(FindCommand(row.eventId), &row);
    EXPECT_EQ(FindCommand(row.constantName), &row);
  }
}

}  // namespace
}  // namespace quiverion::test
