// AttachPaperclip: a token attachment, so that an item that once carried files still shows its paperclip.
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"AttachPaperclip";

// Where the placeholder goes in the body; -1 in an empty one, which is passed on as it is.
Position placeFor(SafeItem& safe, TextView format) {
  if (format == u"RTF") return findLast(safe.body(BodyKind::rtf), u">") + 1;
  const auto kind = format == u"HTML" ? BodyKind::html : BodyKind::plain;
  return static_cast<Position>(safe.body(kind).size()) - 1;
}

}  // namespace

bool QuillfileRoutines::AttachPaperclip(const Ref<Item>& item) {
  return attachPaperclip([&] { return ports_.mailHelper.wrap(item); });
}

bool QuillfileRoutines::AttachPaperclip(const Ref<SafeItem>& item) {
  return attachPaperclip([&] { return item; });
}

bool QuillfileRoutines::attachPaperclip(const std::function<Ref<SafeItem>()>& wrapped) {
  const auto body = [&](Step& at) -> bool {
    at(1);
    const auto retain = ports_.settings.number(u"RetainPaperclip");
    ports_.trace(name, u"Retain Paperclip: {}", retain);
    if (retain == 0) return true;
    at(2);
    const auto safe = wrapped();
    at(3);
    const auto attachments = safe->attachments();
    const auto count = attachments->count();
    ports_.trace(name, u"Attachment Count: {}", count);
    at(4);
    if (count > 0) return true;
    const auto format = ports_.mailHelper.bodyFormat(safe);
    const auto position = placeFor(*safe, format);
    ports_.trace(name, u"Adding paperclip to {} email at {}", format, position);
    const auto icon = fill(u"{}{}Paperclip.ico", ports_.installationFolder, ports_.paths.separator);
    attachments->add({.source = icon,
                      .type = std::nullopt,
                      .position = position,
                      .displayName = u"Paperclip retained by Quillfile"});
    ports_.trace(name, u"Retained paperclip with {}", icon);
    at(5);
    return true;
  };
  return procedure(ports_.services, {.name = u".AttachPaperclip", .wording = wording::atLine}, body);
}

}  // namespace quillfile
