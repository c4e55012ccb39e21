// SavingRoom: the saving engine in a fake world, under either system's path rules.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "core/saving/naming.h"
#include "tests/core/saving/saving.h"
#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/transcript.h"

namespace quillfile {

// "/Saved/a.pdf" as the system of `rules` writes it: "C:\Saved\a.pdf" under Windows.
inline Text native(const PathRules& rules, TextView path) {
  return rules.drives ? Text{u"C:"}.append(replaceAll(path, u"/", u"\\")) : Text{path};
}

// A test that runs under both systems' rules, in a world with the folder "/Saved/".
class SavingUnderBothRules : public testing::TestWithParam<PathRules> {
 protected:
  SavingUnderBothRules() { world.files.addFolder(path(u"/Saved/")); }

  Text path(TextView posix) const { return native(GetParam(), posix); }
  Text link(TextView posix) const { return GetParam().linkTo(path(posix)); }
  const std::vector<Text>& lines() const { return world.record.lines(); }
  // Only what a procedure traced, without "trace " and its name.
  std::vector<Text> traced(TextView procedure) const {
    const auto beginning = fill(u"trace {}: ", procedure);
    std::vector<Text> found;
    for (const auto& line : world.record.lines(beginning)) found.push_back(line.substr(beginning.size()));
    return found;
  }
  // What was done, without traces and without the calls on open files.
  std::vector<Text> done() const {
    std::vector<Text> found;
    for (const auto& line : lines())
      if (!startsWith(line, u"trace ") && !startsWith(line, u"FileTimes.")) found.push_back(line);
    return found;
  }

  FakePlatform world{GetParam()};
  Saving saving{world};
  QuillfileRoutines& engine = saving.routines;
};

// Lets every suite of such tests run under both rules, and names them.
#define RUN_UNDER_BOTH_RULES(suite)                                                                 \
  INSTANTIATE_TEST_SUITE_P(Rules, suite, testing::Values(PathRules::windows(), PathRules::posix()), \
                           [](const auto& given) { return given.param.drives ? "Windows" : "Posix"; })

}  // namespace quillfile
