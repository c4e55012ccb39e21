// CheckForAttachments: what is saved of one item, and what becomes of the item after.
#include "core/saving/quillfile_routines.h"

namespace quillfile {

bool QuillfileRoutines::CheckForAttachments(const SaveRequest& request) {
  constexpr TextView name = u"CheckForAttachments";
  const Procedure about{.name = u".CheckForAttachments", .wording = wording::atLine};
  return procedure(ports_.services, about, [&](Step& at) -> bool {
    const auto& [item, skipCriteria, afterSave, errorPrompt, addLink, remove, readWrite, savePath, isSent] =
        request;
    const auto& settings = ports_.settings;
    at(1);
    auto& mail = held(item);
    if (settings.flag(u"SaveEmailsWanted")) SaveEmail(item, skipCriteria, savePath);
    at(2);
    if (!settings.flag(u"SaveAttachmentsWanted")) return false;
    const auto type = mail.typeName();
    if (type != u"MailItem" && type != u"PostItem") return false;
    at(3);
    ports_.trace(name, u"Attachment Count: {}", [&] { return mail.attachments()->count(); });
    ports_.trace(name, u"Save Path: {}", savePath);
    at(4);
    const bool sendRemove = isSent && settings.flag(u"SendRemoveAttachments");
    const bool sendDelete = isSent && settings.flag(u"SendDeleteAttachments");
    const SavingContext context{.errorPrompt = errorPrompt,
                                .addLink = addLink,
                                .remove = remove || sendRemove,
                                .readWrite = readWrite,
                                .deleteSaved = sendDelete};
    at(5);
    if (!skipCriteria && !sendRemove && !sendDelete) {
      auto filters = readSaveFilters(settings, ports_.letters);
      if (!CheckSave(item, savePath, filters, context, false)) return false;
    }
    at(6);
    const bool wasUnread = mail.unRead();
    const bool saved = SaveAttachments(item, context, savePath);
    at(7);
    if (afterSave == AfterSave::mark_read) mail.setUnRead(false);
    if (afterSave == AfterSave::keep_unread && wasUnread) mail.setUnRead(true);
    if (afterSave == AfterSave::remove_item && saved) removeItem(mail);
    return true;
  });
}

// The flag keeps the module from asking about the saved files of an item that it deletes itself. It is taken
// back when the deletion fails, too: it outlives the process, and would silence the question for good.
void QuillfileRoutines::removeItem(Item& item) {
  ports_.settings.setTemporarilyDisabled(true);
  const auto failure = guarded(
      [&](Step&) -> std::optional<Failure> {
        item.remove();
        ports_.user.processPendingEvents();
        return std::nullopt;
      },
      [](const Failure& happened, const Step&) { return std::optional{happened}; });
  ports_.settings.setTemporarilyDisabled(false);
  if (failure) throw *failure;
  ports_.trace(u"SaveAttachment", u"Deleting email");
}

}  // namespace quillfile
