#include <filesystem>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "apps/quillfile/setting_values.h"
#include "core/platform/failure.h"
#include "core/settings/settings_table.h"
#include "hosts/mailbox/engine/mailbox_engine.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::app {
namespace {

constexpr TextView section = u"Quillfile";

struct Row {
  std::string key;
  std::optional<std::string> set;
  std::string byDefault, meaning;
};

// The table's rows; a numbered key has one for each folder that the settings speak of.
std::vector<Row> rowsOf(mailbox::SettingsFile& settings) {
  std::vector<Row> rows;
  const auto add = [&](const Setting& setting, const Text& key) {
    const auto value = settings.read(mailbox::engineName, section, key);
    rows.push_back({.key = toUtf8(key),
                    .set = value ? std::optional(toUtf8(*value)) : std::nullopt,
                    .byDefault = toUtf8(setting.defaultUnder(PathRules::posix())),
                    .meaning = toUtf8(setting.meaning)});
  };
  for (const Setting& setting : settingsTable) {
    if (!setting.numbered) add(setting, Text{setting.key});
    for (std::int32_t n = 1; setting.numbered; ++n) {
      const Text key = fill(u"{}{}", setting.key, n);
      if (!settings.read(mailbox::engineName, section, key)) break;
      add(setting, key);
    }
  }
  return rows;
}

// The first start of the module writes its settings over what stands there. Somebody who changes one before
// that wants to find it again, so that start comes first. SaveAllAttachments is the key that tells whether it
// has been: setting it says that no first start is wanted. Where there is no mail yet the start must wait.
void makeFirstRun(const Options& options, mailbox::SettingsFile& settings, const std::string& key) {
  if (key == "SaveAllAttachments" || settings.read(mailbox::engineName, section, u"SaveAllAttachments"))
    return;
  try {
    const auto session = openSession(options);
    session->start();
    session->finish();
  } catch (const Failure& failure) {
    std::fprintf(stderr,
                 "quillfile: The first run will write its own settings over this one, unless you set it "
                 "again then: %s.\n",
                 mailbox::printable(failure.description).c_str());
  }
}

int listSettings(const Options& options, mailbox::SettingsFile& settings) {
  Json document = Json::array();
  std::vector<std::vector<std::string>> rows = {{"SETTING", "VALUE", "", "MEANING"}};
  for (const Row& row : rowsOf(settings)) {
    const std::string value = row.set.value_or(row.byDefault);
    document.push_back({{"key", row.key},
                        {"value", value},
                        {"default", row.byDefault},
                        {"set", row.set.has_value()},
                        {"meaning", row.meaning}});
    rows.push_back({row.key, mailbox::printable(fromUtf8(value)), row.set ? "" : "(default)", row.meaning});
  }
  if (options.json) {
    printJson(document);
  } else {
    printTable(rows);
  }
  return done;
}

int getSetting(const Options& options, mailbox::SettingsFile& settings) {
  const Setting& setting = settingNamed(options.arguments.at(0));
  const auto value = settings.read(mailbox::engineName, section, fromUtf8(options.arguments.at(0)));
  const std::string text = toUtf8(value.value_or(Text{setting.defaultUnder(PathRules::posix())}));
  if (options.json) {
    printJson({{"key", options.arguments.at(0)}, {"value", text}, {"set", value.has_value()}});
  } else {
    std::printf("%s\n", text.c_str());
  }
  return done;
}

int setSetting(const Options& options, mailbox::SettingsFile& settings) {
  const std::string& key = options.arguments.at(0);
  const auto [value, warning] = checkedValue(settingNamed(key), key, options.arguments.at(1));
  makeFirstRun(options, settings, key);
  settings.write(mailbox::engineName, section, fromUtf8(key), fromUtf8(value));
  if (!warning.empty()) std::fprintf(stderr, "quillfile: %s\n", warning.c_str());
  if (options.json) printJson({{"key", key}, {"value", value}, {"set", true}});
  return done;
}

int unsetSetting(const Options& options, mailbox::SettingsFile& settings) {
  const Setting& setting = settingNamed(options.arguments.at(0));
  settings.erase(section, fromUtf8(options.arguments.at(0)));
  const std::string value = toUtf8(setting.defaultUnder(PathRules::posix()));
  if (options.json) printJson({{"key", options.arguments.at(0)}, {"value", value}, {"set", false}});
  return done;
}

}  // namespace

int runSettings(const Options& options) {
  mailbox::SettingsFile settings{settingsPath(options)};
  if (options.command == "settings get") return getSetting(options, settings);
  if (options.command == "settings set") return setSetting(options, settings);
  if (options.command == "settings unset") return unsetSetting(options, settings);
  return listSettings(options, settings);
}

}  // namespace quillfile::app
