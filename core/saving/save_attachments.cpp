// SaveAttachments: every attachment of an item, last first, into one folder.
#include "core/saving/naming.h"
#include "core/saving/quillfile_routines.h"
#include "core/saving/target_folder.h"

namespace quillfile {
namespace {

constexpr TextView name = u"SaveAttachments";

void traceAttachment(const Trace& trace, std::int32_t index, Attachment& attachment) {
  trace(name, u"Attachment Index:{}", index);
  trace(name, u"Attachment TypeName: {}", [&] { return attachment.typeName(); });
  const auto type = attachment.type();
  trace(name, u"Attachment Type: {}", type);
  trace(name, u"Attachment DisplayName: {}", [&] { return attachment.displayName(); });
  if (type != static_cast<std::int32_t>(AttachmentType::ole))
    trace(name, u"Attachment Name: {}", [&] { return attachment.fileName(); });
}

}  // namespace

bool QuillfileRoutines::SaveAttachments(const Ref<Item>& item, const SavingContext& context,
                                        TextView savePath) {
  Text folder;
  std::int32_t index = 0;  // of the attachment in hand; 0: none
  const auto body = [&](Step& at) -> bool {
    at(1);
    folder = StripInvalidCharacters(ports_.paths, savePath, u"-");
    if (!ensureTargetFolder(ports_, folder)) return false;
    at(2);
    const auto attachments = item->attachments();
    const auto count = attachments->count();
    ports_.trace(name, u"Attachments Count:{}", count);
    ports_.trace(name, u"SavePath:{}", folder);
    at(3);
    state_.pendingHtmlLinks.clear();
    state_.multiAttachmentPath = count > 1 ? folder : Text{};
    at(4);
    auto last = SaveResult::skipped;
    for (index = count; index >= 1; --index) {
      const auto attachment = attachments->item(index);
      traceAttachment(ports_.trace, index, *attachment);
      last = SaveAttachment(item, attachment, context, savePath);
      ports_.trace(name, u"Result: {}", static_cast<std::int32_t>(last));
      if (last == SaveResult::stop) break;
    }
    index = 0;
    at(5);
    state_.multiAttachmentPath.clear();
    if (last == SaveResult::saved) finishItem(item, context);
    state_.pendingHtmlLinks.clear();
    at(6);
    return true;
  };
  return guarded(body, [&](const Failure& failure, const Step& at) {
    const auto message = index > 0 ? fill(
                                         u"Could not save attachments.  Reason: {}; Attempting to save to {} "
                                         u"with attachment index = {}",
                                         failure.description, folder, index)
                                   : fill(u"Could not save attachments.  LastLineNumber: {}.  Reason: {}",
                                          at.number(), failure.description);
    reportError(ports_.services, u".SaveAttachments.Handler", message);
    return false;
  });
}

// The last attachment was saved: the placeholder, the notes that waited for a body, and the item itself.
void QuillfileRoutines::finishItem(const Ref<Item>& item, const SavingContext& context) {
  AttachPaperclip(item);
  if (!state_.pendingHtmlLinks.empty() && context.addLink) {
    const auto safe = ports_.mailHelper.wrap(item);
    safe->setBody(BodyKind::html, fill(u"<Body>{}</Body>", state_.pendingHtmlLinks));
    safe->save();
  }
  item->save();
}

}  // namespace quillfile
