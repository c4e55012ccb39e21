// Automatic processing of a new item in a monitored folder.
#include "core/commands/commands.h"
#include "core/commands/option_lines.h"
#include "core/module/procedure.h"

namespace quillfile {
namespace {

constexpr TextView pathName = u"HandleUserItemsFolderAdd";  // what the whole path is called in traces
constexpr std::int32_t on = 1;

}  // namespace

bool Commands::CheckItemForAttachments(const Ref<Item>& item, TextView folderEntryId,
                                       TextView folderStoreId) {
  const Procedure about{.name = u".CheckItemForAttachments", .wording = wording::atLine};
  return procedure(ports_.services, about, [&](Step& at) {
    at(1);
    if (ports_.settings.stored(u"AutomaticMode").value_or(u"0") == u"0") return true;
    at(2);
    const auto run = ReadRunSettings(ports_.settings);
    at(3);
    if (run.automaticMode != on) return false;
    at(4);
    const Text subject = held(item).subject();
    ports_.trace(u"CheckItemForAttachments", u"Entering CheckItemForAttachments with subject '{}'", subject);
    at(5);
    ports_.counter.value = 0;
    at(6);
    const Text savePath = automaticSavePath(run, folderEntryId, folderStoreId);
    at(7);
    traceOptions(ports_.trace, pathName, run, savePath);
    at(8);
    save(item, run, savePath, false);
    at(9);
    ports_.trace(pathName, u"Leaving HandleUserItemsFolderAdd");
    return false;
  });
}

// Empty when the folder cannot be found.
Text Commands::automaticSavePath(const RunSettings& run, TextView folderEntryId, TextView folderStoreId) {
  if (!run.imitateOutlookFolders) return run.savePath;
  const auto folder = held(ports_.module.engine).findFolder(folderEntryId, folderStoreId);
  if (!folder) return {};
  // On this path alone, and in the whole of it, the root included.
  Text path = pathOf(run, folder);
  path = replaceAllIgnoringCase(ports_.letters, path, u"%2F", u"-");
  path = replaceAllIgnoringCase(ports_.letters, path, ports_.paths.otherSeparator, u"-");
  ports_.utilities.createFolderPath(path);
  return path;
}

}  // namespace quillfile
