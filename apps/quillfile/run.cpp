#include "apps/quillfile/run.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <unordered_map>

#include "apps/quillfile/output.h"
#include "hosts/mailbox/engine/item_order.h"
#include "hosts/mailbox/engine/known_folders.h"

namespace quillfile::app {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string absolute(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal().string();
}

// One argument: a number or range of the list, or an id. Adds places in the list, or an item of another
// folder.
class Chooser {
 public:
  Chooser(mailbox::Session& session, const std::shared_ptr<mailbox::MailFolder>& folder)
      : session_(session), folder_(folder), names_(mailbox::itemsInOrder(*folder)) {
    for (std::size_t i = 0; i < names_.size(); ++i) places_.emplace(names_[i], i);
  }

  void add(const std::string& argument) {
    const auto numbers = mailbox::numbersIn(argument, names_.size());
    for (const auto number : numbers) chosen_.push_back(number - 1);
    if (!numbers.empty()) return;
    const auto address = session_.store().address(argument);
    if (!address) throw unknown(argument);
    const auto place = places_.find(address->unique);
    if (address->folder->path() == folder_->path() && place != places_.end()) {
      chosen_.push_back(place->second);
    } else {
      const auto item = session_.client().item(fromUtf8(argument));
      if (!item) throw unknown(argument);
      elsewhere_.push_back(item);
    }
  }

  mailbox::Items items() {
    std::sort(chosen_.begin(), chosen_.end());
    chosen_.erase(std::unique(chosen_.begin(), chosen_.end()), chosen_.end());
    mailbox::Items items;
    for (const auto place : chosen_) items.push_back(session_.client().item(folder_, names_[place]));
    items.insert(items.end(), elsewhere_.begin(), elsewhere_.end());
    return items;
  }

 private:
  WrongCommandLine unknown(const std::string& argument) const {
    return {"There is no item " + argument + " in " + folder_->path() + ". `quillfile list --folder '" +
            folder_->path() + "'` shows what there is."};
  }

  mailbox::Session& session_;
  std::shared_ptr<mailbox::MailFolder> folder_;
  std::vector<std::string> names_;
  std::unordered_map<std::string, std::size_t> places_;
  std::vector<std::size_t> chosen_;
  mailbox::Items elsewhere_;
};

}  // namespace

std::string mailDirectory(const Options& options) {
  if (!options.mail.empty()) return absolute(options.mail);
  if (const auto set = environment("QUILLFILE_MAIL"); !set.empty()) return absolute(set);
  const std::string maildir = mailbox::homeFolder() + "/Maildir", mail = mailbox::homeFolder() + "/Mail";
  std::error_code error;
  return !std::filesystem::exists(maildir, error) && std::filesystem::exists(mail, error) ? mail : maildir;
}

std::string settingsPath(const Options& options) {
  if (!options.settings.empty()) return absolute(options.settings);
  if (const auto set = environment("QUILLFILE_SETTINGS"); !set.empty()) return absolute(set);
  return mailbox::configFolder() + "/quillfile/settings.ini";
}

std::unique_ptr<mailbox::Session> openSession(const Options& options) {
  return std::make_unique<mailbox::Session>(mailbox::SessionSetup{
      .mail = mailDirectory(options),
      .settings = settingsPath(options),
      .trace = options.trace,
      .answer = options.answer,
      .progress = !options.quiet,
      .listeners = {.error = printError, .saved = {}, .nextItem = {}},
  });
}

std::unique_ptr<mailbox::Session> openSessionToChange(const Options& options) {
  auto session = openSession(options);
  session->cleanUp();
  return session;
}

std::shared_ptr<mailbox::MailFolder> folderNamed(mailbox::Session& session, const std::string& name) {
  if (auto folder = session.store().folder(name)) return folder;
  std::vector<std::shared_ptr<mailbox::MailFolder>> called;
  for (const auto& folder : session.store().folders())
    if (folder->name() == name) called.push_back(folder);
  if (called.size() == 1) return called[0];
  throw WrongCommandLine{"There is no folder " + name + ". `quillfile folders` shows what there is."};
}

std::shared_ptr<mailbox::MailFolder> chosenFolder(mailbox::Session& session, const Options& options) {
  if (!options.folder.empty()) return folderNamed(session, options.folder);
  return session.store().need(mailbox::FolderRole::inbox);
}

mailbox::Items chosenItems(mailbox::Session& session, const std::shared_ptr<mailbox::MailFolder>& folder,
                           const std::vector<std::string>& arguments) {
  if (arguments.empty()) return session.itemsOf(folder);
  Chooser chooser{session, folder};
  for (const auto& argument : arguments) chooser.add(argument);
  return chooser.items();
}

}  // namespace quillfile::app
