#include "hosts/mailbox/formats/cfb/compound_writer.h"
#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/msg/names.h"

namespace quillfile::formats {

using namespace msg;
using mapi::Id;
using mapi::Type;

namespace {

constexpr std::uint32_t kReadableWritable = 0x06;

// The rows of one property stream. Long values go into streams of their own beside it.
class PropertyStream {
 public:
  PropertyStream(CompoundWriter& file, CompoundWriter::Storage storage, std::string header)
      : file_(file), storage_(storage), rows_(std::move(header)) {}

  void add(const mapi::Properties& properties) {
    for (const mapi::Property& property : properties.all()) add(property);
  }
  void addData(std::uint64_t size, ByteSource data) {
    const std::uint32_t tag = tagOf(Id::attach_data, Type::binary);
    addRow(tag, size, 0);
    file_.addStream(storage_, valueName(tag), size, std::move(data));
  }
  CompoundWriter::Storage addEmbeddedMessage() {
    const std::uint32_t tag = tagOf(Id::attach_data, Type::object);
    addRow(tag, 0xFFFFFFFF, 1);
    return file_.addStorage(storage_, valueName(tag));
  }
  void finish() { file_.addStream(storage_, kProperties, std::move(rows_)); }

 private:
  void addRow(std::uint32_t tag, std::uint64_t low, std::uint32_t high) {
    put32(rows_, tag);
    put32(rows_, kReadableWritable);
    put32(rows_, low);
    put32(rows_, high);
  }
  void add(const mapi::Property& property) {
    const std::uint32_t tag = tagOf(property.id, property.type);
    if (const auto* number = std::get_if<std::int64_t>(&property.value)) {
      const auto bits = static_cast<std::uint64_t>(*number);
      addRow(tag, bits, property.type == Type::time ? static_cast<std::uint32_t>(bits >> 32) : 0);
    } else if (const auto* text = std::get_if<Text>(&property.value)) {
      addRow(tag, text->size() * 2 + 2, 0);  // the zero at the end is counted, and not written
      file_.addStream(storage_, valueName(tag), utf16Bytes(*text));
    } else {
      const auto& bytes = std::get<std::string>(property.value);
      addRow(tag, bytes.size(), 0);
      file_.addStream(storage_, valueName(tag), bytes);
    }
  }

  CompoundWriter& file_;
  CompoundWriter::Storage storage_;
  std::string rows_;
};

std::string messageHeader(const MessageContent& message, int depth) {
  std::string header(8, '\0');
  for (int time = 0; time < 2; ++time) {  // the next number to give, then how many there are: the same
    put32(header, message.recipients.size());
    put32(header, message.attachments.size());
  }
  header.resize(depth == 1 ? kTopHeader : kEmbeddedHeader, '\0');
  return header;
}

void writeMessage(CompoundWriter& file, CompoundWriter::Storage storage, const MessageContent& message,
                  int depth);

void writeAttachment(CompoundWriter& file, CompoundWriter::Storage storage,
                     const AttachmentContent& attachment, std::size_t index, int depth) {
  PropertyStream properties(file, storage, std::string(kPartHeader, '\0'));
  properties.add(mapi::attachmentProperties(attachment, index));
  if (attachment.message) {
    writeMessage(file, properties.addEmbeddedMessage(), *attachment.message, depth + 1);
  } else if (attachment.method != AttachMethod::by_reference) {
    properties.addData(attachment.size, attachment.data);
  }
  properties.finish();
}

void writeMessage(CompoundWriter& file, CompoundWriter::Storage storage, const MessageContent& message,
                  int depth) {
  if (depth > kMaxDepth) throw failures::tooDeep();
  PropertyStream properties(file, storage, messageHeader(message, depth));
  properties.add(mapi::messageProperties(message));
  properties.finish();
  for (std::size_t i = 0; i < message.recipients.size(); ++i) {
    const auto part = file.addStorage(storage, Text(kRecipient) + hex8(static_cast<std::uint32_t>(i)));
    PropertyStream row(file, part, std::string(kPartHeader, '\0'));
    row.add(mapi::recipientProperties(message.recipients[i], i));
    row.finish();
  }
  for (std::size_t i = 0; i < message.attachments.size(); ++i) {
    const auto part = file.addStorage(storage, Text(kAttachment) + hex8(static_cast<std::uint32_t>(i)));
    writeAttachment(file, part, message.attachments[i], i, depth);
  }
}

}  // namespace

void writeMessageFile(const MessageContent& message, const ByteSink& sink) {
  CompoundWriter file(kMessageClassId);
  // The three tables of named properties must be there; they are empty, for no property here has a name.
  const auto named = file.addStorage(CompoundWriter::kRoot, kNamedProperties);
  for (const std::uint32_t table : {0x00020102, 0x00030102, 0x00040102})
    file.addStream(named, valueName(table), {});
  writeMessage(file, CompoundWriter::kRoot, message, 1);
  file.write(sink);
}

}  // namespace quillfile::formats
