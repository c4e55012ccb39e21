#include <set>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/monitored.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::app {

int runFolders(const Options& options) {
  const auto session = openSession(options);
  const auto monitored = monitoredIds(session->settings());
  Json document = Json::array();
  std::vector<std::vector<std::string>> rows = {{"FOLDER", "ROLE", "ITEMS", "UNREAD", "MONITORED"}};
  for (const auto& folder : session->store().folders()) {
    const auto listing = folder->list();
    const std::string role(roleName(folder->role()));
    const bool isMonitored = monitored.contains(folder->entryId());
    document.push_back({{"name", folder->name()},
                        {"path", folder->path()},
                        {"id", folder->entryId()},
                        {"store_id", folder->storeId()},
                        {"role", role.empty() ? Json(nullptr) : Json(role)},
                        {"items", listing.size()},
                        {"unread", listing.unread()},
                        {"monitored", isMonitored}});
    rows.push_back({mailbox::printable(fromUtf8(folder->path())), role, std::to_string(listing.size()),
                    std::to_string(listing.unread()), isMonitored ? "yes" : ""});
  }
  if (options.json) {
    printJson(document);
  } else {
    printTable(rows, {2, 3});
  }
  return done;
}

}  // namespace quillfile::app
