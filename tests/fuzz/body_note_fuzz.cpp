// Notes in the bodies of real messages: the module writes them, the message is rewritten and read anew, the
// module finds and erases them, and the message is rewritten once more. Each file is attached again, and the
// body is the one from the beginning.
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "core/links/link_commands.h"
#include "core/platform/failure.h"
#include "core/saving/naming.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/rewrite.h"
#include "hosts/mailbox/services/file_content.h"
#include "tests/core/saving/saving.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::mailbox;

namespace {

struct Choice {
  bool html, rtf, alternative, atTop, encodes, crlf;
  std::string charset, encoding;
  std::size_t notes;
};

Choice chosen(std::uint8_t first, std::uint8_t second) {
  constexpr const char* charsets[] = {"utf-8", "iso-8859-1", "us-ascii", "utf-16le"};
  constexpr const char* encodings[] = {"7bit", "8bit", "quoted-printable", "base64"};
  return {.html = (first & 3) == 1,
          .rtf = (first & 3) == 2,
          .alternative = (first & 3) == 1 && (first & 64) != 0,
          .atTop = (second & 4) != 0,
          .encodes = (second & 16) != 0,
          .crlf = (second & 8) != 0,
          .charset = charsets[first >> 2 & 3],
          .encoding = encodings[first >> 4 & 3],
          .notes = 1u + (second & 3)};
}

std::string messageWith(const Choice& choice, std::string_view body) {
  const std::string end = choice.crlf ? "\r\n" : "\n";
  std::string encoded{body};
  if (choice.encodes && choice.encoding == "base64") encoded = mime::toBase64(body, end);
  if (choice.encodes && choice.encoding == "quoted-printable") encoded = mime::toQuotedPrintable(body, end);
  const std::string type = choice.html ? "text/html" : choice.rtf ? "text/rtf" : "text/plain";
  const std::string part = "Content-Type: " + type + "; charset=" + choice.charset + end +
                           "Content-Transfer-Encoding: " + choice.encoding + end + end + encoded;
  const std::string header = "From: a@b" + end;
  if (!choice.alternative) return header + part;
  return header + "Content-Type: multipart/alternative; boundary=\"=_b\"" + end + end + "--=_b" + end + end +
         "Hello" + end + "--=_b" + end + part + end + "--=_b--" + end;
}

// As an attachment's name becomes a file's.
Text nameOfFile(const PathRules& paths, const Text& name) {
  return StripInvalidCharacters(paths, cleanedName(paths, mime::cleanName(name)), u"-");
}

// A body that speaks of notes, or seems to, is another target's.
bool mentionsNotes(const Text& body) {
  Text lower = body;
  for (auto& unit : lower)
    if (unit < 0x80) unit = static_cast<char16_t>(std::tolower(unit));
  return lower.find(u"attachment") != Text::npos || lower.find(u"file:") != Text::npos ||
         lower.find(u"saved") != Text::npos;
}

// Rich text from its first brace to its last. The module writes a path into it without a mark before a brace.
bool holdsRtfNotes(const Text& rtf, const std::vector<Text>& names) {
  return startsWith(rtf, u"{\\rtf") && rtf.back() == u'}' &&
         std::none_of(names.begin(), names.end(),
                      [](const Text& name) { return name.find_first_of(u"{}") != Text::npos; });
}

// A body that is written anew has line ends of one kind.
Text withEqualLineEnds(const Text& text) {
  return replaceAll(replaceAll(text, u"\r\n", u"\n"), u"\r", u"\n");
}

BodyKind kindOf(ItemBodies& bodies) {
  return bodies.format() == u"HTML"  ? BodyKind::html
         : bodies.format() == u"RTF" ? BodyKind::rtf
                                     : BodyKind::plain;
}

std::shared_ptr<FakeItem> itemOf(FakePlatform& world, ItemBodies& bodies) {
  const Text plain = bodies.text(BodyKind::plain);
  return world.addItem({.subject = u"s",
                        .format = Text{bodies.format()},
                        .body = plain,
                        .htmlBody = bodies.format() == u"HTML" ? bodies.text(BodyKind::html) : u"",
                        .rtfBody = bodies.format() == u"RTF" ? bodies.text(BodyKind::rtf) : u""});
}

Text bodyOf(const FakeItem& item, BodyKind kind) {
  return kind == BodyKind::html  ? item.data.htmlBody
         : kind == BodyKind::rtf ? item.data.rtfBody
                                 : item.data.body;
}

std::shared_ptr<const Message> rewritten(const std::shared_ptr<const Message>& message, ItemBodies& bodies) {
  const auto rewriting = rewrite(message, bodies, {}, {});
  std::string bytes;
  rewriting.content([&](std::string_view piece) { bytes += piece; });
  const Descriptor file{memfd_create("rewritten", MFD_CLOEXEC)};
  writeAll(file.get(), bytes, "memory");
  const auto readBack = MessageFile::open("/proc/self/fd/" + std::to_string(file.get()));
  require(readBack && rewriting.check(*readBack));
  return std::make_shared<const Message>(std::move(bytes));
}

// As the module spells the tag that it has put a note beside.
Text withTagRespelled(LetterCase& letters, const Text& body, bool atTop) {
  const TextView tag = atTop ? u"<Body>" : u"</Body>";
  return replaceAllIgnoringCase(letters, body, tag, tag);
}

}  // namespace

