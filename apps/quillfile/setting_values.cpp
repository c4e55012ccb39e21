#include "apps/quillfile/setting_values.h"

#include <filesystem>

#include "core/platform/failure.h"
#include "hosts/mailbox/engine/bad_settings.h"
#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/services/programs.h"

namespace quillfile::app {
namespace {

// A key's stem and the number behind it: "FolderName12" is FolderName and 12. Leading zeros are no number.
bool isNumberedKey(TextView key, TextView stem) {
  const TextView number = key.substr(std::min(key.size(), stem.size()));
  return startsWith(key, stem) && !number.empty() && number.front() != u'0' && number.size() < 10 &&
         number.find_first_not_of(u"0123456789") == TextView::npos;
}

std::string folderValue(const std::string& value) {
  std::string path = std::filesystem::path(mailbox::expandPath(value)).lexically_normal().string();
  if (path.empty() || path.back() != '/') path += '/';
  return path;
}

// On attachments the command line is split at its last "/", and "%1" is replaced only behind it.
std::string commandLineWarning(const std::string& value) {
  const auto separator = value.rfind('/');
  if (value.empty()) return "";
  if (separator == std::string::npos) {
    return "This command line has no \"/\", so it can be run on saved e-mails but never on saved "
           "attachments. "
           "Write the program with its whole path.";
  }
  if (value.find("%1") < separator) {
    return "On saved attachments a \"%1\" before the last \"/\" is not replaced.";
  }
  try {
    mailbox::commandWords(value, "");
  } catch (const Failure&) {
    return "A quote in this command line is never closed, so it can never be run.";
  }
  return "";
}

}  // namespace

const Setting& settingNamed(const std::string& key) {
  const Text wanted = fromUtf8(key);
  for (const Setting& setting : settingsTable) {
    if (setting.numbered ? isNumberedKey(wanted, setting.key) : setting.key == wanted) return setting;
  }
  throw WrongCommandLine{"There is no setting " + key + ". `quillfile settings` lists them all."};
}

CheckedValue checkedValue(const Setting& setting, const std::string& key, const std::string& value) {
  if (const auto wanted = mailbox::wantedInsteadOf(setting, fromUtf8(value)))
    throw WrongCommandLine{key + " takes " + toUtf8(*wanted) + ", not \"" + value + "\"."};
  if (setting.key == u"SavePath" || setting.key == u"SaveAsMRUPath") {
    if (value.empty()) throw WrongCommandLine{key + " takes a folder."};
    return {.value = folderValue(value), .warning = ""};
  }
  return {.value = value, .warning = setting.key == u"ExecuteCommandLine" ? commandLineWarning(value) : ""};
}

}  // namespace quillfile::app
