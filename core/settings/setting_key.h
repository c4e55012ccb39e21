// SettingKey: a key of the table, checked when the program is compiled. A misspelt key, or one of another
// kind than the reader's, does not compile:   settings.flag(u"AddURL")
#pragma once

#include "core/settings/settings_table.h"

namespace quillfile {

template <SettingKind... allowed>
class KeyOf {
 public:
  consteval KeyOf(const char16_t* key)
      : row_(settingRow(key)) {  // NOLINT: implicit, so that a key reads as text
    if (row_ == std::size(settingsTable)) throw "no such key in the table of settings";
    if (!((settingsTable[row_].kind == allowed) || ...)) throw "this key is of another kind";
  }

  constexpr const Setting& operator*() const { return settingsTable[row_]; }
  constexpr const Setting* operator->() const { return &settingsTable[row_]; }

 private:
  std::size_t row_;
};

using SettingKey = KeyOf<SettingKind::flag, SettingKind::number, SettingKind::text>;
using FlagKey = KeyOf<SettingKind::flag>;
using NumberKey =
    KeyOf<SettingKind::flag, SettingKind::number>;  // a flag may be read as the number that it is
using TextKey = KeyOf<SettingKind::text>;

}  // namespace quillfile
