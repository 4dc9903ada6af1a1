#pragma once

#include <string>
#include <vector>

#include "support/bytes.h"

namespace quiverion::test {

/// A VEC file with every byte outside the described items set to 0xAA.
struct VecImage {
  int imageType = 20;
  int rows = 2;
  int columns = 2;
  int subType = 2;
  int spacing = 8;
  std::string date = "24.11.03";
  std::string time = "10:15:06";
  float fx = 0.125F, ox = 1.5F, fy = -0.125F, oy = 4.5F, fv = 2.5F;
  std::string comment1 = "D\xFCse";
  std::string comment2;
  std::vector<float> frames = {2, 0, -0.5F, 0};

  std::string Build() const {
    std::string bytes(256, '\xAA');
    const auto put = [&bytes](std::size_t offset, const Bytes& value) {
      bytes.replace(offset, value.Get().size(), value.Get());
    };
    const auto text = [](std::string value, std::size_t size) {
      value.resize(size, '\0');
      return Bytes().Raw(value);
    };
    put(0, Bytes().I16(imageType));
    put(10, Bytes().I16(rows).I16(columns).I16(subType));
    put(20, Bytes().I16(spacing));
    put(34, text(date, 9));
    put(43, text(time, 9));
    put(54, Bytes().F32(fx).F32(ox));
    put(86, Bytes().F32(fy).F32(oy));
    put(118, Bytes().F32(fv));
    put(148, text(comment1, 40));
    put(188, text(comment2, 40));
    Bytes values;
    for (const float value : frames) values.F32(value);
    return bytes + values.Get();
  }
};

}  // namespace quiverion::test
