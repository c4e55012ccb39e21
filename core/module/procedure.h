// The procedure guard: every procedure that can fail runs its body inside procedure(), which keeps the step
// number, catches, reports to the engine in that procedure's own wording, and returns the empty result.
//
//   bool Responses::DisplayFromDrafts(TextView entryId) {
//     return procedure(services_, {.name = u".DisplayFromDrafts", .wording = wording::reason}, [&](Step& at)
//     -> bool {
//       at(1); ...
//     });
//   }
#pragma once

#include "core/platform/engine.h"
#include "core/platform/failure.h"

namespace quillfile {

// The number of the step that a procedure began last.
class Step {
 public:
  void operator()(std::int32_t number) { number_ = number; }
  std::int32_t number() const { return number_; }

 private:
  std::int32_t number_ = 0;
};

// The shapes of error texts; where it `hasStep`, the first "{}" is the step; the last is the description.
struct Wording {
  TextView text;
  bool hasStep;
};

namespace wording {
inline constexpr Wording atLine{u"Error occurred at line {}.  Reason: {}", true};
inline constexpr Wording reason{u"Error occurred.  Reason: {}", false};
}  // namespace wording

struct Procedure {
  TextView name;  // with its point: ".CEShutdown"
  Wording wording;
  std::int32_t level = 0;
};

// Reports an error under "Quillfile" + `name`; a failure of the report is not reported again.
void reportError(EngineServices& services, TextView name, TextView message, std::int32_t level = 0);
void reportError(EngineServices& services, const Procedure& about, const Step& step, const Failure& failure);

// What is being handled, as a Failure: the adapters' own, or what the standard library threw.
Failure currentFailure();

// Runs `body`; on a failure calls `onError(failure, step)` and returns what that returns.
template <class Body, class OnError>
auto guarded(Body&& body, OnError&& onError) {
  Step step;
  try {
    return body(step);
  } catch (...) {
    return onError(currentFailure(), step);
  }
}

// Runs `body`; on a failure reports it and returns `otherwise`.
template <class Body, class Result = std::invoke_result_t<Body, Step&>>
requires(!std::is_void_v<Result>) Result
    procedure(EngineServices& services, const Procedure& about, Body&& body, Result otherwise = {}) {
  return guarded(body, [&](const Failure& failure, const Step& step) {
    reportError(services, about, step, failure);
    return otherwise;
  });
}
template <class Body>
requires std::is_void_v<std::invoke_result_t<Body, Step&>>
void procedure(EngineServices& services, const Procedure& about, Body&& body) {
  guarded(body,
          [&](const Failure& failure, const Step& step) { reportError(services, about, step, failure); });
}

// "With errors ignored": runs `body` and goes on, whatever happened. True when nothing did.
template <class Body>
bool ignoringErrors(Body&& body) {
  return guarded([&](Step&) { return body(), true; }, [](const Failure&, const Step&) { return false; });
}

}  // namespace quillfile
