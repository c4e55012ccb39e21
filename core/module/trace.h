// Trace: one line to the engine's log, under a procedure's name.
#pragma once

#include "core/platform/engine.h"
#include "core/platform/failure.h"

namespace quillfile {

inline constexpr TextView moduleName = u"Quillfile";

class Trace {
 public:
  explicit Trace(EngineLog& log, TextView module = moduleName) : log_(log), module_(module) {}

  // Writes `pattern`, its "{}" filled with `values`. A failure to write is not reported again.
  template <class... Values>
  void operator()(TextView procedure, TextView pattern, const Values&... values) const {
    try {
      if (log_.wanted())
        log_.write(module_, procedure, sizeof...(values) == 0 ? Text{pattern} : fill(pattern, values...), 0);
    } catch (const Failure&) {
      return;  // a trace that cannot be written must not stop what it describes
    }
  }

 private:
  EngineLog& log_;
  TextView module_;
};

}  // namespace quillfile
