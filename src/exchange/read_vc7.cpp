#include <algorithm>
#include <cmath>
#include <map>

#include "exchange/file_bytes.h"
#include "exchange/inflate.h"
#include "exchange/raw_field.h"
#include "exchange/readers.h"
#include "exchange/units.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kHeaderSize = 256;

// What a buffer format stores: planes of rows x columns floats.
struct BufferFormat {
  std::size_t planes;      // all of them
  bool hasChoice;          // the first plane says which peak counts
  std::size_t components;  // planes of one peak
};
constexpr BufferFormat kBufferFormats[] = {{9, true, 2}, {2, false, 2}, {10, true, 2}, {3, false, 3}, {14, true, 3}};

struct Header {
  std::int16_t version, pack, format, sparse;
  std::int32_t columns, rows, depth, frames;
  std::int16_t grid, extra;
};

Header HeaderOf(std::string_view bytes) {
  const auto int16 = [&](std::size_t at) { return LoadValue<std::int16_t, std::endian::little>(bytes.data() + at); };
  const auto int32 = [&](std::size_t at) { return LoadValue<std::int32_t, std::endian::little>(bytes.data() + at); };
  return {int16(0), int16(2), int16(4), int16(6), int32(8), int32(12), int32(16), int32(20), int16(26), int16(28)};
}

bool IsPlausible(const Header& header) {
  return header.version == 0 && header.pack >= 0 && header.pack <= 3 && header.format >= -20 && header.format <= 20 &&
         header.columns > 0 && header.rows > 0 && header.depth > 0 && header.depth < 10000 && header.frames > 0 &&
         header.frames < 10000;
}

// factor, offset and unit of an axis or of the values.
struct Scale {
  double factor = 1.0, offset = 0.0;
  std::string unit;
};

// "0.0158946\n-9.37833\n[mm]\n" of an attribute, or "0.015895 -9.378330\0mm\0\0" of a tag.
Scale ScaleOf(std::string_view text) {
  Scale scale;
  const NumberPrefix factor = ReadNumberPrefix(text);
  text.remove_prefix(std::min(text.size(), factor.length + 1));
  const NumberPrefix offset = ReadNumberPrefix(text);
  text.remove_prefix(std::min(text.size(), offset.length + 1));
  scale.factor = factor.length > 0 ? factor.value : 1.0;
  scale.offset = offset.value;
  scale.unit = CleanUnit(text.substr(0, text.find_first_of(std::string_view("\n\0", 2))));
  return scale;
}

// What follows the planes: tags of a type and a size, until one is empty.
class Tags {
 public:
  Tags(const FileBytes& bytes, std::size_t at) {
    constexpr std::int32_t kAttribute = 6;
    for (;;) {
      const auto type = bytes.Read<std::int32_t>(at), size = bytes.Read<std::int32_t>(at + 4);
      at += 8;
      if (type == 0 && size == 0) break;
      if (size < 0) FileBytes::Refuse(at - 4, "unmögliche Größe eines Eintrags");
      const std::string_view text = bytes.At(at, static_cast<std::size_t>(size));
      at += text.size();
      if (type == kAttribute) {
        const std::size_t equals = std::min(text.find('='), text.size());
        attributes_[std::string(text.substr(0, equals))] = text.substr(std::min(equals + 1, text.size()));
      } else {
        tags_[type] = text;
      }
    }
    end_ = at;
  }

  std::size_t End() const { return end_; }

  std::string_view Attribute(const std::string& name) const {
    const auto found = attributes_.find(name);
    return found == attributes_.end() ? std::string_view() : found->second;
  }

  // The attribute goes before the tag, which has only six decimals.
  Scale ScaleFor(const std::string& attribute, std::int32_t tag) const {
    if (const std::string_view text = Attribute(attribute); !text.empty()) return ScaleOf(text);
    const auto found = tags_.find(tag);
    return found == tags_.end() ? Scale() : ScaleOf(found->second);
  }

 private:
  std::map<std::string, std::string_view> attributes_;
  std::map<std::int32_t, std::string_view> tags_;
  std::size_t end_ = 0;
};

// The end of the count and the list of scalars that begin at `at`; nothing if they are none.
std::optional<std::size_t> EndOfScalars(const FileBytes& bytes, std::size_t at) {
  const auto read = [&](std::size_t position) -> std::int64_t {
    return position + 4 <= bytes.Size() ? bytes.Read<std::int32_t>(position) : -1;
  };
  const std::int64_t count = read(at);
  if (count < 0 || count > 1000) return std::nullopt;
  at += 4;
  const auto skipText = [&] {
    const std::int64_t length = read(at);
    if (length < 0 || length > 100000) return false;
    at += 4 + static_cast<std::size_t>(length) + 1;
    return true;
  };
  for (std::int64_t k = 0; k < count; ++k) {
    const std::int64_t columns = read(at), rows = read(at + 4);
    if (columns < 1 || rows < 1) return std::nullopt;
    at += 24;
    for (int text = 0; text < 6; ++text) {
      if (!skipText()) return std::nullopt;
    }
    const std::uint64_t size = 4 * static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
    if (at > bytes.Size() || size > bytes.Size() - at) return std::nullopt;
    at += static_cast<std::size_t>(size);
  }
  return at;
}

