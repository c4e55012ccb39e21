#include "hosts/mailbox/outlook/part_insertion.h"

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/body_encoding.h"
#include "hosts/mailbox/outlook/removed_part.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t smallContent = std::size_t{1} << 20;  // what is looked at in memory; larger is base64

std::string gathered(const AttachmentSource& source) {
  std::string bytes;
  source.content()([&](std::string_view more) { bytes += more; });
  return bytes;
}

// The bytes in the header's own encoding; none when that cannot hold them exactly, or when it is base64.
std::optional<std::string> asItWas(const mime::Header& header, const AttachmentSource& source,
                                   std::string_view boundary, std::string_view lineEnd) {
  const auto encoding = mime::encodingNamed(header.value("Content-Transfer-Encoding"));
  const bool plain = encoding == mime::Encoding::identity;
  if (!plain && encoding != mime::Encoding::quoted_printable) return std::nullopt;
  if (static_cast<std::size_t>(source.size()) > smallContent) return std::nullopt;
  const auto bytes = gathered(source);
  const auto delimiter = "--" + std::string{boundary};
  if (plain) {
    const bool fits = bytes.find(delimiter) == std::string::npos && bytes.find('\0') == std::string::npos;
    return fits ? std::optional{bytes} : std::nullopt;
  }
  const auto hunks = encodedHunks(encoding, "", "", {{0, 0, bytes}}, lineEnd);
  if (!hunks || hunks->front().bytes.find(delimiter) != std::string::npos) return std::nullopt;
  return hunks->front().bytes;
}

// The header's lines with another transfer encoding.
std::string inBase64(std::string_view header, std::string_view lineEnd) {
  std::string result;
  for (auto rest = header; const auto field = mime::takeField(rest);)
    if (!mime::equalWords(field->name, "Content-Transfer-Encoding")) result += field->whole;
  return result.append("Content-Transfer-Encoding: base64").append(lineEnd);
}

}  // namespace

mime::Pieces partPieces(std::string header, const AttachmentSource& source, std::string_view boundary,
                        std::string_view lineEnd) {
  if (!header.empty() && header.back() != '\n') header.append(lineEnd);
  const mime::Header read{header};
  const auto encoding = mime::encodingNamed(read.value("Content-Transfer-Encoding"));
  // A message in a message is never encoded (RFC 2046 5.2.1).
  if (mime::contentType(read).is("message/rfc822") && encoding == mime::Encoding::identity)
    return {mime::Piece{header.append(lineEnd)},
            mime::Piece{mime::StreamedContent{source.content(), false, std::string{lineEnd}}}};
  if (auto bytes = asItWas(read, source, boundary, lineEnd))
    return {mime::Piece{header.append(lineEnd)}, mime::Piece{std::move(*bytes)}};
  auto lines = encoding == mime::Encoding::base64 ? header : inBase64(header, lineEnd);
  return {mime::Piece{lines.append(lineEnd)},
          mime::Piece{mime::StreamedContent{source.content(), true, std::string{lineEnd}}}};
}

Splice insertion(const mime::PartTree& tree, mime::PartIndex multipart, std::size_t before,
                 const std::string& header, const AttachmentSource& source) {
  const auto children = tree.children(multipart);
  const auto& at = tree[multipart];
  const auto next = before < children.size() ? tree[children[before]].opening : at.closing;
  const auto boundary = boundaryOf(tree, multipart);
  const auto lineEnd = tree.lineEnd();
  // A boundary line that follows brings the line end before it, unless it is the very first line.
  const auto following = next.of(tree.message());
  const bool bare = !following.empty() && following.front() == '-';

  Splice splice{{next.begin, next.begin}, {}};
  std::string opening{bare ? std::string_view{} : lineEnd};
  opening.append("--").append(boundary).append(lineEnd);
  splice.pieces.emplace_back(std::move(opening));
  for (auto& piece : partPieces(header, source, boundary, lineEnd)) splice.pieces.push_back(std::move(piece));
  if (bare) splice.pieces.emplace_back(std::string{lineEnd});
  return splice;
}

}  // namespace quillfile::mailbox
