// The guard, the trace and the error report.
#include "core/module/procedure.h"

#include <new>
#include <stdexcept>

#include "core/module/trace.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

class ProcedureGuard : public testing::Test {
 protected:
  FakePlatform world;
};

TEST_F(ProcedureGuard, AResultComesThroughAndNothingIsReported) {
  EXPECT_EQ(
      procedure(world.services, {.name = u".Test", .wording = wording::atLine}, [](Step&) { return 7; }), 7);
  expectTranscript(world.record.lines(), {});
}

TEST_F(ProcedureGuard, AFailureIsReportedWithItsStepAndLevelAndBecomesTheEmptyResult) {
  const auto fail = [](Step& at) -> bool {
    at(1);
    at(3);
    throw Failure{5, u"no {} here"};
  };
  EXPECT_FALSE(procedure(world.services, {.name = u".Test", .wording = wording::atLine, .level = 1}, fail));
  EXPECT_FALSE(procedure(world.services, {.name = u".Test", .wording = wording::reason}, fail));
  expectTranscript(world.record.lines(),
                   {u"error 1 Quillfile.Test: Error occurred at line 3.  Reason: no {} here",
                    u"error 0 Quillfile.Test: Error occurred.  Reason: no {} here"});
}

TEST_F(ProcedureGuard, WhatTheStandardLibraryThrowsIsAFailureToo) {
  const Procedure about{.name = u".Test", .wording = wording::reason};
  procedure(world.services, about, [](Step&) { throw std::bad_alloc{}; });
  procedure(world.services, about, [](Step&) { throw std::out_of_range{"a position"}; });
  expectTranscript(world.record.lines(), {u"error 0 Quillfile.Test: Error occurred.  Reason: Out of memory",
                                          u"error 0 Quillfile.Test: Error occurred.  Reason: a position"});
}

TEST_F(ProcedureGuard, AReportThatFailsIsNotReportedAgain) {
  world.services.reportFails = true;
  EXPECT_NO_THROW(procedure(world.services, {.name = u".Test", .wording = wording::reason}, [](Step&) {
    throw Failure{5, u"x"};
  }));
  expectTranscript(world.record.lines(), {});
}

TEST_F(ProcedureGuard, ATraceThatFailsStopsNothing) {
  const Trace trace{world.log};
  world.log.fails = true;
  EXPECT_NO_THROW(trace(u"Test", u"Entering {}", u"Test"));
  world.log.fails = false;
  trace(u"Test", u"Leaving {}", u"Test");
  expectTranscript(world.record.lines(), {u"trace Test: Leaving Test"});
}

// A body of a hundred megabytes, say, that nobody needs but the trace.
TEST_F(ProcedureGuard, AValueThatDoesNotFitIntoMemoryStopsNothing) {
  const Trace trace{world.log};
  EXPECT_NO_THROW(trace(u"Test", u"Body: {}", []() -> Text { throw std::bad_alloc{}; }));
  expectTranscript(world.record.lines(), {});
}

TEST_F(ProcedureGuard, ATraceWithoutValuesStandsAsItIs) {
  const Trace trace{world.log};
  trace(u"Test", u"100 {} percent");
  expectTranscript(world.record.lines(), {u"trace Test: 100 {} percent"});
}

}  // namespace
}  // namespace quillfile
