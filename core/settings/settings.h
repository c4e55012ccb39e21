// Settings: the module's options, read afresh from the store each time, by kind and with the table's
// defaults. Every call may throw Failure: the store's, and a type mismatch where a number is read and none is
// stored.
#pragma once

#include <optional>

#include "core/platform/engine.h"
#include "core/platform/settings_store.h"
#include "core/settings/setting_key.h"

namespace quillfile {

class Settings {
 public:
  Settings(SettingsStore& store, EngineServices& services, const PathRules& paths)
      : store_(store), services_(services), paths_(paths) {}

  bool flag(FlagKey key) const;
  std::int32_t number(NumberKey key) const;
  Text text(TextKey key) const;
  Text text(TextKey stem, std::int64_t number) const;  // of a numbered key: FolderEntryId and 12
  std::optional<Text> stored(SettingKey key) const;    // as it stands, of any kind; none when absent
  Text expandedSavePath() const;                       // SavePath through the engine's path expansion

  void write(SettingKey key, TextView value) const;
  void write(SettingKey stem, std::int64_t number, TextView value) const;

  // "CVTemporarilyDisabled": the engine's own flag, set around the module's own deletions.
  bool temporarilyDisabled() const;
  void setTemporarilyDisabled(bool disabled) const;

  // The engine's name for the application under which all settings lie. Asked for once.
  const Text& application() const;
  static constexpr TextView section = u"Quillfile";

 private:
  std::optional<Text> read(TextView key) const { return store_.read(application(), section, key); }

  SettingsStore& store_;
  EngineServices& services_;
  PathRules paths_;
  mutable std::optional<Text> application_;
};

}  // namespace quillfile
