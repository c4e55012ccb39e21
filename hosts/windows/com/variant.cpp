#include "hosts/windows/com/variant.h"

#include <cstring>

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"

namespace quillfile::windows {

namespace {

// The system's calls read these values and do not say so in their types.
VARIANT* readOnly(const VARIANT& value) { return const_cast<VARIANT*>(&value); }

}  // namespace

Variant::Variant(std::int32_t number) {
  value_.vt = VT_I4;
  value_.lVal = number;
}

Variant::Variant(bool value) {
  value_.vt = VT_BOOL;
  value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(TextView text) {
  value_.bstrVal = Bstr{text}.detach();
  value_.vt = VT_BSTR;
}

Variant::Variant(IDispatch* object) {
  value_.vt = VT_DISPATCH;
  value_.pdispVal = Ptr<IDispatch>{object}.detach();
}

Variant::Variant(const Variant& other) { check(VariantCopy(&value_, readOnly(other.value_))); }

Variant& Variant::operator=(Variant other) noexcept {
  std::swap(value_, other.value_);
  return *this;
}

Variant Variant::missing() {
  Variant result;
  result.value_.vt = VT_ERROR;
  result.value_.scode = DISP_E_PARAMNOTFOUND;
  return result;
}

Variant Variant::date(const LocalTime& time) {
  SYSTEMTIME parts{};
  parts.wYear = static_cast<WORD>(time.year);
  parts.wMonth = static_cast<WORD>(time.month);
  parts.wDay = static_cast<WORD>(time.day);
  parts.wHour = static_cast<WORD>(time.hour);
  parts.wMinute = static_cast<WORD>(time.minute);
  parts.wSecond = static_cast<WORD>(time.second);
  Variant result;
  if (!SystemTimeToVariantTime(&parts, &result.value_.date)) throw Failure::typeMismatch();
  result.value_.vt = VT_DATE;
  return result;
}

Variant Variant::bytes(TextView units) {
  Variant result;
  result.value_.parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(units.size()));
  if (result.value_.parray == nullptr) throw std::bad_alloc{};
  result.value_.vt = VT_ARRAY | VT_UI1;
  auto* bytes = static_cast<unsigned char*>(result.value_.parray->pvData);
  for (const char16_t unit : units) *bytes++ = static_cast<unsigned char>(unit);
  return result;
}

Variant Variant::reference(Ptr<IDispatch>& object) {
  Variant result;
  result.value_.vt = VT_BYREF | VT_DISPATCH;
  result.value_.ppdispVal = object.place();
  return result;
}

Variant Variant::copyOf(const VARIANT& value) {
  Variant result;
  check(VariantCopyInd(&result.value_, readOnly(value)));
  return result;
}

Variant Variant::as(VARTYPE type) const {
  Variant result;
  check(
      VariantChangeTypeEx(&result.value_, readOnly(value_), LOCALE_USER_DEFAULT, VARIANT_NOVALUEPROP, type));
  return result;
}

Text Variant::text() const {
  if (value_.vt == VT_BSTR) return Text{textOf(value_.bstrVal)};
  if (value_.vt == VT_EMPTY || value_.vt == VT_NULL) return {};
  if (value_.vt == (VT_ARRAY | VT_UI1)) {
    const auto* bytes = static_cast<const unsigned char*>(value_.parray->pvData);
    return Text(bytes, bytes + value_.parray->rgsabound[0].cElements);
  }
  return as(VT_BSTR).text();
}

std::int32_t Variant::number() const { return value_.vt == VT_I4 ? value_.lVal : as(VT_I4).value_.lVal; }

bool Variant::boolean() const {
  return (value_.vt == VT_BOOL ? value_.boolVal : as(VT_BOOL).value_.boolVal) != VARIANT_FALSE;
}

LocalTime Variant::date() const {
  SYSTEMTIME parts;
  const DATE date = value_.vt == VT_DATE ? value_.date : as(VT_DATE).value_.date;
  if (!VariantTimeToSystemTime(date, &parts)) throw Failure::typeMismatch();
  return {.year = parts.wYear,
          .month = parts.wMonth,
          .day = parts.wDay,
          .hour = parts.wHour,
          .minute = parts.wMinute,
          .second = parts.wSecond};
}

Ptr<IDispatch> Variant::object() const {
  if (value_.vt == VT_DISPATCH) return value_.pdispVal;
  if (value_.vt == VT_EMPTY || value_.vt == VT_NULL) return {};
  return as(VT_DISPATCH).object();
}

VARIANT* Variant::out() {
  VariantClear(&value_);
  return &value_;
}

VARIANT Variant::detach() {
  const VARIANT result = value_;
  value_ = {};
  return result;
}

}  // namespace quillfile::windows
