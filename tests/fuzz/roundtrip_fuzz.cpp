// A message made of the input's bytes, written in each format and read back: the same message.
#include <cstdint>

#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::formats;

namespace {

// Hands out the input piece by piece.
class Input {
 public:
  explicit Input(std::string_view bytes) : left_(bytes) {}
  std::uint8_t number() {
    const auto piece = take(1);
    return piece.empty() ? 0 : static_cast<std::uint8_t>(piece[0]);
  }
  std::string bytes() { return std::string(take(std::size_t{number()} * (number() % 8 == 0 ? 64 : 1))); }
  // A text of letters of many scripts, never a half of a pair, never the zero that ends texts in the files.
  Text text() {
    Text result;
    for (const char byte : take(number() % 40)) {
      const auto unit = static_cast<unsigned char>(byte);
      result += static_cast<char16_t>(unit < 0x20 ? 0x4E00 + unit : unit * (unit > 0xC0 ? 64 : 1));
    }
    return result;
  }
  bool ended() const { return left_.empty(); }

 private:
  std::string_view take(std::size_t length) {
    const std::string_view result = left_.substr(0, length);
    left_.remove_prefix(result.size());
    return result;
  }
  std::string_view left_;
};

MessageContent message(Input& input, int depth) {
  MessageContent result{.messageClass = u"IPM." + input.text(), .subject = u"s" + input.text()};
  result.sender = {u"n" + input.text(), u"a@b" + input.text()};
  result.textBody = input.text();
  result.html = {input.bytes(), input.number() % 2 == 0 ? 65001u : 1252u};
  result.rtfBody = input.bytes();
  result.unread = input.number() % 2 == 0;
  result.draft = input.number() % 2 == 0;
  result.sent = Time(std::chrono::seconds(std::int64_t{10'000'019} * input.number()));
  for (int count = input.number() % 4; count > 0; --count) {
    result.recipients.push_back(
        {static_cast<RecipientKind>(1 + input.number() % 3), {u"n" + input.text(), u"c@d" + input.text()}});
  }
  for (int count = input.number() % 6; count > 0 && !input.ended(); --count) {
    AttachmentContent one{.fileName = u"f" + input.text(), .displayName = u"d" + input.text()};
    if (depth < 4 && input.number() % 4 == 0) {
      one.method = AttachMethod::embedded_message;
      one.message = std::make_shared<const MessageContent>(message(input, depth + 1));
    } else {
      const std::string bytes = input.bytes();
      one.size = bytes.size();
      one.data = ownedSource(bytes);
    }
    result.attachments.push_back(std::move(one));
  }
  return result;
}

void compare(const MessageContent& read, const MessageContent& given) {
  require(read.messageClass == given.messageClass && read.subject == given.subject);
  require(read.sender == given.sender && read.recipients == given.recipients);
  require(read.textBody == given.textBody && read.rtfBody == given.rtfBody);
  require(read.html.bytes == given.html.bytes);
  require(read.unread == given.unread && read.draft == given.draft && read.sent == given.sent);
  require(read.attachments.size() == given.attachments.size());
  for (std::size_t i = 0; i < read.attachments.size(); ++i) {
    const AttachmentContent &one = read.attachments[i], &other = given.attachments[i];
    require(one.fileName == other.fileName && one.size == other.size);
    require(one.displayName == other.displayName);
    require(gathered(one.data) == gathered(other.data));
    require((one.message != nullptr) == (other.message != nullptr));
    if (one.message) compare(*one.message, *other.message);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(std::string_view(reinterpret_cast<const char*>(data), size));
  const MessageContent given = message(input, 1);
  const std::string file = gathered([&](const ByteSink& sink) { writeMessageFile(given, sink); });
  const std::string stream = gathered([&](const ByteSink& sink) { writeTnef(given, sink); });
  const auto fromFile = readMessageFile(file), fromStream = readTnef(stream);
  require(fromFile && fromFile->doubts.empty() && fromStream && fromStream->doubts.empty());
  compare(fromFile->content, given);
  compare(fromStream->content, given);
  return 0;
}
