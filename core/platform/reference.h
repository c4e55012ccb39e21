// Ref: a counted reference to an object that the host owns; an empty one is "Nothing".
#pragma once

#include <memory>

#include "core/platform/failure.h"

namespace quillfile {

template <class T>
using Ref = std::shared_ptr<T>;

// The object that `reference` holds. Using Nothing is a Failure, as it is in the mail client (error 91 by
// convention).
template <class T>
T& held(const Ref<T>& reference) {
  if (!reference) throw Failure{91, u"Object variable not set"};
  return *reference;
}

}  // namespace quillfile
