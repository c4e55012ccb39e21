// Trace: one line to the engine's log, under a procedure's name.
#pragma once

#include <type_traits>

#include "core/module/procedure.h"
#include "core/platform/engine.h"

namespace quillfile {

inline constexpr TextView moduleName = u"Quillfile";

class Trace {
 public:
  explicit Trace(EngineLog& log, TextView module = moduleName) : log_(log), module_(module) {}

  // Writes `pattern`, its "{}" filled with `values`. A failure to write is not reported again.
  // A value may be a function: it is called only when the line is wanted, which saves reading what only a
  // trace shows.   trace(u"SaveEmail", u"Body: {}", [&] { return item->body(); })
  template <class... Values>
  void operator()(TextView procedure, TextView pattern, const Values&... values) const {
    // A trace that cannot be written, for want of memory too, must not stop what it describes.
    ignoringErrors([&] {
      if (log_.wanted())
        log_.write(module_, procedure,
                   sizeof...(values) == 0 ? Text{pattern} : quillfile::fill(pattern, valueOf(values)...), 0);
    });
  }

 private:
  template <class Value>
  static decltype(auto) valueOf(const Value& value) {
    if constexpr (std::is_invocable_v<const Value&>)
      return value();
    else
      return (value);
  }

  EngineLog& log_;
  TextView module_;
};

}  // namespace quillfile
