// Object: a late-bound automation object; members are found by name at each call (about 0.1 microseconds).
// Every call throws Failure with the called object's own description.
#pragma once

#include <array>

#include "hosts/windows/com/variant.h"

namespace quillfile::windows {

class Object {
 public:
  Object() = default;
  Object(Ptr<IDispatch> object) : object_(std::move(object)) {}

  // A new object of a registered class: CLSIDFromProgID, CoCreateInstance.
  static Object create(const Text& progId);
  static Object create(const CLSID& classId);

  explicit operator bool() const { return static_cast<bool>(object_); }
  IDispatch* get() const { return object_.get(); }
  const Ptr<IDispatch>& ptr() const { return object_; }

  template <class... Arguments>
  Variant get(const Text& name, const Arguments&... arguments) const {
    return invoke(name, DISPATCH_PROPERTYGET, arguments...);
  }
  template <class... Arguments>
  Variant call(const Text& name, const Arguments&... arguments) const {
    return invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments...);
  }
  // A call whose result, if any, is of no use. Some objects refuse to be asked for the value of a method.
  template <class... Arguments>
  void run(const Text& name, const Arguments&... arguments) const {
    invoke(name, DISPATCH_METHOD, arguments...);
  }
  void put(const Text& name, const Variant& value) const;

  // What the object says its type is, without the leading "_" of an interface's name; empty when it does not
  // say.
  Text typeName() const;

 private:
  template <class... Arguments>
  Variant invoke(const Text& name, WORD flags, const Arguments&... arguments) const {
    // Arguments go last first; the values stay owned by the callers.
    std::array<VARIANT, sizeof...(Arguments)> raw{};
    auto next = raw.rbegin();
    std::array<Variant, sizeof...(Arguments)> owned{Variant(arguments)...};
    for (const auto& value : owned) *next++ = value.raw();
    return invoke(name, flags, raw.data(), static_cast<UINT>(raw.size()));
  }
  Variant invoke(const Text& name, WORD flags, VARIANT* arguments, UINT count) const;
  DISPID find(const Text& name) const;

  Ptr<IDispatch> object_;
};

}  // namespace quillfile::windows
