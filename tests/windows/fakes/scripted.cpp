#include "tests/windows/fakes/scripted.h"

#include <olectl.h>

#include <algorithm>

#include "core/module/procedure.h"
#include "hosts/windows/com/entry.h"
#include "tests/windows/fakes/type_name.h"

namespace quillfile::windows {

namespace {

using Sinks = std::shared_ptr<std::map<DWORD, Ptr<IDispatch>>>;

class Point final : public Implements<IConnectionPoint> {
 public:
  Point(const IID& events, Sinks sinks) : events_(events), sinks_(std::move(sinks)) {}

  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
    auto listener = Ptr<IUnknown>{sink}.as<IDispatch>(events_);
    if (!listener) return CONNECT_E_CANNOTCONNECT;
    *cookie = sinks_->empty() ? 1 : sinks_->rbegin()->first + 1;
    sinks_->emplace(*cookie, std::move(listener));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
    return sinks_->erase(cookie) == 1 ? S_OK : CONNECT_E_NOCONNECTION;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override { return *iid = events_, S_OK; }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

 private:
  IID events_;
  Sinks sinks_;
};

// A number of Windows's own goes as an HRESULT, any other as a Visual Basic error number.
HRESULT refuse(EXCEPINFO* info, const Failure& failure) {
  if (info != nullptr) {
    *info = {};
    if (failure.number < 0)
      info->scode = failure.number;
    else
      info->wCode = static_cast<WORD>(failure.number);
    info->bstrSource = Bstr{u"Fake"}.detach();
    info->bstrDescription = Bstr{failure.description}.detach();
  }
  return DISP_E_EXCEPTION;
}

}  // namespace

Scripted::Member& Scripted::member(const Text& name) {
  for (auto& known : members_) {
    if (known.name == name) return known;
  }
  return members_.emplace_back(Member{.name = name, .get = {}, .put = {}, .value = {}});
}

Scripted& Scripted::on(const Text& name, Method method) {
  return member(name).get = std::move(method), *this;
}
Scripted& Scripted::onPut(const Text& name, std::function<void(const Variant&)> setter) {
  return member(name).put = std::move(setter), *this;
}
Scripted& Scripted::set(const Text& name, const Variant& value) { return member(name).value = value, *this; }

bool Scripted::raise(const IID& events, DISPID event, std::vector<VARIANT> lastFirst) const {
  if (events != events_) return false;
  const auto sinks = *sinks_;  // a listener may leave while it is told
  DISPPARAMS params{.rgvarg = lastFirst.data(),
                    .rgdispidNamedArgs = nullptr,
                    .cArgs = static_cast<UINT>(lastFirst.size()),
                    .cNamedArgs = 0};
  for (const auto& [cookie, sink] : sinks) {
    sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
  }
  return !sinks.empty();
}

std::size_t Scripted::listeners(const IID& events) const { return events == events_ ? sinks_->size() : 0; }

HRESULT Scripted::GetTypeInfoCount(UINT* count) { return *count = 1, S_OK; }

HRESULT Scripted::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  return entry(info, [&] { return describeAs(fill(u"_{}", typeName_ ? typeName_() : type_)).detach(); });
}

HRESULT Scripted::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
  const Text wanted{view(names[0])};
  const auto found =
      std::find_if(members_.begin(), members_.end(), [&](const Member& m) { return m.name == wanted; });
  if (found == members_.end()) return *ids = DISPID_UNKNOWN, DISP_E_UNKNOWNNAME;
  *ids = static_cast<DISPID>(found - members_.begin()) + 1;
  return S_OK;
}

HRESULT Scripted::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* info, UINT*) {
  if (id < 1 || static_cast<std::size_t>(id) > members_.size()) return DISP_E_MEMBERNOTFOUND;
  const Ptr<Scripted> alive{this};
  const Member about = members_[static_cast<std::size_t>(id) - 1];  // a copy: a method may add members
  const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  counter_.called(type_, puts ? about.name + u"=" : about.name);
  try {
    if (!puts) {
      const Variant got = about.get ? about.get(Call{*params}) : about.value;
      if (result != nullptr) *result = Variant{got}.detach();
    } else if (about.put) {
      about.put(Call{*params}[0]);
    } else {
      members_[static_cast<std::size_t>(id) - 1].value = Call{*params}[0];
    }
    return S_OK;
  } catch (...) {
    return refuse(info, currentFailure());
  }
}

HRESULT Scripted::FindConnectionPoint(REFIID events, IConnectionPoint** point) {
  *point = nullptr;
  if (events != events_) return CONNECT_E_NOCONNECTION;
  return entry(point, [&] {
    if (connecting_) connecting_();
    return Ptr<Point>::adopt(new Point{events, sinks_}).detach();
  });
}

}  // namespace quillfile::windows
