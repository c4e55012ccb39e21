// Ref: a counted reference to an object that the host owns; an empty one is "Nothing".
#pragma once

#include <memory>

namespace quillfile {

template <class T>
using Ref = std::shared_ptr<T>;

}  // namespace quillfile
