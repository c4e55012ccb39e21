// Shows and takes apart what the format readers read, and makes files of known contents for other programs to
// read.
//   formats_tool read FILE [FOLDER]           prints the message; writes its attachments into the folder,
//   numbered formats_tool write FORMAT OUT FILE...     a message with these files attached; FORMAT: msg,
//   tnef, eml formats_tool convert FORMAT OUT FILE      a message file of one format as another
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>

#include "hosts/mailbox/formats/import/rfc5322.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"

using namespace quillfile;
using namespace quillfile::formats;

namespace {

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

ByteSink sinkTo(std::ofstream& file) {
  return
      [&](std::string_view bytes) { file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); };
}

std::optional<ReadMessage> readAny(std::string_view bytes) {
  auto message = readMessageFile(bytes);
  return message ? message : readTnef(bytes);
}

int counter = 0;

void show(const MessageContent& message, const std::string& folder, const std::string& indent) {
  std::cout << indent << "class=" << toUtf8(message.messageClass) << "\n"
            << indent << "subject=" << toUtf8(message.subject) << "\n"
            << indent << "sender=" << toUtf8(message.sender.name) << " <" << toUtf8(message.sender.address)
            << ">\n"
            << indent << "recipients=" << message.recipients.size() << " text=" << message.textBody.size()
            << " html=" << message.html.bytes.size() << " rtf=" << message.rtfBody.size() << "\n";
  for (const AttachmentContent& one : message.attachments) {
    std::cout << indent << "attachment method=" << static_cast<int>(one.method) << " size=" << one.size
              << " name=" << toUtf8(one.fileName) << " display=" << toUtf8(one.displayName)
              << " type=" << one.mimeType << " cid=" << one.contentId << "\n";
    if (one.message) show(*one.message, folder, indent + "  ");
    if (folder.empty() || one.message) continue;
    std::ofstream file(folder + "/" + std::to_string(counter++), std::ios::binary);
    if (one.data) one.data(sinkTo(file));  // an empty one has none
  }
}

int write(const std::string& format, const std::string& path, const MessageContent& message) {
  std::ofstream file(path, std::ios::binary);
  const ByteSink sink = sinkTo(file);
  if (format == "msg") writeMessageFile(message, sink);
  if (format == "tnef") writeTnef(message, sink);
  if (format == "eml") writeRfc5322(message, sink);
  return file.good() ? 0 : 1;
}

MessageContent sample(const std::vector<std::string>& files) {
  MessageContent message{.subject = u"Ein Bericht \u2013 №1",
                         .sender = {u"Ada Müller", u"ada@example.org"},
                         .recipients = {{RecipientKind::to, {u"Bob", u"bob@example.org"}},
                                        {RecipientKind::cc, {u"", u"carol@example.org"}}},
                         .sent = Time(std::chrono::seconds(1'600'000'000)),
                         .messageId = u"<one@example.org>",
                         .textBody = u"Hello,\r\nhere they are.\r\n",
                         .html = {"<p>Hello, here they are.</p>", 65001}};
  for (const std::string& path : files) {
    AttachmentContent one{.fileName = fromUtf8(path.substr(path.rfind('/') + 1)),
                          .mimeType = "application/octet-stream"};
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    one.size = static_cast<std::uint64_t>(file.tellg());
    one.data = [path](const ByteSink& sink) {
      std::ifstream source(path, std::ios::binary);
      std::string piece(1 << 16, '\0');
      while (source.read(piece.data(), static_cast<std::streamsize>(piece.size())) || source.gcount() > 0) {
        sink(std::string_view(piece).substr(0, static_cast<std::size_t>(source.gcount())));
      }
    };
    message.attachments.push_back(std::move(one));
  }
  return message;
}

}  // namespace

int main(int count, char** words) {
  const std::vector<std::string> arguments(words + 1, words + count);
  if (arguments.size() >= 2 && arguments[0] == "read") {
    const std::string bytes = contentsOf(arguments[1]);
    const auto message = readAny(bytes);
    if (!message) return 1;
    show(message->content, arguments.size() > 2 ? arguments[2] : "", "");
    for (const Text& doubt : message->doubts) std::cout << "doubt=" << toUtf8(doubt) << "\n";
    return 0;
  }
  if (arguments.size() >= 3 && arguments[0] == "write") {
    return write(arguments[1], arguments[2], sample({arguments.begin() + 3, arguments.end()}));
  }
  if (arguments.size() == 4 && arguments[0] == "convert") {
    const std::string bytes = contentsOf(arguments[3]);
    const auto message = readAny(bytes);
    return message ? write(arguments[1], arguments[2], message->content) : 1;
  }
  std::cerr << "formats_tool read FILE [FOLDER] | write FORMAT OUT FILE... | convert FORMAT OUT FILE\n";
  return 2;
}
