// Adapted: a port of the core's, answered by a late-bound object.
#pragma once

#include "core/platform/reference.h"
#include "hosts/windows/com/object.h"

namespace quillfile::windows {

// The object behind an adapter.
class Behind {
 public:
  explicit Behind(Object object) : object_(std::move(object)) {}
  virtual ~Behind() = default;
  const Object& object() const { return object_; }

 private:
  Object object_;
};

template <class Port>
class Adapted : public Port, public Behind {
 public:
  using Behind::Behind;
};

// The adapter of an object; Nothing for Nothing.
template <class Adapter>
Ref<Adapter> adapt(const Ptr<IDispatch>& object) {
  return object ? std::make_shared<Adapter>(Object{object}) : Ref<Adapter>{};
}

// The object behind a reference that the core hands back; Nothing for Nothing.
template <class Port>
Object behind(const Ref<Port>& reference) {
  const auto* adapter = dynamic_cast<const Behind*>(reference.get());
  return adapter == nullptr ? Object{} : adapter->object();
}

}  // namespace quillfile::windows
