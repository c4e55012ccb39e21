#include "core/saving/attachment_path.h"

#include "core/module/procedure.h"
#include "core/saving/naming.h"
#include "core/saving/rename_keywords.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"SaveAttachment";

Text join(TextView folder, TextView name) { return Text{folder}.append(name); }

Target askForPath(const SavingPorts& ports, TextView folder, TextView name) {
  auto answer = ports.savePathForm.SaveAs(join(folder, shortenedForPrompt(name)));
  if (answer.empty()) return SaveResult::cancelled;
  return answer;
}

bool userChoosesPath(const SavingPorts& ports) {
  const auto wanted = ports.settings.number(u"OptionalRenameWanted");
  const auto clicked = ports.settings.number(u"ButtonClicked");
  if (wanted == 0 || clicked == 0) return false;
  ports.trace(procedureName, u"ButtonClicked: {}; OptionalRenameWanted: {}", clicked, wanted);
  return true;
}

// A folder that cannot be made is not reported here: the save into it fails, and says so.
void checkFolder(const SavingPorts& ports, TextView folder) {
  ports.trace(procedureName, u"Checking path: {}", folder);
  if (ports.files.folderExists(folder)) return;
  const bool made = ports.utilities.createFolderPath(folder);
  ports.trace(procedureName, u"Building path.  Success: {}", made ? u"True" : u"False");
}

Text renamedPath(const SavingPorts& ports, const Ref<Item>& item, TextView folder, TextView name) {
  const auto renamed = renameWithKeywords(ports, item, name);
  auto path = join(folder, renamed);
  if (!ports.utilities.fileExists(path)) return path;
  const bool hasExtension = !partsOf(name).extension.empty();
  const auto [base, extension] = hasExtension ? partsOf(renamed) : NameParts{renamed, {}};
  return ports.files.firstFreePath(folder, base, extension);
}

// The new file replaces the old one; only a file that cannot be deleted, a read-only one, is asked about.
Target replacedPath(const SavingPorts& ports, TextView folder, TextView name) {
  auto path = join(folder, name);
  if (!ports.files.fileListed(path)) return path;
  ignoringErrors([&] { ports.files.deleteFile(path); });
  if (!ports.files.fileListed(path)) return path;
  const auto question = fill(
      u"Warning: A file with the same name ('{}') already exists and is read-only.\r\n"
      u"Would you like to rename the file?",
      name);
  switch (ports.user.messageBox(question, moduleName, Buttons::yes_no_cancel)) {
    case Answer::yes:
      return askForPath(ports, folder, name);
    case Answer::no:
      return SaveResult::skipped;
    default:
      return SaveResult::stop;
  }
}

}  // namespace

Target attachmentPath(const SavingPorts& ports, const Ref<Item>& item, TextView name, TextView savePath) {
  const auto folder = StripInvalidCharacters(ports.paths, savePath, u"-");
  const auto asItStands = componentOf(ports.paths, name);
  if (userChoosesPath(ports)) return askForPath(ports, folder, asItStands);
  checkFolder(ports, folder);
  if (ports.settings.flag(u"AutomaticRename")) return renamedPath(ports, item, folder, name);
  return replacedPath(ports, folder, asItStands);
}

}  // namespace quillfile
