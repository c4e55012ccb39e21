#include <algorithm>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/monitored.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::app {

int runMonitor(const Options& options) {
  const auto session = openSession(options);
  if (session->isFirstRun()) {  // the first start writes the settings, this list among them
    session->start();
    session->finish();
  }
  auto monitored = monitoredFolders(session->settings());
  for (const auto& name : options.arguments) {
    // A folder that is gone can still be taken out of the list, by the name that stands there.
    const auto folder = session->store().folder(name);
    const std::string id = folder ? folder->entryId() : name;
    const auto known = [&](const MonitoredFolder& entry) {
      return entry.entryId == id || entry.name == name;
    };
    const bool listed = std::any_of(monitored.begin(), monitored.end(), known);
    if (options.remove) {
      if (!listed)
        throw WrongCommandLine{"The folder " + name +
                               " is not monitored. `quillfile folders` shows which are."};
      std::erase_if(monitored, known);
    } else if (!listed) {
      const auto added = folderNamed(*session, name);
      monitored.push_back({.name = added->name(), .entryId = added->entryId(), .storeId = added->storeId()});
    }
  }
  setMonitoredFolders(session->settings(), monitored);
  if (options.json) {
    Json names = Json::array();
    for (const auto& entry : monitored) names.push_back(entry.entryId);
    printJson({{"monitored", names}});
  } else if (!options.quiet) {
    std::printf("%s\n", monitored.empty() ? "No folder is monitored." : "Monitored:");
    for (const auto& entry : monitored)
      std::printf("  %s\n", mailbox::printable(fromUtf8(entry.entryId)).c_str());
  }
  return done;
}

}  // namespace quillfile::app
