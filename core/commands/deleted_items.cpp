#include "core/commands/deleted_items.h"

namespace quillfile {
namespace {

constexpr TextView name = u"HandleDeletedItemsFolderAdd";

Text bodyOf(SafeItem& item, TextView format) {
  if (format == u"HTML") return item.body(BodyKind::html);
  if (format == u"TEXT" || format == u"RTF") return item.body(BodyKind::plain);
  return {};
}

}  // namespace

void DeletedItemsFolder::resetPrompt() {
  firstOfDeletion_ = true;
  yesToAll_ = noToAll_ = false;
}

void DeletedItemsFolder::HandleDeletedItemsFolderAdd(const Ref<Item>& item) {
  constexpr Procedure about{.name = u".HandleDeletedItemsFolderAdd", .wording = wording::atLine};
  procedure(ports_.services, about, [&](Step& at) {
    at(1);
    ReadRunSettings(ports_.settings);
    at(2);
    if (held(item).typeName() != u"MailItem") return;
    ports_.trace(name, u"Deleting Item...");
    at(3);
    const Text format = ports_.mailHelper.bodyFormat(item);
    const auto safe = ports_.mailHelper.wrap(item);
    const Text body = bodyOf(held(safe), format);
    at(4);
    Decision decision = beginItem();
    at(5);
    const bool fieldStyle = left(held(ports_.module.outlookApp).version(), 2) != u"9.";
    Text fileName;
    for (Position position = 1; links_.CheckForLink(body, position, format, fileName, fieldStyle);) {
      if (links_.FileExists(safe, fileName)) {
        handleLinkedFile(fileName, decision);
      } else {
        ports_.trace(name, u"FileExists returned not found: '{}'", fileName);
      }
    }
    at(6);
    endItem();
    at(7);
    ports_.trace(name, u"Deleting Item Finished");
  });
}

// The first item of a deletion asks, but not in a folder of this name: there only an earlier Yes to All
// deletes.
DeletedItemsFolder::Decision DeletedItemsFolder::beginItem() {
  if (!firstOfDeletion_) return {};
  const auto explorer = held(ports_.module.outlookApp).activeExplorer();
  if (held(held(explorer).currentFolder()).name() == u"Personal Folders") return {};
  itemsLeft_ = held(held(explorer).selection()).count();
  yesToAll_ = noToAll_ = false;
  return {.prompting = true};
}

void DeletedItemsFolder::handleLinkedFile(const Text& fileName, Decision& decision) {
  if (decision.prompting) ask(fileName, decision);
  if (!decision.deleteThis && !yesToAll_) return;
  ports_.trace(name, u"Calling FileExists: {}", fileName);
  ports_.trace(name, u"File: {} was found and is being deleted.", fileName);
  ports_.utilities.deleteFile(fileName);
}

// A No changes nothing: an earlier Yes for the same item stands.
void DeletedItemsFolder::ask(const Text& fileName, Decision& decision) {
  frmYesNoPrompt prompt{ports_.services, ports_.dialogs};
  prompt.LangStrings = ports_.services.languageStrings();
  prompt.FileToBeDeletedPath = fileName;
  prompt.Show();
  switch (prompt.Response()) {
    case frmYesNoPrompt::ResponseYes:
      decision.deleteThis = true;
      break;
    case frmYesNoPrompt::ResponseYesToAll:
      yesToAll_ = true;
      decision = {.prompting = false, .deleteThis = true};
      break;
    case frmYesNoPrompt::ResponseNoToAll:
      noToAll_ = true;
      decision = {.prompting = false, .deleteThis = false};
      break;
    default:
      break;
  }
}

void DeletedItemsFolder::endItem() {
  if (!yesToAll_ && !noToAll_) return;
  --itemsLeft_;
  firstOfDeletion_ = itemsLeft_ <= 0;
}

}  // namespace quillfile
