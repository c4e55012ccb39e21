#include "core/links/link_commands.h"

#include "core/links/link_note.h"

namespace quillfile {
namespace {

constexpr TextView replacing = u"ReplaceLinksWithAttachments";
constexpr TextView erasing = u"JustEraseLinks";
constexpr TextView lineBreak = u"\r\n";
constexpr TextView oldestVersion = u"9.", nextVersion = u"10";

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

// Rich text is first searched as plain text; a body of no known format is not read.
std::pair<BodyKind, std::unique_ptr<WorkingCopy>> readBody(SafeItem& item, TextView format) {
  if (format == u"HTML") return {BodyKind::html, item.workingCopy(BodyKind::html)};
  if (format == u"TEXT" || format == u"RTF") return {BodyKind::plain, item.workingCopy(BodyKind::plain)};
  return {BodyKind::plain, std::make_unique<LooseCopy>(Text{})};
}

}  // namespace

// An item's body in the wrapper, and the walk through it.
struct LinkCommands::Body {
  SafeItem& item;
  LinkWalk walk;

  void read(BodyKind kind) { walk.read(kind, item.workingCopy(kind)); }
  void removeLeadingLineBreaks() {
    const auto text = walk.body();
    Position leading = 1;
    while (startsWith(from(text, leading), lineBreak)) leading += lengthOf(lineBreak);
    if (leading > 1) walk.replace(1, leading, u"");
  }
  void replaceAll(TextView wanted, TextView replacement) {
    const auto next = [&](Position start) { return find(walk.body(), wanted, start); };
    for (auto at = next(1); at > 0; at = next(at + lengthOf(replacement)))
      walk.replace(at, at + lengthOf(wanted), replacement);
  }
  void nameMarkers(TextView fileName) {
    replaceAll(u"<< File: Paperclip retained by Quillfile >>", fill(u"<< File: {} >>", fileName));
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

// Takes the notes for a file out of a plain body, in whatever letter case: those that end their line with it,
// then all others. A path that is another file's where letter case counts stays, with its own note.
void LinkCommands::eraseNotes(LinkWalk& walk, TextView fileName) {
  const Text note = link_note::plain(ports_.paths.linkTo(fileName));
  const Position exact = ports_.paths.caseCounts ? lengthOf(fileName) + lengthOf(u">") : 0;
  for (const TextView behind : {lineBreak, TextView{}}) walk.eraseAll(note, behind, exact);
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
    auto [kind, copy] = readBody(*safe, format);
    at(5);
    const Text version = version2();
    at(6);
    trace_(u"Connect.SendItem", u"WORKING WITH: {}", copy->text());  // sic
    Body body{*safe, {links_, format, version != oldestVersion, kind, std::move(copy)}};
    bool changed = false;
    while (body.walk.next()) {
      at(7);
      const Text fileName = body.walk.fileName();
      if (links_.TestAttachmentLink(safe, fileName)) changed = true;
      at(8);
      if (format == u"HTML") {
        body.walk.eraseNote();
        body.walk.write();
        changed = true;
        continue;
      }
      if (format == u"RTF") {
        trace_(replacing, u"Erasing url rtf '{}'", fileName);
      } else {
        trace_(replacing, u"Erasing url text '{}'", fileName);
      }
      if (format == u"RTF" && version != oldestVersion) {
        body.read(BodyKind::rtf);
        body.walk.eraseNote();
      } else {
        body.read(BodyKind::plain);
        eraseNotes(body.walk, fileName);
        if (version == nextVersion) body.removeLeadingLineBreaks();
      }
      body.walk.write();
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
    auto [kind, copy] = readBody(*safe, format);
    at(4);
    const Text version = version2();
    Body body{*safe, {links_, format, version == nextVersion, kind, std::move(copy)}};
    bool changed = false;
    while (body.walk.next()) {
      at(5);
      const Text& fileName = body.walk.fileName();
      const Text name = QuillfileExtended::FileNameFromPath(fileName);
      trace_(erasing, u"Replacing links of {}", name);
      at(6);
      if (format == u"HTML") {
        body.walk.eraseNote();
        body.walk.write();
        changed = true;
        continue;
      }
      if (format == u"RTF" && version != oldestVersion) {
        body.read(BodyKind::rtf);
        body.walk.eraseNote();
        body.nameMarkers(name);
      } else if (format == u"RTF") {
        body.read(BodyKind::plain);
        body.nameMarkers(name);
        eraseNotes(body.walk, fileName);
      } else {
        body.read(BodyKind::plain);
        const Text note = link_note::plain(ports_.paths.linkTo(fileName));
        body.walk.eraseAll(note, u"", lengthOf(note));
        if (version == nextVersion) body.removeLeadingLineBreaks();
      }
      body.walk.write();
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
