#include <algorithm>

#include "hosts/mailbox/formats/import/mime_entity.h"
#include "hosts/mailbox/formats/import/rfc5322.h"

namespace quillfile::formats {

void writeRfc5322(const MessageContent& message, const ByteSink& sink, std::string_view lineEnd) {
  const Entity whole = EntityWriter(lineEnd).message(message);
  BufferedSink buffer(sink);
  const ByteSink out = [&](std::string_view bytes) { buffer.write(bytes); };
  out(whole.fields);
  out(lineEnd);
  whole.body(out);
  buffer.flush();
}

namespace {

bool isMail(TextView messageClass) {
  for (const TextView mail : {u"IPM.Note", u"IPM.Post", u"IPM.Microsoft Mail.Note", u"REPORT."}) {
    if (startsWith(messageClass, mail)) return true;
  }
  return false;
}

void addOtherClasses(const MessageContent& message, std::vector<Text>& to) {
  const Text loss =
      fill(u"Of an item of the class \"{}\" only the texts and the attachments are carried over",
           message.messageClass);
  if (!isMail(message.messageClass) && std::find(to.begin(), to.end(), loss) == to.end()) to.push_back(loss);
  for (const AttachmentContent& one : message.attachments)
    if (one.message) addOtherClasses(*one.message, to);
}

}  // namespace

std::vector<Text> leftBehind(const ReadMessage& message) {
  std::vector<Text> result = message.doubts;
  addOtherClasses(message.content, result);
  return result;
}

}  // namespace quillfile::formats
