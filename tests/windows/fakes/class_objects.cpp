#include "tests/windows/fakes/class_objects.h"

#include <algorithm>

#include "hosts/windows/com/failure.h"

namespace quillfile::windows {

namespace {

class FakeFactory final : public Implements<IClassFactory> {
 public:
  explicit FakeFactory(std::function<Fake()> create) : create_(std::move(create)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, const IID& iid, void** result) override {
    const Fake made = create_();
    return made ? made->QueryInterface(iid, result) : E_FAIL;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  std::function<Fake()> create_;
};

Text keyOf(const Text& progId) { return fill(u"Software\\Classes\\{}", progId); }

}  // namespace

void ClassObjects::offer(const Text& progId, std::function<Fake()> create) {
  Offered added{.progId = progId, .classId = {}, .cookie = 0};
  check(CoCreateGuid(&added.classId));
  const auto factory = Ptr<FakeFactory>::adopt(new FakeFactory{std::move(create)});
  check(CoRegisterClassObject(added.classId, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                              &added.cookie));
  wchar_t guid[40];
  const int length = StringFromGUID2(added.classId, guid, 40);
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, wide(keyOf(progId) + u"\\CLSID"), nullptr, REG_SZ, guid,
                  static_cast<DWORD>(length) * sizeof(wchar_t));
  offered_.push_back(added);
}

void ClassObjects::revoke(const Offered& offered) {
  CoRevokeClassObject(offered.cookie);
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, wide(keyOf(offered.progId)));
}

void ClassObjects::withdraw(const Text& progId) {
  std::erase_if(offered_, [&](const Offered& offered) {
    if (offered.progId != progId) return false;
    revoke(offered);
    return true;
  });
}

ClassObjects::~ClassObjects() {
  for (const auto& offered : offered_) revoke(offered);
}

}  // namespace quillfile::windows
