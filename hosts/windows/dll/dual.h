// Dual: IDispatch for a dual interface, by the type library in this module's own file. Nothing needs to be
// registered for it.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "hosts/windows/com/implements.h"
#include "hosts/windows/com/ptr.h"

namespace quillfile::windows {

// The description of an interface in the module's type library; empty when it cannot be read.
Ptr<ITypeInfo> describeInterface(const IID& iid);

template <class Interface>
class Dual : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    *result = Ptr<ITypeInfo>{description()}.detach();
    return *result == nullptr ? TYPE_E_CANTLOADLIBRARY : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    const auto info = description();
    return info ? DispGetIDsOfNames(info.get(), names, count, ids) : TYPE_E_CANTLOADLIBRARY;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
    const auto info = description();
    if (!info) return TYPE_E_CANTLOADLIBRARY;
    SetErrorInfo(0, nullptr);
    return DispInvoke(static_cast<Interface*>(this), info.get(), member, flags, params, result, exception,
                      badArgument);
  }

 protected:
  ~Dual() = default;  // objects go by their last Release()

 private:
  const Ptr<ITypeInfo>& description() {
    if (!description_) description_ = describeInterface(__uuidof(Interface));
    return description_;
  }

  Ptr<ITypeInfo> description_;
};

template <class Interface>
struct IdOf<Dual<Interface>> : IdOf<Interface> {};

}  // namespace quillfile::windows
