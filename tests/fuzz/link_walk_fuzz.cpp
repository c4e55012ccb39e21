// Bodies of any make against the reader of link notes. Each turn of a walk makes the body shorter or moves
// forward in it, there are no more turns than notes could stand in the body, and both commands come to their
// end.

#include "core/links/link_commands.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fuzz/require.h"

namespace {

using namespace quillfile;

// The first byte chooses the format and the system; the others are the body, one unit each or two.
Text bodyFrom(const std::uint8_t* data, std::size_t size, bool wide) {
  if (!wide) return Text(data, data + size);
  Text body;
  for (std::size_t i = 0; i + 1 < size; i += 2) body += static_cast<char16_t>(data[i] << 8 | data[i + 1]);
  return body;
}

void walk(QuillfileExtended& links, const PathRules& paths, TextView format, const Text& start) {
  LinkWalk walk{links, format, true, BodyKind::plain, std::make_unique<LooseCopy>(start)};
  std::size_t turns = 0, length = start.size();
  Position from = 0;
  while (walk.next()) {
    require(++turns <= start.size() / TextView{u"Attachment saved to"}.size() + 1);
    require(turns == 1 || walk.body().size() < length || walk.position() == 0 || walk.position() > from);
    length = walk.body().size();
    from = walk.position();
    const Text note = fill(u"Attachment saved to <{}>", paths.linkTo(walk.fileName()));
    if (format == u"TEXT") {
      for (auto at = find(walk.body(), note); at > 0; at = find(walk.body(), note, at))
        walk.replace(at, at + static_cast<Position>(note.size()), u"");
    } else {
      walk.eraseNote();
    }
    require(walk.body().size() <= length);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr TextView formats[] = {u"TEXT", u"RTF", u"HTML", u"other"};
  constexpr const char16_t* versions[] = {u"16.0", u"10.0", u"9.0", u""};
  const auto choice = data[0];
  const TextView format = formats[choice & 3];
  FakePlatform world{choice & 4 ? PathRules::windows() : PathRules::posix()};
  world.log.isWanted = (choice & 8) != 0;
  world.application->versionText = versions[choice >> 4 & 3];
  const Text body = bodyFrom(data + 1, size - 1, (choice & 64) != 0);

  const LinkPorts ports{world.services, world.log, world.letters, world.files, world.paths};
  QuillfileExtended links{ports};
  if (format != u"other") walk(links, world.paths, format, body);

  const Ref<Application> application = world.application;
  LinkCommands commands{ports, world.mailHelper, application};
  const ItemData item{
      .subject = u"F", .format = Text{format}, .body = body, .htmlBody = body, .rtfBody = body};
  require(commands.ReplaceLinksWithAttachments(world.addItem(item)));
  require(commands.JustEraseLinks(world.addItem(item)));
  return 0;
}
