// What the three commands have in common.
#include "core/commands/commands.h"

namespace quillfile {

// The folder's path below the save path, or its name where the engine knows no path.
Text Commands::pathOf(const RunSettings& run, const Ref<Folder>& folder) {
  Text below = held(ports_.module.engine).folderPath(folder);
  if (below.empty()) below = held(folder).name();
  // No separator in between: the save path is required to end in one.
  return fill(u"{}{}{}", run.savePath, below, ports_.paths.separator);
}

void Commands::save(const Ref<Item>& item, const RunSettings& run, TextView savePath, bool isSent) {
  ports_.saving.CheckForAttachments({.item = item,
                                     .skipCriteria = run.saveAllAttachments,
                                     .afterSave = run.postProcess,
                                     .errorPrompt = run.errorPrompt,
                                     .addLink = run.addURL,
                                     .remove = run.removeAttachment,
                                     .readWrite = run.readWrite,
                                     .savePath = Text{savePath},
                                     .isSent = isSent});
}

}  // namespace quillfile
