#include "exchange/inflate.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <string>

#include "messages/failure.h"
#include "messages/system_error.h"

namespace quiverion::exchange {
namespace {

class Stream {
 public:
  Stream() {
    if (inflateInit(&stream_) != Z_OK) throw SystemError(ErrorNumber::outOfMemory);
  }
  ~Stream() { inflateEnd(&stream_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  z_stream& Get() { return stream_; }

 private:
  z_stream stream_{};
};

constexpr std::size_t kMostAtOnce = std::numeric_limits<uInt>::max() / 2;

// A small file must not take all memory: numbers never get that small, only zeros do.
constexpr std::size_t kLargeSize = std::size_t{64} << 20, kMostRatio = 256;

}  // namespace

ByteBlock Inflate(std::string_view compressed, std::size_t wanted, std::size_t position, bool mayBeShorter) {
  const auto refuse = [&](const char* reason) {
    throw FormatError("Byte " + std::to_string(position) + ": " + reason);
  };
  Stream stream;
  z_stream& z = stream.Get();
  // What numbers mostly need: the whole result in one piece.
  ByteBlock block(std::min(wanted, 16 * compressed.size() + 4096));
  std::size_t taken = 0, done = 0;
  int state = Z_OK;
  while (done < wanted && state == Z_OK) {
    if (done > kLargeSize && done / kMostRatio > taken) refuse("die Daten sind unglaubwürdig stark komprimiert");
    if (done == block.size()) block.resize(std::min(wanted, 2 * block.size()));
    const std::size_t input = std::min(compressed.size() - taken, kMostAtOnce);
    const std::size_t room = std::min(block.size() - done, kMostAtOnce);
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data() + taken));
    z.avail_in = static_cast<uInt>(input);
    z.next_out = reinterpret_cast<Bytef*>(block.data() + done);
    z.avail_out = static_cast<uInt>(room);
    state = inflate(&z, Z_NO_FLUSH);
    taken += input - z.avail_in;
    done += room - z.avail_out;
    if (state == Z_BUF_ERROR || (state == Z_OK && taken == compressed.size() && z.avail_out > 0)) break;
  }
  if (state == Z_MEM_ERROR) throw SystemError(ErrorNumber::outOfMemory);
  if (state != Z_OK && state != Z_STREAM_END && state != Z_BUF_ERROR) refuse("die komprimierten Daten sind beschädigt");
  if (done < wanted && !mayBeShorter) refuse("die komprimierten Daten sind zu kurz");
  block.resize(done);
  return block;
}

}  // namespace quiverion::exchange
