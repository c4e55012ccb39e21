// The library's entries, and the factory of its one class.
#include <windows.h>

#include <olectl.h>

#include "hosts/windows/com/entry.h"
#include "hosts/windows/com/implements.h"
#include "hosts/windows/dll/component.h"
#include "hosts/windows/dll/registration.h"

namespace quillfile::windows {

namespace {

std::atomic<long> locks{0};

class Factory final : public Implements<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, const IID& iid, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return entry([&] { check(createComponent()->QueryInterface(iid, result)); });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    locks += lock ? 1 : -1;
    return S_OK;
  }
};

HKEY rootFor(PCWSTR scope) {
  return scope != nullptr && lstrcmpiW(scope, L"machine") == 0 ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

}  // namespace

}  // namespace quillfile::windows

using namespace quillfile::windows;

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(const CLSID& classId, const IID& iid, void** result) {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  if (classId != componentClass()) return CLASS_E_CLASSNOTAVAILABLE;
  return entry([&] { check(Ptr<Factory>::adopt(new Factory)->QueryInterface(iid, result)); });
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return liveObjects == 0 && locks == 0 ? S_OK : S_FALSE;
}

// regsvr32 quillfile.dll: for the user.
extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() {
  return entry([] { registerClass(HKEY_CURRENT_USER); });
}

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return entry([] { unregisterClass(HKEY_CURRENT_USER); });
}

// regsvr32 /n /i:machine quillfile.dll: for everyone; /u takes it back.
extern "C" HRESULT STDAPICALLTYPE DllInstall(BOOL install, PCWSTR scope) {
  return entry([&] { (install ? registerClass : unregisterClass)(rootFor(scope)); });
}
