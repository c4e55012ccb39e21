#include "hosts/windows/com/failure.h"

#include "core/module/procedure.h"
#include "core/module/trace.h"
#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/ptr.h"

namespace quillfile::windows {

namespace {

// The system's own sentence, in the user's language, without line break and full stop.
Text systemText(DWORD code) {
  wchar_t* buffer = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  Text text{view(buffer, length)};
  LocalFree(buffer);
  while (!text.empty() && (text.back() <= u' ' || text.back() == u'.')) text.pop_back();
  return text.empty() ? fill(u"Error {}", static_cast<std::int32_t>(code)) : text;
}

Failure make(DWORD number, TextView description) {
  return {static_cast<std::int32_t>(number), description.empty() ? systemText(number) : Text{description}};
}

void describe(TextView description) {
  Ptr<ICreateErrorInfo> created;
  if (FAILED(CreateErrorInfo(created.out()))) return;
  created->SetDescription(Bstr{description}.get());
  created->SetSource(Bstr{moduleName}.get());
  if (const auto info = created.as<IErrorInfo>()) SetErrorInfo(0, info.get());
}

HRESULT resultOf(std::int32_t number) {
  if (number < 0) return static_cast<HRESULT>(number);  // it came in as an HRESULT
  return number == 0 ? E_FAIL : HRESULT_FROM_WIN32(static_cast<DWORD>(number));
}

}  // namespace

void raise(HRESULT result) {
  Ptr<IErrorInfo> info;
  Bstr description;
  if (GetErrorInfo(0, info.out()) == S_OK) info->GetDescription(description.out());
  throw make(static_cast<DWORD>(result), textOf(description.get()));
}

void raise(HRESULT result, EXCEPINFO& info) {
  if (result != DISP_E_EXCEPTION) raise(result);
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  Bstr source, help, description;
  *source.out() = info.bstrSource;
  *help.out() = info.bstrHelpFile;
  *description.out() = info.bstrDescription;
  const auto number = info.scode != 0 ? static_cast<DWORD>(info.scode) : info.wCode;
  info = {};
  throw make(number, textOf(description.get()));
}

void raiseSystem(DWORD code) { throw make(code, {}); }

HRESULT returnFailure() noexcept {
  try {
    const Failure failure = currentFailure();
    describe(failure.description);
    return resultOf(failure.number);
  } catch (...) {
    return E_OUTOFMEMORY;  // not even the description could be made
  }
}

}  // namespace quillfile::windows
