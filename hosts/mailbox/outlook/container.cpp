#include "hosts/mailbox/outlook/container.h"

#include <algorithm>

#include "hosts/mailbox/formats/import/rfc5322.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/outlook/opened_message.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t kLargest = std::size_t{48} << 20;   // it is held in memory while the item is
constexpr std::size_t kLongest = std::size_t{128} << 20;  // the message with its containers opened

// By its type, or by the name that it has where the type was lost on the way.
bool isTnef(const mime::PartTree& tree, mime::PartIndex part) {
  if (tree[part].kind != mime::PartKind::leaf) return false;
  const auto type = tree.type(part);
  if (type.is("application/ms-tnef") || type.is("application/vnd.ms-tnef")) return true;
  return mime::equalWords(toUtf8(mime::givenName(tree.header(part))), "winmail.dat");
}

enum class Decoder { first, second };

std::optional<std::string> decodedBytes(const mime::PartTree& tree, mime::PartIndex part, Decoder decoder,
                                        mime::Doubt& doubt) {
  const auto encoding = tree[part].encoding;
  const bool checked = encoding == mime::Encoding::base64 || encoding == mime::Encoding::quoted_printable;
  if (decoder == Decoder::second && checked) return mime::decodePlain(encoding, tree.body(part));
  return mime::decoded(encoding, tree.body(part), &doubt);
}

// The containers of a message that can be opened, in order.
std::vector<Container> containersOf(const Message& message, Decoder decoder) {
  std::vector<Container> found;
  const auto& tree = message.tree();
  for (mime::PartIndex part = 0; part < tree.size(); ++part) {
    if (!isTnef(tree, part) || tree.insideEmbedded(part) || tree.body(part).size() > kLargest / 3 * 4)
      continue;
    mime::Doubt doubt;
    auto bytes = decodedBytes(tree, part, decoder, doubt);
    if (!bytes || bytes->size() > kLargest) continue;
    Container one{.part = part, .bytes = std::make_unique<const std::string>(std::move(*bytes))};
    auto read = formats::readTnef(*one.bytes);
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

class TooLong {};

}  // namespace

std::shared_ptr<const Message> withContainersOpened(std::shared_ptr<const Message> message) {
  auto containers = containersOf(*message, Decoder::first);
  if (containers.empty()) return message;
  auto reason = reasonToKeep(containers);
  std::string bytes;
  const auto add = [&](std::string_view more) {
    if (bytes.size() + more.size() > kLongest) throw TooLong{};
    bytes += more;
  };
  try {
    writeOpened(*message, std::move(containers), add);
  } catch (const TooLong&) {
    return message;
  }
  bytes.shrink_to_fit();
  return std::make_shared<const Message>(std::move(message), std::move(bytes), std::move(reason));
}

bool opensTheSameAgain(const Message& opened) {
  std::size_t at = 0;
  bool same = true;
  const auto compare = [&](std::string_view bytes) {
    same = same && opened.bytes().substr(std::min(at, opened.bytes().size()), bytes.size()) == bytes;
    at += bytes.size();
  };
  writeOpened(opened.stored(), containersOf(opened.stored(), Decoder::second), compare);
  return same && at == opened.bytes().size();
}

}  // namespace quillfile::mailbox