// Two bytes choose; then the names of the files, each ended by a zero; then the body.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto choice = chosen(data[0], data[1]);
  std::string_view rest{reinterpret_cast<const char*>(data) + 2, size - 2};
  FakePlatform world{PathRules::posix()};
  std::vector<Text> names;
  while (names.size() < choice.notes) {
    const auto end = std::min(rest.find('\0'), rest.size());
    const auto number = fromUtf8(std::to_string(names.size()));
    names.push_back(nameOfFile(world.paths, number + u"-" + fromUtf8(rest.substr(0, end))));
    if (names.back().find(u"%20") != Text::npos) return 0;  // a blank, to the reader of links
    rest.remove_prefix(std::min(end + 1, rest.size()));
    world.files.add(u"/s/" + names.back());
  }

  const auto message = std::make_shared<const Message>(messageWith(choice, rest));
  ItemBodies bodies{message};
  const auto kind = kindOf(bodies);
  const Text before = bodies.text(kind), plainBefore = bodies.text(BodyKind::plain);
  if (!bodies.doubt().empty() || mentionsNotes(before) || mentionsNotes(plainBefore)) return 0;
  if (kind == BodyKind::html && before.empty()) return 0;  // written at the item's end
  if (kind == BodyKind::rtf && !holdsRtfNotes(before, names)) return 0;

  world.settings.set(u"LinkLocation", choice.atTop ? u"Top" : u"Bottom");
  Saving saving{world};
  const auto item = itemOf(world, bodies);
  for (const auto& name : names) {
    require(saving.routines.UpdateEmailBody(item, world.paths.linkTo(u"/s/" + name)));
    bodies.set(kind, bodyOf(*item, kind));
  }
  const Text withNotes = bodies.text(kind);  // rewriting gives the bodies up
  try {
    const auto noted = rewritten(message, bodies);
    ItemBodies found{noted};
    require(kindOf(found) == kind && withEqualLineEnds(found.text(kind)) == withEqualLineEnds(withNotes));

    const auto again = itemOf(world, found);
    const Ref<Application> application = world.application;
    LinkCommands commands{
        {world.services, world.log, world.letters, world.files, world.paths}, world.mailHelper, application};
    require(commands.ReplaceLinksWithAttachments(again));
    for (const auto& name : names)
      require(std::any_of(again->attached.begin(), again->attached.end(),
                          [&](const auto& one) { return one->fileName == name; }));

    found.set(kind, bodyOf(*again, kind));
    found.dropBlankLinesOfNotes();
    const auto erased = rewritten(noted, found);
    ItemBodies after{erased};
    const Text expected =
        kind == BodyKind::html ? withTagRespelled(world.letters, before, choice.atTop) : before;
    require(withEqualLineEnds(after.text(kind)) == withEqualLineEnds(expected));
    if (choice.alternative) require(after.text(BodyKind::plain) == plainBefore);
  } catch (const Failure&) {  // the body could not hold the note: the message stays as it is
  }
  return 0;
}
