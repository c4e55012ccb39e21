#include <cstdio>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"

namespace quillfile::app {

int runRestore(const Options& options) {
  if (options.arguments.empty()) {
    throw WrongCommandLine{"restore needs the items to restore. `quillfile list` shows them."};
  }
  const auto session = openSessionToChange(options);
  const auto folder = chosenFolder(*session, options);
  const auto items = chosenItems(*session, folder, options.arguments);
  session->start();
  for (const auto& item : items) session->restore(item);
  session->finish();
  if (!options.json && !options.quiet) {
    std::printf("%s restored\n", counted(session->report().items.size(), "message", "messages").c_str());
  }
  return printReport(options, session->report());
}

}  // namespace quillfile::app
