// Tests that hold under Windows' path rules and under the other systems'.
//
//   class Naming : public UnderBothRules {};
//   INSTANTIATE_TEST_SUITE_P(Paths, Naming, bothRules(), rulesName);
//   TEST_P(Naming, ...) { ... world.path(u"C:\\Saved\\a.pdf") ... }
#pragma once

#include <gtest/gtest.h>

#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {

// For what a failed test prints of its parameter.
inline void PrintTo(const PathRules& rules, std::ostream* out) {
  *out << (rules.drives ? "Windows rules" : "Posix rules");
}

class UnderBothRules : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  Text path(TextView windowsPath) const { return world.path(windowsPath); }
};

inline auto bothRules() { return testing::Values(PathRules::windows(), PathRules::posix()); }
inline std::string rulesName(const testing::TestParamInfo<PathRules>& info) {
  return info.param.drives ? "Windows" : "Posix";
}

}  // namespace quillfile
