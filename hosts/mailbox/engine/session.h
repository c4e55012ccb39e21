// Session: one run of the program. It puts the mail store, the mail client, the services and the module
// together and acts as the user of the mail client: shows a folder, selects items, presses the button.
//
//   Session session{{.mail = "/home/u/Maildir", .settings = "/home/u/.config/quillfile/settings.ini"}};
//   session.start();
//   session.select(inbox, session.itemsOf(inbox));
//   session.pressButton();
//   session.finish();          // everything is on disk now
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/platform/failure.h"
#include "hosts/mailbox/engine/prompts.h"
#include "hosts/mailbox/engine/run_report.h"
#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/services/settings_file.h"
#include "hosts/mailbox/store/mail_store.h"

namespace quillfile {
class Module;
}

namespace quillfile::mailbox {

struct SessionSetup {
  std::string mail;      // the mail store's directory
  std::string settings;  // the settings file
  std::string trace;     // see TraceFile
  std::optional<PresetAnswer> answer;
  bool progress = false;  // show progress where there is a terminal
  RunReport::Listeners listeners;
};

// A setting has a value that is not of its kind: the description names it, and says what to do.
struct UnusableSetting : Failure {};

class Session {
 public:
  // Opens the store and the settings. Throws Failure when they cannot be used.
  explicit Session(const SessionSetup& setup);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  MailStore& store();
  MailClient& client();
  SettingsFile& settings();
  RunReport& report();
  Terminal& terminal();
  Module& module();

  // True while the settings hold nothing of the module's: its first start will write them.
  bool isFirstRun();
  // The folder that attachments are saved below, as the settings say, or as the first start will say.
  std::string saveFolder();

  // Starts the module and opens the explorer on it, as the engine does. Throws Failure.
  void start();
  // Clears away what a run that was stopped has left in the store.
  void cleanUp();

  // The items of a folder in list order; nothing is opened.
  Items itemsOf(const std::shared_ptr<MailFolder>& folder);
  // Shows the folder in the explorer and selects these items.
  void select(const std::shared_ptr<MailFolder>& folder, Items items);
  // The manual save command over the selection.
  void pressButton();
  // Opens an item in a window of its own; the module is told.
  std::shared_ptr<MailboxInspector> openWindow(const std::shared_ptr<MailboxItem>& item);
  // Moves an item to Deleted Items, as the user does, and tells the module that it arrived there.
  void deleteItem(const std::shared_ptr<MailboxItem>& item);
  // Puts the saved files back into an item and takes the links out; files that are gone are reported.
  void restore(const std::shared_ptr<MailboxItem>& item);

  // The ids of the folders that the module wants to hear of; with `anew`, as the settings are by now. Throws
  // Failure.
  std::set<std::string> watchedFolders(bool anew = false);
  // A message has arrived in a watched folder: the module handles it, and all of that is on disk when this
  // returns.
  void arrived(const std::shared_ptr<MailFolder>& folder, const std::string& unique);
  // A watch over the same store is told of each message that is saved from here on.
  void tellWatch();
  // The ids of the messages that others have told of, each once.
  std::vector<std::string> toldByOthers();
  // Reports an error of the engine's own, as the module's are.
  void reportError(TextView message, TextView source);

  // The paths that the link notes in an item's body name, in their order.
  std::vector<std::string> linksIn(MailboxItem& item);

  // What the module did in one event goes on its way to disk.
  void endOfEvent();
  // Everything is on disk or reported when this returns; the module is stopped. Called once, never throws.
  void finish();

 private:
  void openExplorer();

  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace quillfile::mailbox