// One byte per vector, not 0 if it is enabled; empty if all are. The scalars that follow have to end where the file or
// its directory says, with the mask or without it.
std::string_view EnabledMask(const FileBytes& bytes, std::size_t tagsBegin, std::size_t tagsEnd, std::size_t count) {
  constexpr std::size_t kDirectorySize = 32 * 8;
  const std::size_t size = bytes.Size();
  const bool hasDirectory =
      size >= tagsEnd + kDirectorySize && bytes.Read<std::uint64_t>(size - kDirectorySize) == tagsBegin;
  bool hasOtherParts = false;  // between the scalars and the directory
  for (std::size_t slot = 4; hasDirectory && slot < 32; ++slot) {
    hasOtherParts = hasOtherParts || bytes.Read<std::uint64_t>(size - kDirectorySize + 8 * slot) != 0;
  }
  const auto isWhole = [&](std::size_t begin) {
    const auto end = EndOfScalars(bytes, begin);
    const std::size_t expected = size - (hasDirectory ? kDirectorySize : 0);
    return end && (*end == expected || (hasOtherParts && *end < expected));
  };
  const bool mayHaveMask = count <= size - tagsEnd;
  if (hasDirectory && bytes.Read<std::uint64_t>(size - kDirectorySize + 16) == tagsEnd) {
    if (mayHaveMask && isWhole(tagsEnd + count)) return bytes.At(tagsEnd, count);
  } else {
    if (isWhole(tagsEnd)) return {};
    if (mayHaveMask && isWhole(tagsEnd + count)) return bytes.At(tagsEnd, count);
  }
  FileBytes::Refuse(tagsEnd, "die Maske oder die Skalare nach den Einträgen sind nicht vollständig");
}

// Everything the planes say.
class Planes {
 public:
  Planes(const char* bytes, std::size_t count, const BufferFormat& format, std::size_t position)
      : bytes_(bytes), count_(count), format_(format), position_(position) {}

  // Velocities, and statuses: the number of the peak, 0 without a vector, which is (0, 0).
  void Take(const Scale& scale, bool yAscends, RawField& raw) const {
    const double sign = yAscends ? 1.0 : -1.0;
    raw.u.resize(count_);
    raw.v.resize(count_);
    raw.status.resize(count_);
    for (std::size_t p = 0; p < count_; ++p) {
      const int choice = format_.hasChoice ? ChoiceAt(p) : 1;
      raw.status[p] = choice;
      if (choice == 0) {
        raw.u[p] = raw.v[p] = 0;
        continue;
      }
      const std::size_t plane =
          (format_.hasChoice ? 1 : 0) + format_.components * (static_cast<std::size_t>(choice) - 1);
      raw.u[p] = static_cast<double>(Value(plane, p)) * scale.factor + scale.offset;
      raw.v[p] = static_cast<double>(Value(plane + 1, p)) * scale.factor * sign;
    }
  }

 private:
  float Value(std::size_t plane, std::size_t p) const {
    return LoadValue<float, std::endian::little>(bytes_ + 4 * (plane * count_ + p));
  }

  // 5 is the vector of a later step, which is stored as the fourth.
  int ChoiceAt(std::size_t p) const {
    const float value = Value(0, p);
    if (!(value >= 0 && value <= 5) || value != std::floor(value)) {
      FileBytes::Refuse(position_ + 4 * p, "Vektor " + std::to_string(p + 1) + " hat eine unmögliche Nummer");
    }
    return std::min(static_cast<int>(value), 4);
  }

  const char* bytes_;
  std::size_t count_;
  const BufferFormat& format_;
  std::size_t position_;
};

void CheckHeader(const Header& header) {
  if (!IsPlausible(header)) FileBytes::Refuse(0, "kein Kopf einer VC7-Datei");
  if (header.format <= 0) FileBytes::Refuse(4, "das ist ein Bild von DaVis, kein Vektorfeld");
  if (header.format > 5) FileBytes::Refuse(4, "das Format " + std::to_string(header.format) + " ist unbekannt");
  if (header.sparse != 0) FileBytes::Refuse(6, "ein lückenhafter Puffer kann nicht gelesen werden");
  if (header.depth != 1 || header.frames != 1) FileBytes::Refuse(16, "mehrere Ebenen können nicht gelesen werden");
  if (header.pack != 0 && header.pack != 2) {
    FileBytes::Refuse(2, "die Packart " + std::to_string(header.pack) +
                             " kann nicht gelesen werden; in DaVis unkomprimiert oder mit zlib speichern");
  }
}

// The positions of the centres of the windows.
Values Positions(std::int32_t count, const Scale& scale, double grid) {
  Values positions(static_cast<std::size_t>(count));
  for (std::size_t k = 0; k < positions.size(); ++k) {
    positions[k] = scale.offset + (static_cast<double>(k) + 0.5) * grid * scale.factor;
  }
  return positions;
}

