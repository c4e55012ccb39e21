// FakeSettings: the settings store, in memory; names ignore case. A test reads and sets keys of the module's
// section by name alone.
#pragma once

#include <map>

#include "core/platform/settings_store.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

class FakeSettings : public SettingsStore {
 public:
  explicit FakeSettings(Recorder& record) : record_(record) {}

  // The module's own section.
  void set(TextView key, TextView value) { values_[name(u"Corvane", u"Quillfile", key)] = value; }
  std::optional<Text> get(TextView key) const { return lookUp(u"Corvane", u"Quillfile", key); }
  // The engine's section.
  void setEngine(TextView key, TextView value) { values_[name(u"Corvane", u"Corvane", key)] = value; }

  std::optional<Text> read(TextView application, TextView section, TextView key) override {
    return record_.asked(u"SettingsStore.read"), lookUp(application, section, key);
  }
  void write(TextView application, TextView section, TextView key, TextView value) override {
    record_.asked(u"SettingsStore.write");
    record_.did(fill(u"setting {}/{}/{} = {}", application, section, key, value));
    values_[name(application, section, key)] = value;
  }

 private:
  // "corvane/quillfile/savepath"
  static Text name(TextView application, TextView section, TextView key) {
    Text whole = fill(u"{}/{}/{}", application, section, key);
    for (auto& unit : whole)
      if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 0x20);
    return whole;
  }
  std::optional<Text> lookUp(TextView application, TextView section, TextView key) const {
    const auto found = values_.find(name(application, section, key));
    return found == values_.end() ? std::nullopt : std::optional{found->second};
  }

  Recorder& record_;
  std::map<Text, Text> values_;
};

}  // namespace quillfile
