#include "hosts/mailbox/engine/bad_settings.h"

#include "core/module/procedure.h"
#include "core/module/trace.h"
#include "core/saving/save_filters.h"
#include "core/settings/number.h"
#include "hosts/mailbox/engine/mailbox_engine.h"

namespace quillfile::mailbox {
namespace {

bool isNumber(TextView value) {
  return ignoringErrors([&] { toNumber(value); });
}

// The one number that is neither signed nor of 32 bits.
bool isSizeLimit(TextView value) {
  return isNumber(sizeLimitText(value)) && toNumber(sizeLimitText(value)) <= largestSizeLimit;
}

}  // namespace

std::optional<Text> wantedInsteadOf(const Setting& setting, TextView value) {
  if (setting.kind == SettingKind::text) return std::nullopt;
  if (setting.key == u"AttachmentSize" && !isSizeLimit(value))
    return fill(u"a whole number from 0 to {}", largestSizeLimit);
  if (setting.key == u"AttachmentSize" || isNumber(value)) return std::nullopt;
  return setting.kind == SettingKind::flag ? u"1 (on) or 0 (off)" : u"a whole number";
}

std::vector<Text> badSettings(SettingsFile& settings) {
  std::vector<Text> sentences;
  for (const Setting& setting : settingsTable) {
    if (setting.numbered) continue;
    const auto value = settings.read(engineName, moduleName, setting.key);
    if (const auto wanted = value ? wantedInsteadOf(setting, *value) : std::nullopt)
      sentences.push_back(
          fill(u"The setting {} in {} is \"{}\" and takes {}; `quillfile settings unset {}` takes it out",
               setting.key, fromUtf8(settings.path()), *value, *wanted, setting.key));
  }
  return sentences;
}

}  // namespace quillfile::mailbox
