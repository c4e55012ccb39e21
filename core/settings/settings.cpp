#include "core/settings/settings.h"

#include "core/platform/failure.h"
#include "core/settings/number.h"

namespace quillfile {
namespace {

constexpr TextView disabledKey = u"CVTemporarilyDisabled";
constexpr TextView yes = u"True";
constexpr TextView no = u"False";

Text numbered(const Setting& stem, std::int64_t number) { return fill(u"{}{}", stem.key, number); }

}  // namespace

const Text& Settings::application() const {
  if (!application_) application_ = services_.settingsApplicationName();
  return *application_;
}

bool Settings::flag(FlagKey key) const {
  const auto value = read(key->key);
  return toNumber(value ? TextView{*value} : key->byDefault) != 0;
}

std::int32_t Settings::number(NumberKey key) const {
  const auto value = read(key->key);
  return toNumber(value ? TextView{*value} : key->byDefault);
}

Text Settings::text(TextKey key) const {
  auto value = read(key->key);
  return value ? *std::move(value) : Text{key->defaultUnder(paths_)};
}

Text Settings::text(TextKey stem, std::int64_t number) const {
  auto value = read(numbered(*stem, number));
  return value ? *std::move(value) : Text{stem->byDefault};
}

std::optional<Text> Settings::stored(SettingKey key) const { return read(key->key); }

Text Settings::expandedSavePath() const { return services_.expandPath(text(u"SavePath")); }

void Settings::write(SettingKey key, TextView value) const {
  store_.write(application(), section, key->key, value);
}

void Settings::write(SettingKey stem, std::int64_t number, TextView value) const {
  store_.write(application(), section, numbered(*stem, number), value);
}

bool Settings::temporarilyDisabled() const {
  const auto value = store_.read(application(), application(), disabledKey);
  if (!value || *value == no) return false;
  if (*value == yes) return true;
  throw Failure::typeMismatch();
}

void Settings::setTemporarilyDisabled(bool disabled) const {
  store_.write(application(), application(), disabledKey, disabled ? yes : no);
}

}  // namespace quillfile
