#include "apps/quillfile/commands.h"

#include <array>
#include <string_view>

namespace quillfile::app {
namespace {

struct Runner {
  std::string_view command;
  int (*run)(const Options&);
};

constexpr std::array<Runner, 16> runners = {{
    {"folders", runFolders},
    {"list", runList},
    {"show", runShow},
    {"save", runSave},
    {"watch", runWatch},
    {"monitor", runMonitor},
    {"forward", runRespond},
    {"reply", runRespond},
    {"reply-all", runRespond},
    {"delete", runDelete},
    {"restore", runRestore},
    {"import", runImport},
    {"settings list", runSettings},
    {"settings get", runSettings},
    {"settings set", runSettings},
    {"settings unset", runSettings},
}};

}  // namespace

int runCommand(const Options& options) {
  for (const auto& [command, run] : runners) {
    if (command == options.command) return run(options);
  }
  throw WrongCommandLine{"There is no command " + options.command + "."};
}

}  // namespace quillfile::app
