#include "hosts/windows/com/wide.h"
#include "hosts/windows/dll/dual.h"
#include "hosts/windows/services/own_module.h"

namespace quillfile::windows {

Ptr<ITypeInfo> describeInterface(const IID& iid) {
  Ptr<ITypeLib> library;
  Ptr<ITypeInfo> dispatch, dual;
  if (FAILED(LoadTypeLibEx(wide(ownPath()), REGKIND_NONE, library.out()))) return {};
  if (FAILED(library->GetTypeInfoOfGuid(iid, dispatch.out()))) return {};
  // A dual interface is described twice; DispInvoke calls through the half that has the slots.
  HREFTYPE other = 0;
  if (FAILED(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &other))) return dispatch;
  return SUCCEEDED(dispatch->GetRefTypeInfo(other, dual.out())) ? dual : dispatch;
}

}  // namespace quillfile::windows
