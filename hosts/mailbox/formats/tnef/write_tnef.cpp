#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/tnef/attributes.h"
#include "hosts/mailbox/formats/tnef/property_stream.h"
#include "hosts/mailbox/formats/tnef/tnef.h"

namespace quillfile::formats {

using namespace tnef;

namespace {

// A length of bytes, and what gives them when they are wanted: a stream's lengths stand before its contents,
// so the messages in a message are measured first and written after.
struct Content {
  std::uint64_t length = 0;
  ByteSource give;
};

// Writes attributes. Without a sink it only counts, and no source is asked for its bytes.
class Stream {
 public:
  explicit Stream(const ByteSink* sink) : sink_(sink) {}

  void raw(std::string_view bytes) {
    length_ += bytes.size();
    if (sink_ != nullptr) (*sink_)(bytes);
  }
  void attribute(Level level, Attribute id, const Content& content) {
    if (content.length > 0xFFFFFFFF) throw failures::tooLarge();
    std::string header;
    put(header, static_cast<std::uint8_t>(level));
    put32(header, static_cast<std::uint32_t>(id));
    put32(header, content.length);
    raw(header);
    length_ += content.length;
    std::uint16_t sum = 0;
    if (sink_ != nullptr) {
      giveExactly(content.give, content.length, [&](std::string_view bytes) {
        sum = checksumOf(bytes, sum);
        (*sink_)(bytes);
      });
    }
    std::string end;
    put16(end, sum);
    raw(end);
  }
  void attribute(Level level, Attribute id, const std::string& bytes) {
    attribute(level, id, Content{bytes.size(), viewSource(bytes)});
  }
  std::uint64_t length() const { return length_; }

 private:
  const ByteSink* sink_;
  std::uint64_t length_ = 0;
};

std::string zeroEnded(TextView text) { return mapi::toCodePage(text, mapi::kWestern) + '\0'; }

// A date as seven numbers: year, month, day, hour, minute, second, day of the week from 0 for Sunday.
std::string dateBytes(Time time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::string result;
  put16(result, static_cast<std::uint64_t>(static_cast<int>(date.year())));
  put16(result, static_cast<unsigned>(date.month()));
  put16(result, static_cast<unsigned>(date.day()));
  put16(result, static_cast<std::uint64_t>(clock.hours().count()));
  put16(result, static_cast<std::uint64_t>(clock.minutes().count()));
  put16(result, static_cast<std::uint64_t>(clock.seconds().count()));
  put16(result, std::chrono::weekday(day).c_encoding());
  return result;
}

std::string recipientRows(const MessageContent& message) {
  std::string result;
  put32(result, message.recipients.size());
  for (std::size_t i = 0; i < message.recipients.size(); ++i) {
    result += propertyBytes(mapi::recipientProperties(message.recipients[i], i));
  }
  return result;
}

void writeMessage(const MessageContent& message, int depth, Stream& to);

// The properties of an attachment, and behind them the message that it is, if it is one.
Content attachmentProperties(const AttachmentContent& attachment, std::size_t index, int depth) {
  const mapi::Properties properties = mapi::attachmentProperties(attachment, index);
  if (!attachment.message) {
    std::string bytes = propertyBytes(properties);
    return {bytes.size(), ownedSource(std::move(bytes))};
  }
  Stream measured(nullptr);
  writeMessage(*attachment.message, depth + 1, measured);
  const std::uint64_t length = kMessageInterface.size() + measured.length();
  const std::string front = propertyBytes(properties, 1) + objectHeader(mapi::Id::attach_data, length);
  const std::string end(padding(length), '\0');
  return {front.size() + length + end.size(), [=, inner = attachment.message](const ByteSink& sink) {
            sink(front);
            sink(kMessageInterface);
            Stream stream(&sink);
            writeMessage(*inner, depth + 1, stream);
            sink(end);
          }};
}

void writeAttachment(const AttachmentContent& attachment, std::size_t index, int depth, Stream& to) {
  std::string rendering;
  put16(rendering, attachment.method == AttachMethod::ole ? 2 : 1);
  put32(rendering, 0xFFFFFFFF);  // no place in the text
  put32(rendering, 0);           // no size on the screen
  put32(rendering, 0);
  to.attribute(Level::attachment, Attribute::attach_render_data, rendering);
  to.attribute(Level::attachment, Attribute::attach_title, zeroEnded(attachment.fileName));
  // An attribute without bytes stops some readers: an empty file has none.
  if (!attachment.message && attachment.size > 0) {
    to.attribute(Level::attachment, Attribute::attach_data, Content{attachment.size, attachment.data});
  }
  to.attribute(Level::attachment, Attribute::attachment, attachmentProperties(attachment, index, depth));
}

void writeMessage(const MessageContent& message, int depth, Stream& to) {
  if (depth > kMaxDepth) throw failures::tooDeep();
  std::string start, version, pages;
  put32(start, kSignature);
  put16(start, 1);  // the key, which would tie the stream to the message that carries it
  to.raw(start);
  put32(version, 0x00010000);
  to.attribute(Level::message, Attribute::version, version);
  put32(pages, mapi::kWestern);
  put32(pages, 0);
  to.attribute(Level::message, Attribute::code_page, pages);
  to.attribute(Level::message, Attribute::message_class, zeroEnded(message.messageClass));
  to.attribute(Level::message, Attribute::subject, zeroEnded(message.subject));
  if (message.sent) to.attribute(Level::message, Attribute::date_sent, dateBytes(*message.sent));
  if (message.received) to.attribute(Level::message, Attribute::date_received, dateBytes(*message.received));
  to.attribute(Level::message, Attribute::message_properties,
               propertyBytes(mapi::messageProperties(message)));
  to.attribute(Level::message, Attribute::recipients, recipientRows(message));
  for (std::size_t i = 0; i < message.attachments.size(); ++i) {
    writeAttachment(message.attachments[i], i, depth, to);
  }
}

}  // namespace

void writeTnef(const MessageContent& message, const ByteSink& sink) {
  BufferedSink buffer(sink);
  const ByteSink out = [&](std::string_view bytes) { buffer.write(bytes); };
  Stream stream(&out);
  writeMessage(message, 1, stream);
  buffer.flush();
}

}  // namespace quillfile::formats
