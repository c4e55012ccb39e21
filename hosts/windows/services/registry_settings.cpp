#include "hosts/windows/services/registry_settings.h"

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

namespace {

Text keyPath(TextView application, TextView section) {
  return fill(u"Software\\VB and VBA Program Settings\\{}\\{}", application, section);
}

}  // namespace

std::optional<Text> RegistrySettings::read(TextView application, TextView section, TextView key) {
  const Text path = keyPath(application, section);
  const Text name{key};
  Text value(64, u'\0');
  for (;;) {
    auto bytes = static_cast<DWORD>(value.size() * sizeof(char16_t));
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, wide(path), wide(name),
                     RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, nullptr, value.data(), &bytes);
    if (status == ERROR_FILE_NOT_FOUND) return std::nullopt;
    if (status == ERROR_MORE_DATA) {
      value.resize(bytes / sizeof(char16_t) + 1);
      continue;  // it may have grown since it was asked for
    }
    if (status != ERROR_SUCCESS) raiseSystem(static_cast<DWORD>(status));
    value.resize(bytes / sizeof(char16_t));
    while (!value.empty() && value.back() == u'\0') value.pop_back();
    return value;
  }
}

void RegistrySettings::write(TextView application, TextView section, TextView key, TextView value) {
  const Text path = keyPath(application, section);
  const Text name{key};
  const Text stored{value};
  const LSTATUS status = RegSetKeyValueW(HKEY_CURRENT_USER, wide(path), wide(name), REG_SZ, stored.c_str(),
                                         static_cast<DWORD>((stored.size() + 1) * sizeof(char16_t)));
  if (status != ERROR_SUCCESS) raiseSystem(static_cast<DWORD>(status));
}

}  // namespace quillfile::windows
