#include <cstdio>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"

namespace quillfile::app {

int runDelete(const Options& options) {
  if (options.arguments.empty())
    throw WrongCommandLine{"delete needs the items to delete. `quillfile list` shows them."};
  const auto session = openSessionToChange(options);
  const auto folder = chosenFolder(*session, options);
  const auto items = chosenItems(*session, folder, options.arguments);
  session->start();
  session->select(folder, items);
  for (const auto& item : items) session->deleteItem(item);
  session->finish();
  if (!options.json && !options.quiet) {
    std::printf("%s deleted\n", counted(session->report().items.size(), "message", "messages").c_str());
  }
  return printReport(options, session->report());
}

}  // namespace quillfile::app
