// What every target ends with: a promise that does not hold, and where it stands.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, int line = __builtin_LINE()) {
  if (holds) return;
  std::fprintf(stderr, "line %d: this does not hold\n", line);
  std::abort();
}
