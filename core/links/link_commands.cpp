#include "core/links/link_commands.h"

#include "core/links/link_note.h"

namespace quillfile {
namespace {

constexpr TextView replacing = u"ReplaceLinksWithAttachments";
constexpr TextView erasing = u"JustEraseLinks";
constexpr TextView lineBreak = u"\r\n";
constexpr TextView oldestVersion = u"9.", nextVersion = u"10";

// Rich text is first searched as plain text; a body of no known format is not read.
std::pair<BodyKind, Text> readBody(SafeItem& item, TextView format) {
  if (format == u"HTML") return {BodyKind::html, item.body(BodyKind::html)};
  if (format == u"TEXT" || format == u"RTF") return {BodyKind::plain, item.body(BodyKind::plain)};
  return {BodyKind::plain, Text{}};
}

Text withoutLeadingLineBreaks(Text text) {
  std::size_t leading = 0;
  while (startsWith(TextView{text}.substr(leading), lineBreak)) leading += lineBreak.size();
  return text.erase(0, leading);
}

Text markersNaming(TextView body, TextView fileName) {
  constexpr TextView marker = u"<< File: Paperclip retained by Quillfile >>";
  return replaceAll(body, marker, fill(u"<< File: {} >>", fileName));
}

}  // namespace

// An item's body in the wrapper, and the walk through it, kept in step.
struct LinkCommands::Body {
  SafeItem& item;
  LinkWalk walk;

  const Text& read(BodyKind kind) {
    walk.read(kind, item.body(kind));
    return walk.body();
  }
  void write(BodyKind kind, Text text) {
    item.setBody(kind, text);
    walk.change(std::move(text));
  }
};

Text LinkCommands::version2() { return Text{left(held(outlookApp_).version(), 2)}; }

void LinkCommands::removePaperclips(const Ref<Item>& item) {
  const auto attachments = item->attachments();
  for (auto i = attachments->count(); i >= 1; --i) {
    const auto attachment = attachments->item(i);
    if (attachment->displayName() != u"Paperclip retained by Quillfile") continue;
    trace_(replacing, u"Before displaying, removing {}", [&] { return attachment->fileName(); });
    attachment->remove();
  }
}

// A plain body without the notes for a file, those that end their line first.
Text LinkCommands::withoutNotes(TextView plain, TextView fileName) {
  const Text note = link_note::plain(ports_.paths.linkTo(fileName));
  const Text rest = replaceAllIgnoringCase(ports_.letters, plain, fill(u"{}{}", note, lineBreak), u"");
  return replaceAllIgnoringCase(ports_.letters, rest, note, u"");
}

bool LinkCommands::ReplaceLinksWithAttachments(const Ref<Item>& item) {
  constexpr Procedure about{.name = u".ReplaceLinksWithAttachments", .wording = wording::atLine};
  return procedure(ports_.services, about, [&](Step& at) -> bool {
    at(1);
    const Text format = mailHelper_.bodyFormat(item);
    trace_(replacing, u"Starting (with format & {})", format);
    at(2);
    removePaperclips(item);
    at(3);
    ignoringErrors([&] { item->save(); });
    at(4);
    const auto safe = mailHelper_.wrap(item);
    auto [kind, text] = readBody(*safe, format);
    at(5);
    const Text version = version2();
    at(6);
    trace_(u"Connect.SendItem", u"WORKING WITH: {}", text);  // sic
    Body body{*safe, {links_, format, version != oldestVersion, kind, std::move(text)}};
    bool changed = false;
    while (body.walk.next()) {
      at(7);
      const Text fileName = body.walk.fileName();
      if (links_.TestAttachmentLink(safe, fileName)) changed = true;
      at(8);
      if (format == u"HTML") {
        body.write(BodyKind::html, links_.EraseString(body.walk.body(), format));
        changed = true;
        continue;
      }
      if (format == u"RTF") {
        trace_(replacing, u"Erasing url rtf '{}'", fileName);
      } else {
        trace_(replacing, u"Erasing url text '{}'", fileName);
      }
      if (format == u"RTF" && version != oldestVersion) {
        body.write(BodyKind::rtf, links_.EraseString(body.read(BodyKind::rtf), format));
      } else {
        Text rest = withoutNotes(body.read(BodyKind::plain), fileName);
        body.write(BodyKind::plain,
                   version == nextVersion ? withoutLeadingLineBreaks(std::move(rest)) : rest);
      }
      safe->save();
    }
    at(9);
    if (!changed) return true;
    trace_(replacing, u"Attachment count before save: {}", [&] { return safe->attachments()->count(); });
    safe->save();
    trace_(replacing, u"Raw attachment count after save: {}", [&] { return item->attachments()->count(); });
    return true;
  });
}

bool LinkCommands::JustEraseLinks(const Ref<Item>& item) {
  constexpr Procedure about{.name = u".JustEraseLinks", .wording = wording::atLine};
  return procedure(ports_.services, about, [&](Step& at) -> bool {
    at(1);
    const Text format = mailHelper_.bodyFormat(item);
    trace_(erasing, u"Starting (with format & {}): {}", format, [&] { return item->body().size(); });
    at(2);
    const auto safe = mailHelper_.wrap(item);
    ignoringErrors([&] { item->save(); });
    at(3);
    auto [kind, text] = readBody(*safe, format);
    at(4);
    const Text version = version2();
    Body body{*safe, {links_, format, version == nextVersion, kind, std::move(text)}};
    bool changed = false;
    while (body.walk.next()) {
      at(5);
      const Text& fileName = body.walk.fileName();
      const Text name = QuillfileExtended::FileNameFromPath(fileName);
      trace_(erasing, u"Replacing links of {}", name);
      at(6);
      if (format == u"HTML") {
        body.write(BodyKind::html, links_.EraseString(body.walk.body(), format));
        changed = true;
        continue;
      }
      if (format == u"RTF" && version != oldestVersion) {
        body.walk.change(links_.EraseString(body.read(BodyKind::rtf), format));
        body.write(BodyKind::rtf, markersNaming(body.walk.body(), name));
      } else if (format == u"RTF") {
        body.walk.change(markersNaming(body.read(BodyKind::plain), name));
        body.write(BodyKind::plain, withoutNotes(body.walk.body(), fileName));
      } else {
        const Text note = link_note::plain(ports_.paths.linkTo(fileName));
        Text rest = replaceAll(body.read(BodyKind::plain), note, u"");
        body.write(BodyKind::plain,
                   version == nextVersion ? withoutLeadingLineBreaks(std::move(rest)) : rest);
      }
      safe->save();
    }
    at(7);
    if (!changed) return true;
    trace_(erasing, u"Saving email without links");
    safe->save();
    return true;
  });
}

}  // namespace quillfile
