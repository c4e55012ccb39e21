// Scripted: a real automation object whose members a test puts together: values, methods, events.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <functional>
#include <memory>
#include <vector>

#include "hosts/windows/com/implements.h"
#include "hosts/windows/com/object.h"
#include "tests/windows/fakes/call_counter.h"

namespace quillfile::windows {

// The arguments of one call, in their order.
class Call {
 public:
  explicit Call(DISPPARAMS& params) : params_(params) {}
  std::size_t count() const { return params_.cArgs; }
  VARIANT& raw(std::size_t index) const { return params_.rgvarg[params_.cArgs - 1 - index]; }
  Variant operator[](std::size_t index) const { return Variant::copyOf(raw(index)); }
  bool given(std::size_t index) const { return index < count() && raw(index).vt != VT_ERROR; }

 private:
  DISPPARAMS& params_;
};

class Scripted final : public Implements<IDispatch, IConnectionPointContainer> {
 public:
  using Method = std::function<Variant(const Call&)>;

  Scripted(CallCounter& counter, TextView type) : counter_(counter), type_(type) {}

  Scripted& on(const Text& name, Method method);  // a method, or a property that is computed
  Scripted& onPut(const Text& name, std::function<void(const Variant&)> setter);
  Scripted& set(const Text& name, const Variant& value);  // a property that keeps what is put
  void onTypeName(std::function<Text()> name) { typeName_ = std::move(name); }  // instead of the type's own
  void onConnect(std::function<void()> connecting) { connecting_ = std::move(connecting); }  // may throw

  // Raises an event on every sink of the connection point `events`. False when nobody listens.
  bool raise(const IID& events, DISPID event, std::vector<VARIANT> lastFirst) const;
  std::size_t listeners(const IID& events) const;
  void offer(const IID& events) { events_ = events; }  // its one connection point

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* info, UINT*) override;
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID events, IConnectionPoint** point) override;

 private:
  struct Member {
    Text name;
    Method get;
    std::function<void(const Variant&)> put;
    Variant value;
  };
  Member& member(const Text& name);

  CallCounter& counter_;
  Text type_;
  std::function<Text()> typeName_;
  std::function<void()> connecting_;
  std::vector<Member> members_;  // a member's number is its place, from 1
  IID events_{};
  std::shared_ptr<std::map<DWORD, Ptr<IDispatch>>> sinks_ =
      std::make_shared<std::map<DWORD, Ptr<IDispatch>>>();
};

using Fake = Ptr<Scripted>;
inline Fake fake(CallCounter& counter, TextView type) { return Fake::adopt(new Scripted{counter, type}); }
inline Variant variant(const Fake& object) { return Variant{static_cast<IDispatch*>(object.get())}; }

}  // namespace quillfile::windows
