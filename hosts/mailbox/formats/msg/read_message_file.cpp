#include <memory>

#include "hosts/mailbox/formats/cfb/compound_file.h"
#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/msg/names.h"
#include "hosts/mailbox/formats/msg/storage_copy.h"

namespace quillfile::formats {

using namespace msg;
using mapi::Id;
using mapi::Type;

namespace {

using Index = CompoundFile::Index;

class Reader {
 public:
  Reader(std::shared_ptr<const CompoundFile> file, std::uint64_t budget)
      : file_(std::move(file)), budget_(budget) {}

  ReadMessage message(Index storage, std::size_t header, int depth) {
    ReadMessage result;
    const mapi::Properties properties = propertiesOf(storage, header, result.doubts);
    mapi::takeMessage(properties, result, room_);
    const std::uint32_t page = mapi::codePage(properties, mapi::kWestern);
    for (const Index child : file_->entry(storage).children) {
      const CompoundFile::Entry& entry = file_->entry(child);
      if (!entry.storage) continue;
      if (startsWith(entry.name, kRecipient)) {
        result.content.recipients.push_back(
            mapi::takeRecipient(propertiesOf(child, kPartHeader, result.doubts), page));
      } else if (startsWith(entry.name, kAttachment)) {
        addAttachment(child, page, depth, result);
      }
    }
    return result;
  }

 private:
  static constexpr TextView kDamaged = u"The message file is damaged";

  // A stream's bytes. In an honest file no two streams share a byte, so all of them together are shorter than
  // the file; what goes past that is not read.
  std::string bytesOf(Index stream, std::vector<Text>& doubts) {
    const std::uint64_t size = file_->entry(stream).size;
    std::string result;
    if (size > budget_ || !room_.take(size) ||
        !file_->read(stream, [&](std::string_view bytes) { result += bytes; })) {
      doubts.emplace_back(kDamaged);
    }
    budget_ -= std::min<std::uint64_t>(budget_, size);
    return result;
  }

  mapi::Properties propertiesOf(Index storage, std::size_t header, std::vector<Text>& doubts) {
    mapi::Properties result;
    const auto stream = file_->find(storage, kProperties);
    if (!stream || file_->entry(*stream).storage) {
      doubts.emplace_back(kDamaged);
      return result;
    }
    const std::string rows = bytesOf(*stream, doubts);
    for (std::size_t at = header; at + kRow <= rows.size(); at += kRow) {
      addProperty(storage, get32(rows, at), get64(rows, at + 8), result, doubts);
    }
    return result;
  }

  void addProperty(Index storage, std::uint32_t tag, std::uint64_t value, mapi::Properties& to,
                   std::vector<Text>& doubts) {
    const auto number = static_cast<std::uint16_t>(tag >> 16);
    const auto id = static_cast<Id>(number);
    const auto type = static_cast<Type>(tag & 0xFFFF);
    if (!mapi::isKnown(number) || id == Id::attach_data || to.has(id)) return;
    switch (type) {
      case Type::int16:
        to.add(id, type, static_cast<std::int16_t>(value));
        break;
      case Type::int32:
        to.add(id, type, static_cast<std::int32_t>(value));
        break;
      case Type::boolean:
        to.add(id, type, static_cast<std::int64_t>((value & 0xFFFF) != 0));
        break;
      case Type::int64:
      case Type::time:
        to.add(id, type, static_cast<std::int64_t>(value));
        break;
      case Type::unicode:
      case Type::string8:
      case Type::binary: {
        const auto stream = file_->find(storage, valueName(tag));
        if (!stream) {
          doubts.emplace_back(kDamaged);
          break;
        }
        std::string bytes = bytesOf(*stream, doubts);
        if (type == Type::unicode) {
          to.add(id, type, utf16Text(bytes));
        } else {
          to.add(id, type, std::move(bytes));
        }
        break;
      }
      default:
        break;  // of the properties that are read, none has another type
    }
  }

  void addAttachment(Index storage, std::uint32_t page, int depth, ReadMessage& to) {
    AttachmentContent attachment = mapi::takeAttachment(propertiesOf(storage, kPartHeader, to.doubts), page);
    const auto object = file_->find(storage, valueName(tagOf(Id::attach_data, Type::object)));
    if (object && file_->entry(*object).storage) {
      if (attachment.method == AttachMethod::embedded_message) {
        addEmbedded(*object, attachment, depth, to.doubts);
      } else {
        addObject(*object, attachment, to.doubts);
      }
    } else {
      if (attachment.method == AttachMethod::embedded_message) attachment.method = AttachMethod::by_value;
      addData(storage, attachment, to.doubts);
    }
    to.content.attachments.push_back(std::move(attachment));
  }

  void addEmbedded(Index storage, AttachmentContent& attachment, int depth, std::vector<Text>& doubts) {
    if (depth >= kMaxDepth) {
      doubts.emplace_back(u"The messages inside the message are nested too deeply");
      return;
    }
    ReadMessage inner = message(storage, kEmbeddedHeader, depth + 1);
    doubts.insert(doubts.end(), inner.doubts.begin(), inner.doubts.end());
    attachment.message = std::make_shared<const MessageContent>(std::move(inner.content));
  }

  void addObject(Index storage, AttachmentContent& attachment, std::vector<Text>& doubts) {
    const std::uint64_t size = sizeOfStreams(*file_, storage);
    if (size > budget_) {
      doubts.emplace_back(kDamaged);
      return;
    }
    budget_ -= size;
    const auto copy = [file = file_, storage](const ByteSink& sink) { copyStorage(*file, storage, sink); };
    copy([&](std::string_view bytes) { attachment.size += bytes.size(); });
    attachment.data = copy;
  }

  void addData(Index storage, AttachmentContent& attachment, std::vector<Text>& doubts) {
    const auto stream = file_->find(storage, valueName(tagOf(Id::attach_data, Type::binary)));
    if (!stream) {
      if (attachment.method != AttachMethod::by_reference) doubts.emplace_back(kDamaged);
      return;
    }
    const std::uint64_t size = file_->entry(*stream).size;
    if (size > budget_) {
      doubts.emplace_back(kDamaged);
      return;
    }
    budget_ -= size;
    attachment.data = [file = file_, index = *stream](const ByteSink& sink) { file->read(index, sink); };
    if (!file_->read(*stream, [&](std::string_view bytes) { attachment.size += bytes.size(); })) {
      doubts.emplace_back(kDamaged);
    }
  }

  std::shared_ptr<const CompoundFile> file_;
  std::uint64_t budget_;
  TextRoom room_;
};

}  // namespace

std::optional<ReadMessage> readMessageFile(std::string_view bytes, const Forget& forget) {
  auto file = CompoundFile::open(bytes, forget);
  if (!file || !file->find(CompoundFile::kRoot, kProperties)) return std::nullopt;
  Reader reader(std::make_shared<const CompoundFile>(std::move(*file)), bytes.size());
  return reader.message(CompoundFile::kRoot, kTopHeader, 1);
}

}  // namespace quillfile::formats
