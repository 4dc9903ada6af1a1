#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "support/slashes.h"

namespace quiverion::test {

/// Compares with the text in tests/approved/<name>, where every separator is "/". With QUIVERION_APPROVE set in the
/// environment the text is written there instead: look at the difference before committing it.
inline void ExpectApproved(const std::string& name, std::string text) {
  text = WithSlashes(text);
  const std::string path = std::string(APPROVED_TEXTS) + "/" + name;
  if (std::getenv("QUIVERION_APPROVE") != nullptr) std::ofstream(path, std::ios::binary) << text;
  std::ifstream file(path, std::ios::binary);
  const std::string approved(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(text, WithSlashes(approved)) << name;
}

}  // namespace quiverion::test
