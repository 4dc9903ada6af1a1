#include "platform/windows/memory.h"

#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

namespace quiverion::windows {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

TEST(KeptMemory, ALargeBlockWaitsForTheNextOfAboutItsSize) {
  KeepFreedMemory();
  void* const first = ::operator new(kMegabyte);
  ::operator delete(first, kMegabyte);
  void* const muchSmaller = ::operator new(kMegabyte / 2);
  EXPECT_NE(muchSmaller, first);
  void* const larger = ::operator new(kMegabyte * 2);
  EXPECT_NE(larger, first);
  void* const again = ::operator new(kMegabyte * 9 / 10);
  EXPECT_EQ(again, first);
  void* const other = ::operator new(kMegabyte);
  EXPECT_NE(other, first) << "in use";
  for (void* const block : {muchSmaller, larger, again, other}) ::operator delete(block);
}

bool IsWithTheProcess(std::uintptr_t address) {
  MEMORY_BASIC_INFORMATION info{};
  return ::VirtualQuery(reinterpret_cast<const void*>(address), &info, sizeof info) != 0 && info.State == MEM_COMMIT;
}

TEST(KeptMemory, NoMoreThan256MegabytesWait) {
  KeepFreedMemory();
  std::vector<void*> blocks = {::operator new(70 * kMegabyte)};  // too large to be kept
  while (blocks.size() < 7) blocks.push_back(::operator new(60 * kMegabyte));
  std::vector<std::uintptr_t> addresses;
  for (void* const block : blocks) {
    addresses.push_back(reinterpret_cast<std::uintptr_t>(block));
    ::operator delete(block);
  }
  EXPECT_FALSE(IsWithTheProcess(addresses.front()));
  EXPECT_EQ(std::count_if(addresses.begin(), addresses.end(), IsWithTheProcess), 4);
}

}  // namespace
}  // namespace quiverion::windows
