#include "hosts/windows/dll/registration.h"

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"
#include "hosts/windows/dll/class_id.h"
#include "hosts/windows/services/own_module.h"
#include "quillfile_api.h"

namespace quillfile::windows {

namespace {

constexpr TextView classes = u"Software\\Classes\\";

Text braced(const GUID& guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return Text{view(text)};
}

void require(LSTATUS status) {
  if (status != ERROR_SUCCESS) raiseSystem(static_cast<DWORD>(status));
}

void set(HKEY root, const Text& key, const Text& name, const Text& value) {
  require(RegSetKeyValueW(root, wide(key), name.empty() ? nullptr : wide(name), REG_SZ, value.c_str(),
                          static_cast<DWORD>((value.size() + 1) * sizeof(char16_t))));
}

void removeTree(HKEY root, const Text& key) {
  const LSTATUS status = RegDeleteTreeW(root, wide(key));
  if (status == ERROR_FILE_NOT_FOUND) return;
  require(status);
  RegDeleteKeyW(root, wide(key));  // where the tree's own key was left
}

Text classKey() { return fill(u"{}CLSID\\{}", classes, braced(CLSID_CQuillfile)); }
Text progIdKey() { return fill(u"{}{}", classes, progId); }

}  // namespace

void registerClass(HKEY root) {
  const Text name = u"Quillfile, the attachment-saving module";
  set(root, classKey(), u"", name);
  set(root, classKey() + u"\\InprocServer32", u"", ownPath());
  set(root, classKey() + u"\\InprocServer32", u"ThreadingModel", u"Apartment");
  set(root, classKey() + u"\\ProgID", u"", Text{progId});
  set(root, classKey() + u"\\TypeLib", u"", braced(LIBID_Quillfile));
  set(root, progIdKey(), u"", name);
  set(root, progIdKey() + u"\\CLSID", u"", braced(CLSID_CQuillfile));
}

void unregisterClass(HKEY root) {
  removeTree(root, progIdKey());
  removeTree(root, classKey());
}

}  // namespace quillfile::windows
