#include "hosts/mailbox/outlook/container.h"

#include <algorithm>

#include "hosts/mailbox/formats/import/rfc5322.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/outlook/opened_message.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t kLargest = std::size_t{256} << 20;  // of a container, decoded

// By its type, or by the name that it has where the type was lost on the way.
bool isTnef(const mime::PartTree& tree, mime::PartIndex part) {
  if (tree[part].kind != mime::PartKind::leaf) return false;
  const auto type = tree.type(part);
  if (type.is("application/ms-tnef") || type.is("application/vnd.ms-tnef")) return true;
  return mime::equalWords(toUtf8(mime::givenName(tree.header(part))), "winmail.dat");
}

enum class Decoder { first, second };

// The bytes of a part; null when the second decoder does not take them. `doubt` is the first one's.
std::unique_ptr<const Scratch> decodedBytes(const Message& message, mime::PartIndex part, Decoder decoder,
                                            mime::Doubt& doubt) {
  const auto& at = message.tree()[part];
  const auto encoded = message.tree().body(part);
  const auto behind = message.behind(at.body);
  const bool checked =
      at.encoding == mime::Encoding::base64 || at.encoding == mime::Encoding::quoted_printable;
  bool taken = true;
  auto bytes = std::make_unique<const Scratch>([&](const Sink& sink) {
    if (decoder == Decoder::second && checked) {
      taken = mime::decodePlain(at.encoding, encoded, sink, behind);
    } else {
      doubt = mime::decode(at.encoding, encoded, sink, behind);
    }
  });
  return taken ? std::move(bytes) : nullptr;
}

// The containers of a message that can be opened, in order.
std::vector<Container> containersOf(const Message& message, Decoder decoder) {
  std::vector<Container> found;
  formats::TextRoom room;
  const auto& tree = message.tree();
  for (mime::PartIndex part = 0; part < tree.size(); ++part) {
    if (!isTnef(tree, part) || tree.insideEmbedded(part) || tree.body(part).size() > kLargest / 3 * 4)
      continue;
    mime::Doubt doubt;
    Container one{.part = part, .bytes = decodedBytes(message, part, decoder, doubt)};
    if (!one.bytes || one.bytes->bytes().size() > kLargest) continue;
    auto read = formats::readTnef(
        one.bytes->bytes(), [bytes = one.bytes.get()](std::string_view range) { bytes->forget(range); },
        room);
    if (!read) continue;
    if (!doubt.empty()) read->doubts.emplace_back(doubt);
    one.lost = formats::leftBehind(*read);
    one.content = std::move(read->content);
    if (prepare(one.content)) found.push_back(std::move(one));
  }
  return found;
}

Text reasonToKeep(const std::vector<Container>& containers) {
  for (const auto& container : containers)
    if (!container.lost.empty())
      return fill(u"it holds a file of another mail program that must stay whole: {}",
                  container.lost.front());
  return {};
}

}  // namespace

std::shared_ptr<const Message> withContainersOpened(std::shared_ptr<const Message> message) {
  auto containers = containersOf(*message, Decoder::first);
  if (containers.empty()) return message;
  auto reason = reasonToKeep(containers);
  auto bytes = std::make_unique<const Scratch>(
      [&](const Sink& sink) { writeOpened(*message, std::move(containers), sink); });
  return std::make_shared<const Message>(std::move(message), std::move(bytes), std::move(reason));
}

bool opensTheSameAgain(const Message& opened) {
  const auto behind = opened.behind({0, opened.bytes().size()});
  mime::Progress progress{behind};
  std::size_t at = 0;
  bool same = true;
  const auto compare = [&](std::string_view bytes) {
    same = same && opened.bytes().substr(std::min(at, opened.bytes().size()), bytes.size()) == bytes;
    progress.reached(at += bytes.size());
  };
  writeOpened(opened.stored(), containersOf(opened.stored(), Decoder::second), compare);
  return same && at == opened.bytes().size();
}

}  // namespace quillfile::mailbox
