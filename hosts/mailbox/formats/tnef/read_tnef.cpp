#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/tnef/attributes.h"
#include "hosts/mailbox/formats/tnef/property_stream.h"
#include "hosts/mailbox/formats/tnef/tnef.h"

namespace quillfile::formats {

using namespace tnef;

namespace {

// What the attributes say about one attachment, until all of them are there.
struct RawAttachment {
  std::string_view title;
  std::optional<std::string_view> data;
  std::optional<std::string_view> object;  // the interface's identifier and what it reads
  mapi::Properties properties;
};

std::string_view untilZero(std::string_view bytes) { return bytes.substr(0, bytes.find('\0')); }

// Attachments and recipients are counted over all messages of a stream: a few bytes can claim to be one.
constexpr std::size_t kMostParts = 20'000;

// What is left of a stream's bounds.
struct Bounds {
  std::size_t parts = kMostParts;
  TextRoom& room;
};

struct RawMessage {
  Bounds* left = nullptr;
  std::uint32_t page = mapi::kWestern;
  std::string_view subject, messageClass, messageId, body, from;
  std::optional<Time> sent, received;
  mapi::Properties properties;
  std::vector<mapi::Properties> recipients;
  std::vector<RawAttachment> attachments;
  std::vector<Text> doubts;

  void doubt(TextView why) {
    if (doubts.empty() || doubts.back() != why) doubts.emplace_back(why);
  }
  // An attachment begins with its rendering data; where that is missing, with whatever comes first.
  RawAttachment& attachment() {
    if (attachments.empty()) beginAttachment();
    return attachments.back();
  }
  // A text that is an attribute of its own.
  std::string_view text(std::string_view data) {
    if (left->room.take(data.size())) return untilZero(data);
    doubt(u"A text in the TNEF stream is too long");
    return {};
  }
  void beginAttachment() {
    if (takePart() || attachments.empty()) {
      attachments.emplace_back();
    } else {
      attachments.back() = {};
    }
  }
  bool takePart() {
    if (left->parts == 0) doubt(u"The TNEF stream has too many attachments and recipients");
    return left->parts > 0 && left->parts-- > 0;
  }
};

constexpr TextView kDamagedProperties = u"The properties in the TNEF stream are damaged";

std::optional<Time> dateOf(std::string_view bytes) {
  using namespace std::chrono;
  const year_month_day date(year(get16(bytes, 0)), month(get16(bytes, 2)), day(get16(bytes, 4)));
  if (bytes.size() < 12 || !date.ok() || get16(bytes, 0) < 1601) return std::nullopt;
  return sys_days(date) + hours(get16(bytes, 6) % 24) + minutes(get16(bytes, 8) % 60) +
         seconds(get16(bytes, 10) % 60);
}

// One row for each attribute that is read; others are passed over.
struct Row {
  Attribute id;
  void (*take)(RawMessage& message, std::string_view data);
};

void takeProperties(RawMessage& message, std::string_view data) {
  if (!readProperties(data, message.properties, message.left->room)) message.doubt(kDamagedProperties);
}

void takeRecipients(RawMessage& message, std::string_view data) {
  const auto add = [&](const mapi::Properties& row) {
    if (message.takePart()) message.recipients.push_back(row);
  };
  if (!readRows(data, message.left->room, add)) message.doubt(kDamagedProperties);
}

void takeAttachmentProperties(RawMessage& message, std::string_view data) {
  RawAttachment& attachment = message.attachment();
  const auto take = [&](mapi::Type type, std::string_view value) {
    if (type == mapi::Type::object) {
      attachment.object = value;
    } else if (!attachment.data || attachment.data->empty()) {
      attachment.data = value;
    }
  };
  if (!readProperties(data, attachment.properties, message.left->room, take))
    message.doubt(kDamagedProperties);
}

constexpr Row kRows[] = {
    {Attribute::code_page, [](RawMessage& to, std::string_view data) { to.page = get32(data, 0); }},
    {Attribute::from, [](RawMessage& to, std::string_view data) { to.from = data; }},
    {Attribute::subject, [](RawMessage& to, std::string_view data) { to.subject = to.text(data); }},
    {Attribute::message_class,
     [](RawMessage& to, std::string_view data) { to.messageClass = to.text(data); }},
    {Attribute::message_id, [](RawMessage& to, std::string_view data) { to.messageId = to.text(data); }},
    {Attribute::body, [](RawMessage& to, std::string_view data) { to.body = to.text(data); }},
    {Attribute::date_sent, [](RawMessage& to, std::string_view data) { to.sent = dateOf(data); }},
    {Attribute::date_received, [](RawMessage& to, std::string_view data) { to.received = dateOf(data); }},
    {Attribute::message_properties, takeProperties},
    {Attribute::recipients, takeRecipients},
    {Attribute::attach_render_data, [](RawMessage& to, std::string_view) { to.beginAttachment(); }},
    {Attribute::attach_title,
     [](RawMessage& to, std::string_view data) { to.attachment().title = to.text(data); }},
    {Attribute::attach_data, [](RawMessage& to, std::string_view data) { to.attachment().data = data; }},
    {Attribute::attachment, takeAttachmentProperties},
};

std::uint16_t checksumIn(std::string_view data, const Forget& forget) {
  std::uint16_t sum = 0;
  viewSource(data, forget)([&](std::string_view bytes) { sum = checksumOf(bytes, sum); });
  return sum;
}

// Each attribute is looked at once; its data stays where it is.
RawMessage readAttributes(std::string_view bytes, Bounds& left, const Forget& forget) {
  RawMessage result;
  result.left = &left;
  bytes.remove_prefix(std::min<std::size_t>(bytes.size(), 6));
  while (!bytes.empty()) {
    const auto level = static_cast<Level>(bytes[0]);
    if (level != Level::message && level != Level::attachment) {
      result.doubt(u"Something else follows the TNEF stream");
      break;
    }
    const auto id = static_cast<Attribute>(get32(bytes, 1));
    const std::uint64_t length = get32(bytes, 5);
    bytes.remove_prefix(std::min(bytes.size(), kAttributeHeader));
    const std::string_view data = bytes.substr(0, length);
    bytes.remove_prefix(data.size());
    if (data.size() < length || bytes.size() < kChecksum) {
      result.doubt(u"The TNEF stream is cut off");
    } else if (get16(bytes, 0) != checksumIn(data, forget)) {
      result.doubt(u"A checksum in the TNEF stream is wrong");
    }
    bytes.remove_prefix(std::min(bytes.size(), kChecksum));
    for (const Row& row : kRows) {
      if (row.id == id) row.take(result, data);
    }
  }
  return result;
}

// attFrom: four numbers, the display name, and "SMTP:" with the address.
Mailbox fromOf(std::string_view data, std::uint32_t page) {
  if (data.size() < 8) return {};
  const std::size_t name = get16(data, 4), address = get16(data, 6);
  const std::string_view rest = data.substr(8);
  Mailbox result{mapi::fromCodePage(untilZero(rest.substr(0, name)), page), {}};
  if (name <= rest.size()) {
    const Text typed = mapi::fromCodePage(untilZero(rest.substr(name, address)), page);
    if (typed.find(u'@') != Text::npos) result.address = from(typed, find(typed, u":") + 1);
  }
  return result;
}

void addData(AttachmentContent& to, std::string_view data, const Forget& forget) {
  to.size = data.size();
  to.data = viewSource(data, forget);
  to.range = data;
}

class Reader {
 public:
  Reader(const Forget& forget, TextRoom& room) : forget_(forget), left_{.room = room} {}

