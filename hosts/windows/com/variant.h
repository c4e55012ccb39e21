// Variant: an owned automation value, and its conversions by the automation rules (VariantChangeType).
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>

#include "core/platform/date_time.h"
#include "hosts/windows/com/ptr.h"
#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

class Variant {
 public:
  Variant() = default;
  Variant(std::int32_t number);
  Variant(bool value);
  Variant(TextView text);
  Variant(const Text& text) : Variant(TextView{text}) {}
  Variant(const char16_t* text) : Variant(TextView{text}) {}
  Variant(IDispatch* object);  // takes a reference of its own
  Variant(const Ptr<IDispatch>& object) : Variant(object.get()) {}
  Variant(const Variant& other);
  Variant(Variant&& other) noexcept : value_(other.detach()) {}
  Variant& operator=(Variant other) noexcept;
  ~Variant() { VariantClear(&value_); }

  static Variant missing();                          // an optional argument that was left out
  static Variant date(const LocalTime&);             // VT_DATE
  static Variant bytes(TextView units);              // an array of bytes, one for each unit
  static Variant reference(Ptr<IDispatch>& object);  // VT_BYREF: the called may replace it
  static Variant copyOf(const VARIANT& value);

  // Each throws Failure where the value cannot be had as that type.
  Text text() const;  // of an array of bytes: one unit for each
  std::int32_t number() const;
  bool boolean() const;
  LocalTime date() const;
  Ptr<IDispatch> object() const;  // empty for Nothing

  const VARIANT& raw() const { return value_; }
  VARIANT* out();  // where a call stores its result
  VARIANT detach();

 private:
  Variant as(VARTYPE type) const;

  VARIANT value_{};  // VT_EMPTY
};

}  // namespace quillfile::windows