// "300 us"
std::int32_t Microseconds(std::string_view text) {
  const NumberPrefix number = ReadNumberPrefix(text);
  const std::string unit = CleanUnit(text.substr(number.length));
  const bool isUsual =
      number.length > 0 && number.value >= 0 && number.value < 2E9 && (unit == "us" || unit == "\xC2\xB5s");
  return isUsual ? RoundToInt32(number.value) : 0;
}

void TakeMask(std::string_view mask, Statuses& statuses) {
  for (std::size_t p = 0; p < mask.size(); ++p) statuses[p] = mask[p] != 0 ? statuses[p] : -1;
}

void TakeTime(const Tags& tags, RawField& raw) {
  const std::string_view text = tags.Attribute("AcqTimeSeries0");  // "178439.840 µs"
  if (const NumberPrefix number = ReadNumberPrefix(text); number.length > 0) raw.time = number.value * 1E-6;
}

struct Contents {
  RawField raw;
  FileFacts facts;
};

// The planes of the file, and where the tags begin.
struct PlaneBytes {
  ByteBlock inflated;
  const char* data = nullptr;
  std::size_t end = 0;
};

PlaneBytes ReadPlanes(const FileBytes& bytes, const Header& header, std::size_t size) {
  PlaneBytes planes;
  if (header.pack != 2) {
    planes.data = bytes.At(kHeaderSize, size).data();
    planes.end = kHeaderSize + size;
    return planes;
  }
  const auto length = bytes.Read<std::int32_t>(kHeaderSize);
  if (length < 0) FileBytes::Refuse(kHeaderSize, "unmögliche Größe der Daten");
  constexpr std::size_t kBegin = kHeaderSize + 4;
  const std::string_view stream = bytes.At(kBegin, static_cast<std::size_t>(length));
  planes.inflated = Inflate(stream, size, kBegin);
  planes.data = planes.inflated.data();
  planes.end = kBegin + stream.size();
  return planes;
}

std::string DialectOf(const Header& header, const Tags& tags) {
  std::string version(tags.Attribute("_DaVisVersion"));
  ReplaceControls(version, "");
  return "DaVis " + (version.empty() ? "" : version + " ") + "(VC7, Format " + std::to_string(header.format) +
         (header.pack == 2 ? ", zlib)" : ")");
}

Contents ReadContents(const FileBytes& bytes) {
  const Header header = HeaderOf(bytes.At(0, kHeaderSize));
  CheckHeader(header);
  const BufferFormat& format = kBufferFormats[header.format - 1];
  // Both counts are below 2^31, so nothing overflows below this limit, which no file reaches.
  const std::uint64_t points = static_cast<std::uint64_t>(header.columns) * static_cast<std::uint64_t>(header.rows);
  if (points > (std::uint64_t{1} << 40)) FileBytes::Refuse(8, "die Datei endet zu früh");
  const auto count = static_cast<std::size_t>(points);
  const PlaneBytes planes = ReadPlanes(bytes, header, 4 * format.planes * count);
  const Tags tags(bytes, planes.end);
  const Scale x = tags.ScaleFor("FrameScaleX0", 1), y = tags.ScaleFor("FrameScaleY0", 2),
              value = tags.ScaleFor("FrameScaleI0", 4);

  Contents contents;
  RawField& raw = contents.raw;
  raw.columnPositions = Positions(header.columns, x, header.grid);
  raw.rowPositions = Positions(header.rows, y, header.grid);
  raw.layout = GridOfAxes(raw.columnPositions, raw.rowPositions);
  raw.gridStep = header.grid;
  raw.pulseDelay = Microseconds(tags.Attribute("FrameDt0"));
  TakeTime(tags, raw);
  Planes(planes.data, count, format, kHeaderSize).Take(value, y.factor > 0, raw);

  FileFacts& facts = contents.facts;
  facts.hasStatus = format.hasChoice;
  facts.statusRule = format.hasChoice ? "Status aus der Wahl des Peaks" : "kein Status in der Datei";
  if (header.extra == 1) {
    const std::string_view mask = EnabledMask(bytes, planes.end, tags.End(), count);
    TakeMask(mask, raw.status);
    if (!mask.empty()) facts.statusRule += " und aus der Maske";
  }
  facts.dialect = DialectOf(header, tags);
  facts.lengthUnit = x.unit;
  facts.velocityUnit = value.unit;
  facts.yPointsDown = y.factor > 0;
  return contents;
}

}  // namespace

bool IsVc7(std::string_view head) {
  return head.size() >= kHeaderSize && IsPlausible(HeaderOf(head));
}

ForeignFile ReadVc7(const ForeignSource& source) {
  const FileBytes bytes(source.file);
  Contents contents = ReadContents(bytes);
  std::vector<RawField> raw;
  raw.push_back(std::move(contents.raw));
  return BuildFields(std::move(raw), contents.facts, source.options);
}

}  // namespace quiverion::exchange
