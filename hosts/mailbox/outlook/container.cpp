#include "hosts/mailbox/outlook/container.h"

#include "hosts/mailbox/formats/import/rfc5322.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/outlook/media_type.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t kLargest = std::size_t{48} << 20;  // it is held in memory while the item is

// A container's bytes, decoded, and what was read in them.
struct Opened {
  std::string bytes;
  formats::ReadMessage read;
};

class ContainedSource final : public AttachmentSource {
 public:
  ContainedSource(std::shared_ptr<const Opened> container, std::size_t index, std::int32_t number)
      : container_(std::move(container)), index_(index), number_(number) {}

  AttachmentType type() const override {
    return one().message                                         ? AttachmentType::embedded_item
           : one().method == formats::AttachMethod::ole          ? AttachmentType::ole
           : one().method == formats::AttachMethod::by_reference ? AttachmentType::by_reference
                                                                 : AttachmentType::by_value;
  }
  Text fileName() const override {
    if (one().message) {
      const auto& subject = one().message->subject;
      const auto name = mime::cleanName((subject.empty() ? one().displayName : subject) + u".eml");
      return name.empty() || name == u".eml" ? numberedName(number_) + u".eml" : name;
    }
    const auto name = mime::cleanName(one().fileName);
    return name.empty() ? mime::cleanName(one().displayName) : name;
  }
  Text displayName() const override {
    if (!one().displayName.empty()) return one().displayName;
    const auto name = fileName();
    return name.empty() ? numberedName(number_) : name;
  }
  std::string mediaType() const override {
    if (one().message) return "message/rfc822";
    return one().mimeType.empty() ? mediaTypeOf(fileName()) : mime::lowerCase(one().mimeType);
  }
  std::string contentId() const override { return one().contentId; }
  std::int64_t size() const override {
    if (!one().message) return static_cast<std::int64_t>(one().size);
    if (size_ < 0) {
      std::int64_t counted = 0;
      content()([&](std::string_view bytes) { counted += static_cast<std::int64_t>(bytes.size()); });
      size_ = counted;
    }
    return size_;
  }
  Content content() const override {
    return [container = container_, index = index_](const Sink& sink) {
      const auto& attachment = container->read.content.attachments[index];
      if (attachment.message) {
        formats::writeRfc5322(*attachment.message, sink);
      } else if (attachment.data) {
        attachment.data(sink);
      }
    };
  }
  Text doubt() const override {
    return container_->read.doubts.empty() ? Text{} : container_->read.doubts.front();
  }

 private:
  const formats::AttachmentContent& one() const { return container_->read.content.attachments[index_]; }

  std::shared_ptr<const Opened> container_;
  std::size_t index_;
  std::int32_t number_;
  mutable std::int64_t size_ = -1;
};

// By its type, or by the name that it has where the type was lost on the way.
bool isTnef(const mime::PartTree& tree, mime::PartIndex part) {
  if (tree[part].kind != mime::PartKind::leaf) return false;
  const auto type = tree.type(part);
  if (type.is("application/ms-tnef") || type.is("application/vnd.ms-tnef")) return true;
  return mime::equalWords(toUtf8(mime::givenName(tree.header(part))), "winmail.dat");
}

}  // namespace

AttachmentSources containedIn(const std::shared_ptr<const Message>& message, mime::PartIndex part,
                              std::int32_t number) {
  const auto& tree = message->tree();
  if (!isTnef(tree, part) || tree.body(part).size() > kLargest / 3 * 4) return {};
  auto opened = std::make_shared<Opened>();
  mime::Doubt doubt;
  opened->bytes = mime::decoded(tree[part].encoding, tree.body(part), &doubt);
  auto read = formats::readTnef(opened->bytes);
  if (!read) return {};
  opened->read = std::move(*read);
  if (!doubt.empty()) opened->read.doubts.emplace_back(doubt);
  AttachmentSources result;
  for (std::size_t i = 0; i < opened->read.content.attachments.size(); ++i)
    result.push_back(std::make_shared<ContainedSource>(opened, i, number + static_cast<std::int32_t>(i)));
  return result;
}

}  // namespace quillfile::mailbox
