#include "hosts/mailbox/outlook/opened_message.h"

#include <algorithm>

#include "hosts/mailbox/formats/import/mime_entity.h"
#include "hosts/mailbox/formats/rtf/rtf_document.h"
#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/outlook/body_part.h"
#include "hosts/mailbox/outlook/media_type.h"
#include "hosts/mailbox/outlook/removed_part.h"
#include "hosts/mailbox/outlook/splice.h"

namespace quillfile::mailbox {
namespace {

using formats::Entity;
using formats::EntityWriter;
using formats::MessageContent;
using mime::PartIndex;

constexpr std::uint32_t kUtf8 = 65001;

void prepareBodies(MessageContent& content) {
  if (content.rtfBody.empty()) return;
  auto rtf = formats::readRtf(mime::guess(content.rtfBody));
  const bool made = rtf.origin == formats::RtfOrigin::html ? !rtf.html.empty()
                                                           : rtf.origin == formats::RtfOrigin::plain_text;
  if (rtf.origin == formats::RtfOrigin::html && content.html.bytes.empty())
    content.html = {toUtf8(rtf.html), kUtf8};
  if (content.textBody.empty() && content.html.bytes.empty()) content.textBody = std::move(rtf.text);
  if (made) content.rtfBody.clear();
}

void prepareAttachment(formats::AttachmentContent& one, const MessageContent& content) {
  if (one.message) {
    // It is named after its subject, as messages in mail are.
    one.fileName.clear();
  } else if (one.mimeType.empty() && !one.fileName.empty()) {
    one.mimeType = mediaTypeOf(mime::cleanName(one.fileName));
  }
  if (!one.contentId.empty() && content.html.bytes.find("cid:" + one.contentId) != std::string::npos)
    one.shownInline = true;
}

Text withoutBlanks(TextView text) {
  Text result;
  for (const char16_t unit : text)
    if (unit > u' ' && unit != u'\u00A0') result += unit;
  return result;
}

bool isIn(const Message& message, std::string_view text) {
  constexpr std::size_t step = std::size_t{1} << 20;
  const auto bytes = message.bytes();
  const auto behind = message.behind({0, bytes.size()});
  mime::Progress progress{behind};
  for (std::size_t at = 0; at < bytes.size(); progress.reached(at += step))
    if (bytes.substr(at, step + text.size() - 1).find(text) != std::string_view::npos) return true;
  return false;
}

// Every boundary of ours begins with this. Found nowhere in the message, so that no line of it can be taken
// for one.
std::string boundaryStem(const Message& message) {
  for (int number = 0;; ++number) {
    auto stem = "=_quillfile_" + std::to_string(number) + "_";
    if (!isIn(message, stem)) return stem;
  }
}

class Opening {
 public:
  explicit Opening(const Message& message)
      : message_(message),
        tree_(message.tree()),
        lineEnd_(tree_.lineEnd()),
        writer_(lineEnd_, boundaryStem(message)),
        edit_(tree_) {}

  void open(Container& container) {
    const auto part = container.part;
    if (part == 0) return replaceRoot(writer_.contents(container.content));
    const auto& layout = message_.layout();
    const bool hasText = layout.plain != mime::noPart,
               hasMore = layout.html != mime::noPart || layout.rtf != mime::noPart;
    auto& content = container.content;
    const bool same =
        hasText && withoutBlanks(bodyText(tree_, layout.plain).text) == withoutBlanks(content.textBody);
    if ((hasText && hasRichBody(content)) || same) content.textBody.clear();
    const bool beside = hasText && !hasMore && !paired_ && hasRichBody(content) &&
                        standsAlone(layout.plain) && standsAlone(part);
    std::vector<Entity> inPlace;
    if (beside) {
      paired_ = true;
      pair(layout.plain, writer_.body(content));
    } else if (hasRichBody(content) || !content.textBody.empty()) {
      inPlace.push_back(writer_.body(content));
    }
    for (auto& one : writer_.others(content)) inPlace.push_back(std::move(one));
    replace(part, std::move(inPlace));
  }