  std::optional<ReadMessage> read(std::string_view bytes, int depth) {
    if (bytes.size() < 6 || get32(bytes, 0) != kSignature) return std::nullopt;
    RawMessage raw = readAttributes(bytes, left_, forget_);
    ReadMessage result{.content = {}, .doubts = std::move(raw.doubts)};
    MessageContent& message = result.content;
    const std::uint32_t page = raw.page == 0 ? mapi::kWestern : raw.page;
    if (!raw.messageClass.empty()) message.messageClass = mapi::fromCodePage(raw.messageClass, page);
    message.subject = mapi::fromCodePage(raw.subject, page);
    message.textBody = mapi::fromCodePage(raw.body, page);
    message.sender = fromOf(raw.from, page);
    message.sent = raw.sent;
    message.received = raw.received;
    mapi::takeMessage(raw.properties, result, left_.room);
    for (const mapi::Properties& row : raw.recipients)
      message.recipients.push_back(mapi::takeRecipient(row, page));
    for (const RawAttachment& one : raw.attachments) {
      message.attachments.push_back(attachmentOf(one, page, depth, result.doubts));
    }
    return result;
  }

 private:
  AttachmentContent attachmentOf(const RawAttachment& raw, std::uint32_t page, int depth,
                                 std::vector<Text>& doubts) {
    AttachmentContent result = mapi::takeAttachment(raw.properties, page);
    if (result.fileName.empty()) result.fileName = mapi::fromCodePage(raw.title, page);
    if (result.displayName == result.fileName) result.displayName.clear();
    if (result.method == AttachMethod::embedded_message) {
      if (addMessage(raw, depth, result, doubts)) return result;
      result.method = AttachMethod::by_value;
    }
    if (raw.object && (result.method == AttachMethod::ole || !raw.data || raw.data->empty())) {
      addData(result, raw.object->substr(std::min(raw.object->size(), kMessageInterface.size())), forget_);
    } else if (raw.data) {
      addData(result, *raw.data, forget_);
    }
    return result;
  }

  bool addMessage(const RawAttachment& raw, int depth, AttachmentContent& to, std::vector<Text>& doubts) {
    if (!raw.object || raw.object->substr(0, kMessageInterface.size()) != kMessageInterface) return false;
    if (depth >= kMaxDepth) {
      doubts.emplace_back(u"The messages inside the message are nested too deeply");
      return false;
    }
    auto inner = read(raw.object->substr(kMessageInterface.size()), depth + 1);
    if (!inner) return false;
    doubts.insert(doubts.end(), inner->doubts.begin(), inner->doubts.end());
    to.message = std::make_shared<const MessageContent>(std::move(inner->content));
    return true;
  }

  const Forget& forget_;
  Bounds left_;
};

}  // namespace

std::optional<ReadMessage> readTnef(std::string_view bytes, const Forget& forget) {
  TextRoom room;
  return readTnef(bytes, forget, room);
}

std::optional<ReadMessage> readTnef(std::string_view bytes, const Forget& forget, TextRoom& room) {
  return Reader(forget, room).read(bytes, 1);
}

}  // namespace quillfile::formats
