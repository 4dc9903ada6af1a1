// With every free, Windows takes back the pages of a large block, and maps them again one by one when they are touched.
// That would cost more than the work of a command. So large blocks are kept here for the next command, which usually
// needs the same sizes.
#include "platform/windows/memory.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

#include "platform/windows/paths.h"

namespace quiverion::windows {
namespace {

constexpr std::size_t kSmallest = std::size_t{16} << 10;
constexpr std::size_t kLargest = std::size_t{64} << 20;  // larger blocks are returned
constexpr std::size_t kMostBytes = std::size_t{256} << 20;

class KeptBlocks {
 public:
  void Begin() { keeps_ = true; }

  // A block that is not much larger than requested; null if there is none.
  void* Take(std::size_t size) {
    if (!keeps_ || size < kSmallest || size > kLargest) return nullptr;
    const Locked locked(lock_);
    Block* best = nullptr;
    for (Block& block : blocks_) {
      if (block.size >= size && block.size - size <= size / 4 && (best == nullptr || block.size < best->size)) {
        best = &block;
      }
    }
    return best == nullptr ? nullptr : Remove(*best);
  }

  // Returns the block that the caller must free: this one if it is not kept, another one that makes room for it, or
  // null.
  void* Keep(void* memory) {
    if (!keeps_ || memory == nullptr) return memory;
    const std::size_t size = ::_msize(memory);
    if (size < kSmallest || size > kLargest) return memory;
    const Locked locked(lock_);
    Block& place = blocks_[next_];
    if (bytes_ - place.size + size > kMostBytes) return memory;
    next_ = (next_ + 1) % kCount;
    void* const oldest = Remove(place);
    place = {memory, size};
    bytes_ += size;
    return oldest;
  }

  // Returns everything to the system. False if there was nothing.
  bool Drop() {
    const Locked locked(lock_);
    const bool had = bytes_ > 0;
    for (Block& block : blocks_) std::free(Remove(block));
    return had;
  }

 private:
  struct Block {
    void* memory = nullptr;
    std::size_t size = 0;
  };
  class Locked {
   public:
    explicit Locked(SRWLOCK& lock) : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
    ~Locked() { ::ReleaseSRWLockExclusive(&lock_); }

   private:
    SRWLOCK& lock_;
  };

  void* Remove(Block& block) {
    void* const memory = block.memory;
    bytes_ -= block.size;
    block = {};
    return memory;
  }

  static constexpr std::size_t kCount = 64;
  Block blocks_[kCount];
  std::size_t next_ = 0;
  std::size_t bytes_ = 0;
  bool keeps_ = false;
  SRWLOCK lock_ = SRWLOCK_INIT;
};

constinit KeptBlocks kept;

}  // namespace

void KeepFreedMemory() {
  kept.Begin();
}

}  // namespace quiverion::windows

void* operator new(std::size_t size) {
  using quiverion::windows::kept;
  for (;;) {
    if (void* const memory = kept.Take(size)) return memory;
    if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
    if (kept.Drop()) continue;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void operator delete(void* memory) noexcept {
  std::free(quiverion::windows::kept.Keep(memory));
}

void operator delete(void* memory, std::size_t size) noexcept {
  if (size < quiverion::windows::kSmallest) {
    std::free(memory);
  } else {
    operator delete(memory);
  }
}
