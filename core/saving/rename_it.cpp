// RenameIt: the file name of a saved e-mail, after its subject.
#include "core/saving/naming.h"
#include "core/saving/quillfile_routines.h"
#include "core/saving/target_folder.h"

namespace quillfile {

Text QuillfileRoutines::RenameIt(const Ref<Item>& item, TextView extension, TextView savePath) {
  constexpr Position longest = 127, kept = 124;
  Text path;
  const auto body = [&](Step& at) {
    at(1);
    if (!item) return;
    at(2);
    const auto folder = StripInvalidCharacters(ports_.paths, savePath, u"-");
    if (!ensureTargetFolder(ports_, folder)) return;
    at(3);
    auto name = ports_.utilities.cleanFileName(item->subject());
    if (static_cast<Position>(name.size()) > longest) name = cutLeft(name, kept);
    at(4);
    name.append(extension);
    path = folder + name;
    at(5);
    const auto parts = partsOf(name);
    if (ports_.utilities.fileExists(path))
      path = ports_.files.firstFreePath(folder, parts.base, parts.extension);
  };
  procedure(ports_.services, {.name = u".RenameIt", .wording = wording::atLine}, body);
  return path;
}

}  // namespace quillfile
