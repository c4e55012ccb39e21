#include "hosts/windows/com/object.h"

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"

namespace quillfile::windows {

Object Object::create(const Text& progId) {
  CLSID classId;
  check(CLSIDFromProgID(wide(progId), &classId));
  return create(classId);
}

Object Object::create(const CLSID& classId) {
  Ptr<IDispatch> object;
  void* created = nullptr;
  check(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                         &created));
  return Ptr<IDispatch>::adopt(static_cast<IDispatch*>(created));
}

DISPID Object::find(const Text& name) const {
  if (!object_) raise(E_POINTER);
  DISPID member = DISPID_UNKNOWN;
  auto* asked = const_cast<wchar_t*>(wide(name));
  check(object_->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &member));
  return member;
}

Variant Object::invoke(const Text& name, WORD flags, VARIANT* arguments, UINT count) const {
  DISPPARAMS params{.rgvarg = arguments, .rgdispidNamedArgs = nullptr, .cArgs = count, .cNamedArgs = 0};
  Variant result;
  EXCEPINFO info{};
  SetErrorInfo(0, nullptr);              // what an earlier call left is not about this one
  const Ptr<IDispatch> alive = object_;  // the call may let other events run, which let go of this object
  const HRESULT outcome = object_->Invoke(find(name), IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                                          flags == DISPATCH_METHOD ? nullptr : result.out(), &info, nullptr);
  if (FAILED(outcome)) raise(outcome, info);
  return result;
}

void Object::put(const Text& name, const Variant& value) const {
  DISPID named = DISPID_PROPERTYPUT;
  VARIANT raw = value.raw();
  DISPPARAMS params{.rgvarg = &raw, .rgdispidNamedArgs = &named, .cArgs = 1, .cNamedArgs = 1};
  const WORD flags = raw.vt == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  EXCEPINFO info{};
  SetErrorInfo(0, nullptr);
  const Ptr<IDispatch> alive = object_;
  const DISPID member = find(name);
  HRESULT outcome =
      object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, nullptr, &info, nullptr);
  if (outcome == DISP_E_MEMBERNOTFOUND &&
      flags == DISPATCH_PROPERTYPUTREF) {  // an object's value, not a reference
    outcome = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &params, nullptr,
                              &info, nullptr);
  }
  if (FAILED(outcome)) raise(outcome, info);
}

Text Object::typeName() const {
  if (!object_) raise(E_POINTER);
  SetErrorInfo(0, nullptr);
  Ptr<ITypeInfo> info;
  const HRESULT described = object_->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out());
  if (described == E_NOTIMPL || described == DISP_E_BADINDEX) return {};  // it has no description
  check(described);
  Bstr name;
  check(info->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr));
  const TextView text = textOf(name.get());
  return Text{startsWith(text, u"_") ? text.substr(1) : text};
}

}  // namespace quillfile::windows
