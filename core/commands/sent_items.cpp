// Processing of an item that reached Sent Items.
#include "core/commands/commands.h"
#include "core/commands/option_lines.h"
#include "core/module/procedure.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"ProcessSentItems";

}  // namespace

bool Commands::ProcessSentItems(const Ref<Item>& item) {
  procedure(ports_.services, {.name = u".ProcessSentItems", .wording = wording::atLine}, [&](Step& at) {
    at(1);
    const auto run = ReadRunSettings(ports_.settings);
    at(2);
    if (!run.sendDeleteAttachments && !run.sendRemoveAttachments) return;
    at(3);
    const Text savePath = sentSavePath(run);
    at(4);
    const Text entryId = held(item).entryId();
    ports_.trace(procedureName, u"Processing: {}", entryId);
    const Text typeName = item->typeName();
    ports_.trace(procedureName, u"TypeName: {}", typeName);
    traceOptions(ports_.trace, procedureName, run, savePath);
    at(5);
    save(item, run, savePath, true);
  });
  return false;
}

// Other than for the other commands, an empty folder path does not fall back to the folder's name.
Text Commands::sentSavePath(const RunSettings& run) {
  if (!run.imitateOutlookFolders) return run.savePath;
  const auto nameSpace = held(ports_.module.outlookApp).nameSpace();
  const auto folder = held(nameSpace).defaultFolder(DefaultFolder::sent_items);
  const Text below = held(ports_.module.engine).folderPath(folder);
  Text path = fill(u"{}{}{}", run.savePath, below, ports_.paths.separator);
  ports_.utilities.createFolderPath(path);
  return path;
}

}  // namespace quillfile
