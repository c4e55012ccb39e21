#include "hosts/windows/outlook/event_sink.h"

#include <windows.h>

#include <ocidl.h>

#include "core/module/procedure.h"
#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/implements.h"

namespace quillfile::windows {

namespace {

class EventSink final : public Implements<IDispatch> {
 public:
  EventSink(const IID& events, EventHandler handler) : events_(events), handler_(std::move(handler)) {}

  void connectTo(const Object& source) {
    const auto container = source.ptr().as<IConnectionPointContainer>();
    if (!container) raise(E_NOINTERFACE);
    check(container->FindConnectionPoint(events_, point_.out()));
    check(point_->Advise(this, &cookie_));
  }

  // No event is delivered from here on. May be called again, and from inside the handler.
  void disconnect() {
    handler_ = nullptr;
    if (const auto point = std::exchange(point_, {})) point->Unadvise(cookie_);
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  // Always S_OK: a client has no use for a listener's failure.
  HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    const Ptr<EventSink> alive{this};
    ignoringErrors([&] {
      const EventHandler handler = handler_;  // a copy: the handler may disconnect its own sink
      if (handler && params != nullptr) handler(event, EventArguments{params});
    });
    return S_OK;
  }

 private:
  void* other(const IID& iid) override { return iid == events_ ? static_cast<IDispatch*>(this) : nullptr; }

  IID events_;
  EventHandler handler_;
  Ptr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

}  // namespace

VARIANT_BOOL* EventArguments::cancel() const {
  if (params_->cArgs == 0 || params_->rgvarg[0].vt != (VT_BOOL | VT_BYREF)) return nullptr;
  return params_->rgvarg[0].pboolVal;  // the last argument comes first
}

Subscription connect(const Object& source, const IID& events, EventHandler handler) {
  const auto sink = Ptr<EventSink>::adopt(new EventSink{events, std::move(handler)});
  sink->connectTo(source);
  return Subscription{[sink] { sink->disconnect(); }};
}

}  // namespace quillfile::windows