  void write(const Sink& sink) const {
    mime::write(message_.bytes(), spliced(edit_.pieces(), splices_), sink,
                message_.behind({0, message_.bytes().size()}));
  }

 private:
  static bool hasRichBody(const MessageContent& content) {
    return !content.html.bytes.empty() || !content.rtfBody.empty();
  }
  // Not one of several forms of the same.
  bool standsAlone(PartIndex part) const {
    return part != 0 && !tree_.type(tree_[part].parent).is("multipart/alternative");
  }
  static mime::Piece piece(const Entity& entity) { return mime::StreamedContent{entity.body, false, {}}; }

  // The line end that has to stand before what follows at `at`: a boundary line may lack its own.
  std::string lineEndBefore(std::size_t at) const {
    const auto rest = message_.bytes().substr(at, 1);
    return rest.empty() || rest == "\r" || rest == "\n" ? std::string{} : lineEnd_;
  }

  // The plain text becomes one form of the body, `rich` is the other.
  void pair(PartIndex plain, const Entity& rich) {
    const auto boundary = writer_.nextBoundary();
    const auto& at = tree_[plain];
    const auto line = "--" + boundary;
    splices_.push_back({{at.header.begin, at.header.begin},
                        {mime::Piece{"Content-Type: multipart/alternative; boundary=\"" + boundary + "\"" +
                                     lineEnd_ + lineEnd_ + line + lineEnd_}}});
    splices_.push_back({{at.body.end, at.body.end},
                        {mime::Piece{lineEnd_ + line + lineEnd_ + rich.fields + lineEnd_}, piece(rich),
                         mime::Piece{lineEnd_ + line + "--" + lineEndBefore(at.body.end)}}});
  }

  void replace(PartIndex part, std::vector<Entity> entities) {
    if (entities.empty()) return edit_.remove(part);
    const auto parent = tree_[part].parent;
    const bool many = tree_.type(parent).is("multipart/mixed");
    if (!many) {
      auto one = writer_.group("mixed", std::move(entities));
      entities.clear();
      entities.push_back(std::move(one));
    }
    const auto between = lineEnd_ + "--" + boundaryOf(tree_, parent) + lineEnd_;
    Splice splice{{tree_[part].header.begin, tree_[part].body.end}, {}};
    for (const auto& entity : entities) {
      if (&entity != &entities.front()) splice.pieces.emplace_back(between);
      splice.pieces.emplace_back(entity.fields + lineEnd_);
      splice.pieces.push_back(piece(entity));
    }
    splice.pieces.emplace_back(lineEndBefore(tree_[part].body.end));
    splices_.push_back(std::move(splice));
  }

  // The container is the whole message.
  void replaceRoot(const Entity& entity) {
    const auto& at = tree_[0];
    bool mime = false;
    for (auto rest = tree_.header(0).block(); const auto field = mime::takeField(rest);) {
      const auto name = mime::lowerCase(field->name);
      mime = mime || name == "mime-version";
      if (!name.starts_with("content-")) continue;
      const auto begin = static_cast<std::size_t>(field->whole.data() - message_.bytes().data());
      splices_.push_back({{begin, begin + field->whole.size()}, {}});
    }
    const auto fields = (mime ? std::string{} : "MIME-Version: 1.0" + lineEnd_) + entity.fields;
    splices_.push_back({{at.header.end, at.header.end}, {mime::Piece{fields}}});
    splices_.push_back({at.body, {piece(entity)}});
  }

  const Message& message_;
  const mime::PartTree& tree_;
  const std::string lineEnd_;
  EntityWriter writer_;
  mime::Edit edit_;
  std::vector<Splice> splices_;
  bool paired_ = false;
};

}  // namespace

bool prepare(MessageContent& content) {
  prepareBodies(content);
  for (auto& one : content.attachments) prepareAttachment(one, content);
  return !content.attachments.empty() || !content.html.bytes.empty() || !content.rtfBody.empty() ||
         !content.textBody.empty();
}

void writeOpened(const Message& message, std::vector<Container> containers, const Sink& sink) {
  Opening opening{message};
  for (auto& container : containers) opening.open(container);
  opening.write(sink);
}

}  // namespace quillfile::mailbox
