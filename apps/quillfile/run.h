// What commands have in common: where the mail and the settings are, and what an argument names.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/quillfile/options.h"
#include "hosts/mailbox/engine/session.h"

namespace quillfile::app {

// --mail, $QUILLFILE_MAIL, ~/Maildir, ~/Mail: the first that is said, else the first that is there.
std::string mailDirectory(const Options& options);
// --settings, $QUILLFILE_SETTINGS, $XDG_CONFIG_HOME/quillfile/settings.ini.
std::string settingsPath(const Options& options);

// A session over both, that prints errors as they happen.
std::unique_ptr<mailbox::Session> openSession(const Options& options);
// The same for a command that changes the store: what a run that was stopped has left there is cleared away,
// before items are looked up, since it may take away one of two that are the same.
std::unique_ptr<mailbox::Session> openSessionToChange(const Options& options);

// The folder that --folder names, else the Inbox.
std::shared_ptr<mailbox::MailFolder> chosenFolder(mailbox::Session& session, const Options& options);
// A folder by the name that `folders` shows.
std::shared_ptr<mailbox::MailFolder> folderNamed(mailbox::Session& session, const std::string& name);

// The items that the arguments name, in list order and each once; all of the folder's where there are none.
mailbox::Items chosenItems(mailbox::Session& session, const std::shared_ptr<mailbox::MailFolder>& folder,
                           const std::vector<std::string>& arguments);

}  // namespace quillfile::app
