#include "core/saving/target_folder.h"

namespace quillfile {

bool ensureTargetFolder(const SavingPorts& ports, TextView folder) {
  if (ports.files.folderExists(folder) || ports.utilities.createFolderPath(folder)) return true;
  const auto text =
      fill(u"Warning: Unable to create folder {}\r\nPlease create it manually and try again.", folder);
  ports.user.messageBox(text, moduleName, Buttons::ok);
  return false;
}

}  // namespace quillfile
