#include "hosts/mailbox/outlook/attachment_source.h"

#include <sys/stat.h>

#include <fcntl.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <utility>

#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/embedded.h"
#include "hosts/mailbox/mime/name_doubt.h"
#include "hosts/mailbox/mime/scan.h"
#include "hosts/mailbox/outlook/media_type.h"
#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

std::string withoutBrackets(std::string value) {
  if (value.size() >= 2 && value.front() == '<' && value.back() == '>')
    return value.substr(1, value.size() - 2);
  return value;
}

class PartSource final : public AttachmentSource, public std::enable_shared_from_this<PartSource> {
 public:
  PartSource(std::shared_ptr<const Message> message, mime::PartIndex part, std::int32_t number,
             std::optional<DecodedPart> decoded)
      : message_(std::move(message)), part_(part), number_(number), decoded_(std::move(decoded)) {}

  AttachmentType type() const override {
    if (isMessage()) return AttachmentType::embedded_item;
    return tree().type(part_).is("message/external-body") ? AttachmentType::by_reference
                                                          : AttachmentType::by_value;
  }

  Text fileName() const override {
    auto name = mime::cleanName(mime::givenName(header()));
    if (!name.empty() || !isMessage()) return name;
    // In a subject a slash is part of the sentence, not the end of a folder's name.
    const auto sentence = replaceAll(replaceAll(embeddedSubject(), u"/", u"-"), u"\\", u"-");
    const auto subject = mime::cleanName(sentence + u".eml");
    return subject.empty() || subject == u".eml" ? numberedName(number_) + u".eml" : subject;
  }

  Text displayName() const override {
    if (auto description = header().text("Content-Description"); !description.empty()) return description;
    if (auto name = fileName(); !name.empty()) return name;
    return numberedName(number_);
  }

  std::string mediaType() const override {
    const auto type = tree().type(part_);
    return type.type + "/" + type.subtype;
  }
  std::string contentId() const override { return withoutBrackets(header().value("Content-ID")); }

  std::int64_t size() const override {
    measure();
    return size_;
  }
  Text doubt() const override {
    if (!tree()[part_].doubt.empty()) return Text{tree()[part_].doubt};
    if (const auto inName = mime::nameDoubt(header()); !inName.empty()) return Text{inName};
    measure();
    return Text{doubt_};
  }

  Content content() const override {
    return [self = shared_from_this()](const Sink& sink) { self->decode(sink); };
  }
  std::optional<mime::PartIndex> part() const override { return part_; }

 private:
  const mime::PartTree& tree() const { return message_->tree(); }
  mime::Header header() const { return tree().header(part_); }
  bool isMessage() const { return mime::isMessage(tree(), part_); }
  Text embeddedSubject() const {
    constexpr std::size_t looked = std::size_t{64} << 10;
    const auto children = tree().children(part_);
    if (!children.empty()) return tree().header(children.front()).text("Subject");
    const auto encoded = mime::decoded(tree()[part_].encoding, tree().body(part_).substr(0, looked));
    return mime::scan(encoded).header(0).text("Subject");
  }

  // Whoever decodes learns the size and the doubt on the way.
  void decode(const Sink& sink) const {
    std::int64_t size = 0;
    const auto& at = tree()[part_];
    const auto counted = [&](std::string_view bytes) {
      size += static_cast<std::int64_t>(bytes.size());
      sink(bytes);
    };
    if (const auto ready = std::exchange(decoded_, {})) {
      counted(ready->content.bytes());
      doubt_ = ready->doubt;
    } else {
      doubt_ = mime::decode(at.encoding, tree().body(part_), counted, message_->behind(at.body));
    }
    message_->requireAsOpened();
    size_ = size;
  }
  void measure() const {
    if (size_ < 0) decode([](std::string_view) {});
  }

  std::shared_ptr<const Message> message_;
  mime::PartIndex part_;
  std::int32_t number_;
  mutable std::optional<DecodedPart> decoded_;
  mutable std::int64_t size_ = -1;
  mutable mime::Doubt doubt_;
};

void readFile(const std::string& path, const Sink& sink) {
  const Descriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW)};
  if (!file) throw fromErrno(errno, "read", path);
  std::array<char, 65536> buffer;
  for (;;) {
    const auto count = read(file.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw fromErrno(errno, "read", path);
    if (count == 0) return;
    sink({buffer.data(), static_cast<std::size_t>(count)});
  }
}

class FileSource final : public AttachmentSource {
 public:
  FileSource(Text path, std::string bytesAt, Text displayName)
      : path_(std::move(path)), bytesAt_(std::move(bytesAt)), displayName_(std::move(displayName)) {
    struct stat status {};
    if (lstat(bytesAt_.c_str(), &status) != 0) throw fromErrno(errno, "attach", toUtf8(path_));
    if (!S_ISREG(status.st_mode))
      throw failure("Could not attach " + toUtf8(path_) + ": it is no regular file");
    size_ = status.st_size;
  }

  AttachmentType type() const override { return AttachmentType::by_value; }
  Text fileName() const override { return Text{from(path_, findLast(path_, u"/") + 1)}; }
  Text displayName() const override { return displayName_.empty() ? fileName() : displayName_; }
  std::string mediaType() const override { return mediaTypeOf(fileName()); }
  std::string contentId() const override { return {}; }
  std::int64_t size() const override { return size_; }
  Content content() const override {
    return [path = bytesAt_](const Sink& sink) { readFile(path, sink); };
  }
  Text doubt() const override { return {}; }

 private:
  Text path_;
  std::string bytesAt_;
  Text displayName_;
  std::int64_t size_ = 0;
};

}  // namespace

Text numberedName(std::int32_t number) {
  const auto digits = decimal(number);
  return u"ATT" + Text(5 - std::min<std::size_t>(5, digits.size()), u'0') + digits;
}

DecodedParts decodedAttachments(const Message& message) {
  DecodedParts decoded;
  const auto& tree = message.tree();
  for (const auto part : message.layout().attachments) {
    const auto encoding = tree[part].encoding;
    if (encoding != mime::Encoding::base64 && encoding != mime::Encoding::quoted_printable) continue;
    DecodedPart one{.part = part, .content = {}, .doubt = {}};
    one.content = mime::decodedWhole(encoding, tree.body(part), one.doubt);
    decoded.push_back(std::move(one));
  }
  return decoded;
}

std::shared_ptr<const AttachmentSource> partSource(std::shared_ptr<const Message> message,
                                                   mime::PartIndex part, std::int32_t number,
                                                   std::optional<DecodedPart> decoded) {
  return std::make_shared<PartSource>(std::move(message), part, number, std::move(decoded));
}

std::shared_ptr<const AttachmentSource> fileSource(Text path, std::string bytesAt, Text displayName) {
  return std::make_shared<FileSource>(std::move(path), std::move(bytesAt), std::move(displayName));
}

AttachmentSources attachmentsOf(const std::shared_ptr<const Message>& message, DecodedParts decoded) {
  AttachmentSources sources;
  auto ready = decoded.begin();
  for (const auto part : message->layout().attachments) {
    const auto number = static_cast<std::int32_t>(sources.size()) + 1;
    const bool isReady = ready != decoded.end() && ready->part == part;
    sources.push_back(
        partSource(message, part, number, isReady ? std::optional{std::move(*ready++)} : std::nullopt));
  }
  return sources;
}

}  // namespace quillfile::mailbox
