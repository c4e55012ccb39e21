// Implements: reference counting and QueryInterface for a COM class; and the count of all live objects, which
// decides when the library may be unloaded.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>

namespace quillfile::windows {

inline std::atomic<long> liveObjects{0};

// The id under which a base of a class answers; a base that only helps to implement an interface has that
// one's.
template <class Interface>
struct IdOf {
  static const IID& id() { return __uuidof(Interface); }
};

// `First` is also the object's identity. Subclasses answer further ids through `other`.
template <class First, class... Rest>
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): Release() alone deletes
class Implements : public First, public Rest... {
 public:
  Implements() { ++liveObjects; }
  Implements(const Implements&) = delete;
  Implements& operator=(const Implements&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(const IID& iid, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (iid == IID_IUnknown) *result = static_cast<First*>(this);
    offer<First>(iid, result);
    (offer<Rest>(iid, result), ...);
    if (*result == nullptr) *result = other(iid);
    if (*result == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
  ULONG STDMETHODCALLTYPE Release() override {
    const long left = --references_;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

 protected:
  virtual ~Implements() { --liveObjects; }
  virtual void* other(const IID&) { return nullptr; }

 private:
  template <class Interface>
  void offer(const IID& iid, void** result) {
    if (iid == IdOf<Interface>::id()) *result = static_cast<Interface*>(this);
  }

  std::atomic<long> references_{1};  // the creator's
};

}  // namespace quillfile::windows
