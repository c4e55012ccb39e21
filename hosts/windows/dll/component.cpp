#include "hosts/windows/dll/component.h"

#include "core/module/procedure.h"
#include "hosts/windows/com/entry.h"
#include "hosts/windows/dll/dual.h"
#include "hosts/windows/dll/host.h"
#include "hosts/windows/engine/module_host.h"
#include "hosts/windows/outlook/application.h"
#include "hosts/windows/outlook/item.h"
#include "quillfile_api.h"

namespace quillfile::windows {

namespace {

// What a caller passed where a text belongs; empty where it passed none.
Text optionalText(const VARIANT& value) {
  Text text;
  ignoringErrors([&] { text = Variant::copyOf(value).text(); });
  return text;
}

class Component final : public Implements<Dual<::ICQuillfile>, Dual<::IModuleAPI>, ISupportErrorInfo> {
 public:
  // ---- IModuleAPI ----
  HRESULT STDMETHODCALLTYPE get_RegistryName(BSTR* result) override {
    return textEntry(result, [&] { return api().RegistryName(); });
  }
  HRESULT STDMETHODCALLTYPE get_FriendlyName(BSTR* result) override {
    return textEntry(result, [&] { return api().FriendlyName(); });
  }
  HRESULT STDMETHODCALLTYPE get_Version(BSTR* result) override {
    return textEntry(result, [&] { return api().Version(); });
  }
  HRESULT STDMETHODCALLTYPE CEStartup(IDispatch** engine, LONG* result) override {
    if (engine == nullptr) return E_POINTER;
    return entry(result, [&] { return api().CEStartup(adapt<ComModuleHost>(*engine)); });
  }
  HRESULT STDMETHODCALLTYPE CEShutdown(LONG* result) override {
    return entry(result, [&] {
      const auto answer = api().CEShutdown();
      host_.releaseEngine();
      return answer;
    });
  }
  HRESULT STDMETHODCALLTYPE CESendMessage(BSTR message, LONG* result) override {
    return entry(result, [&] { return api().CESendMessage(textOf(message)); });
  }
  HRESULT STDMETHODCALLTYPE CEExplorerOpen(IDispatch* explorer, LONG* result) override {
    return entry(result, [&] { return api().CEExplorerOpen(adapt<OutlookExplorer>(explorer)); });
  }
  HRESULT STDMETHODCALLTYPE CEExplorerClose(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEExplorerClose(); });
  }
  HRESULT STDMETHODCALLTYPE CEExplorerActivate(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEExplorerActivate(); });
  }
  HRESULT STDMETHODCALLTYPE CEExplorerDeactivate(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEExplorerDeactivate(); });
  }
  HRESULT STDMETHODCALLTYPE CEInspectorOpen(IDispatch* inspector, LONG* result) override {
    return entry(result, [&] { return api().CEInspectorOpen(adapt<OutlookInspector>(inspector)); });
  }
  HRESULT STDMETHODCALLTYPE CEInspectorClose(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEInspectorClose(); });
  }
  HRESULT STDMETHODCALLTYPE CEInspectorActivate(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEInspectorActivate(); });
  }
  HRESULT STDMETHODCALLTYPE CEInspectorDeactivate(IDispatch*, LONG* result) override {
    return entry(result, [&] { return api().CEInspectorDeactivate(); });
  }
  HRESULT STDMETHODCALLTYPE CEButtonAction(LONG button, VARIANT, LONG* result) override {
    return entry(result, [&] { return api().CEButtonAction(button); });
  }
  HRESULT STDMETHODCALLTYPE CEMenuAction(LONG menu, VARIANT, LONG* result) override {
    return entry(result, [&] { return api().CEMenuAction(menu); });
  }
  HRESULT STDMETHODCALLTYPE CEHotkeyAction(VARIANT, LONG* result) override {
    return entry(result, [&] { return api().CEHotkeyAction(); });
  }
  HRESULT STDMETHODCALLTYPE CEItemEvent(LONG kind, IDispatch* item, VARIANT, BSTR folder, VARIANT store,
                                        LONG* result) override {
    return entry(result, [&] {
      return api().CEItemEvent(kind, adapt<OutlookItem>(item), textOf(folder), optionalText(store));
    });
  }

  // ---- ICQuillfile ----
  HRESULT STDMETHODCALLTYPE AddToPendingList(BSTR slot, VARIANT_BOOL* result) override {
    return booleanEntry(result, [&] { return lists().AddToPendingList(textOf(slot)); });
  }
  HRESULT STDMETHODCALLTYPE IsOnPendingList(BSTR slot, VARIANT_BOOL* result) override {
    return booleanEntry(result, [&] { return lists().IsOnPendingList(textOf(slot)); });
  }
  HRESULT STDMETHODCALLTYPE AddToUserSavedList(BSTR entryId, VARIANT_BOOL* result) override {
    return booleanEntry(result, [&] { return lists().AddToUserSavedList(textOf(entryId)); });
  }
  HRESULT STDMETHODCALLTYPE IsOnUserSavedList(BSTR entryId, VARIANT_BOOL* result) override {
    return booleanEntry(result, [&] { return lists().IsOnUserSavedList(textOf(entryId)); });
  }
  HRESULT STDMETHODCALLTYPE PurgePendingList() override {
    return entry([&] { lists().PurgePendingList(); });
  }
  HRESULT STDMETHODCALLTYPE DeleteFromDrafts(BSTR entryId, VARIANT_BOOL* result) override {
    return booleanEntry(result, [&] { return host_.module().responses().DeleteFromDrafts(textOf(entryId)); });
  }

  // ---- ISupportErrorInfo ----
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(const IID& iid) override {
    return iid == __uuidof(::ICQuillfile) || iid == __uuidof(::IModuleAPI) ? S_OK : S_FALSE;
  }

 private:
  void* other(const IID& iid) override {
    return iid == IID_IDispatch ? static_cast<::ICQuillfile*>(this) : nullptr;  // the default interface
  }
  quillfile::IModuleAPI& api() { return host_.module().api(); }
  ItemLists& lists() { return host_.module().lists(); }

  Host host_;
};

}  // namespace

const CLSID& componentClass() { return CLSID_CQuillfile; }

Ptr<IUnknown> createComponent() { return Ptr<IUnknown>::adopt(static_cast<::ICQuillfile*>(new Component)); }

}  // namespace quillfile::windows
