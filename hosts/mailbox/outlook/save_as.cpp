#include "hosts/mailbox/outlook/save_as.h"

#include <algorithm>

#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/outlook/draft_text.h"
#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/outlook/message_content.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/maildir_name.h"

namespace quillfile::mailbox {
namespace {

constexpr std::string_view personalFields[] = {"From", "To", "Cc", "Bcc", "Reply-To", "Date", "Subject"};

// The headers that a person wants to see, decoded, and the names of the attachments.
std::vector<std::pair<Text, Text>> shownHeader(MailboxItem& item) {
  std::vector<std::pair<Text, Text>> rows;
  const auto header = item.message()->header();
  for (const auto name : personalFields)
    if (auto value = header.text(name); !value.empty()) rows.emplace_back(fromUtf8(name), std::move(value));
  Text names;
  for (const auto& source : item.sources()) names += (names.empty() ? u"" : u", ") + source->displayName();
  if (!names.empty()) rows.emplace_back(u"Attachments", std::move(names));
  return rows;
}

// UTF-8 with a mark in front, so that every editor reads it rightly.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

Content textFile(MailboxItem& item) {
  Text text;
  for (const auto& [name, value] : shownHeader(item)) text += fill(u"{}: {}\r\n", name, value);
  text += u"\r\n";
  text += item.body(BodyKind::plain);
  return [bytes = std::string{byteOrderMark} + toUtf8(replaceAll(text, u"\r\n", u"\n"))](const Sink& sink) {
    sink(bytes);
  };
}

std::string percentDecoded(std::string_view text) {
  std::string result;
  const auto digit = [](char c) {
    return c >= '0' && c <= '9'                     ? c - '0'
           : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20) - 'a' + 10
                                                    : -1;
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0) {
      result += static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2]));
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

// Writes `html`, with the pictures that it shows by "cid:" put in their place as "data:" addresses. They are
// encoded as they are written, so that no picture is ever whole in memory.
class StandingAlone {
 public:
  StandingAlone(std::string html, AttachmentSources sources)
      : html_(std::move(html)), sources_(std::move(sources)) {}

  void operator()(const Sink& sink) const {
    std::string_view rest = html_;
    while (!rest.empty()) {
      const auto at = rest.find("cid:");
      if (at == std::string_view::npos) break;
      const auto end = std::min(rest.find_first_of("\"'>) \t\r\n", at), rest.size());
      const auto* picture = find(percentDecoded(rest.substr(at + 4, end - at - 4)));
      sink(rest.substr(0, picture ? at : end));
      if (picture) embed(*picture, sink);
      rest.remove_prefix(end);
    }
    sink(rest);
  }

 private:
  const AttachmentSource* find(const std::string& id) const {
    for (const auto& source : sources_)
      if (!id.empty() && source->contentId() == id) return source.get();
    return nullptr;
  }
  static void embed(const AttachmentSource& picture, const Sink& sink) {
    sink("data:" + picture.mediaType() + ";base64,");
    mime::Base64Encoder encoder{"", sink};
    picture.content()([&](std::string_view bytes) { encoder.write(bytes); });
    encoder.finish();
  }

  std::string html_;
  AttachmentSources sources_;
};

Content page(MailboxItem& item) {
  Text block = u"<table style=\"font-family: sans-serif; font-size: 90%\">\r\n";
  for (const auto& [name, value] : shownHeader(item))
    block +=
        fill(u"<tr><th align=\"left\" valign=\"top\">{}</th><td>{}</td></tr>\r\n", name, textToHtml(value));
  block += u"</table>\r\n<hr>\r\n";
  Text html = item.body(BodyKind::html);
  if (html.empty()) {
    html = fill(u"<html><head><title>{}</title></head><body>\r\n<div>{}</div>\r\n</body></html>\r\n",
                textToHtml(item.subject()), textToHtml(item.body(BodyKind::plain)));
  }
  html.insert(bodyStart(html), block);
  // In front of whatever the message's own markup says of its charset; the byte order mark settles it.
  return StandingAlone{std::string{byteOrderMark} + toUtf8(html), item.sources()};
}

Content messageFile(MailboxItem& item) {
  return [opened = item.message()](const Sink& sink) {
    const auto& message = opened->stored();
    mime::decode(mime::Encoding::identity, message.bytes(), sink,
                 message.behind({0, message.bytes().size()}));
    message.requireAsOpened();
  };
}

// The item with its flags, as .msg and .tnef hold it.
std::shared_ptr<const formats::MessageContent> fullContent(MailboxItem& item) {
  auto content = std::make_shared<formats::MessageContent>(messageContent(item.message()));
  content->unread = item.unRead();
  const auto location = item.isNew() ? std::nullopt : item.folder()->find(item.unique());
  content->draft = item.isNew() || (location && hasFlag(parseMaildirName(location->fileName).flags, 'D'));
  return content;
}

Content outlookMessageFile(MailboxItem& item) {
  return [content = fullContent(item)](const Sink& sink) { formats::writeMessageFile(*content, sink); };
}

Content tnefStream(MailboxItem& item) {
  return [content = fullContent(item)](const Sink& sink) { formats::writeTnef(*content, sink); };
}

struct Format {
  SaveAsType type;
  Content (*content)(MailboxItem& item);
};
constexpr Format formats[] = {
    {SaveAsType::text, textFile},      {SaveAsType::html, page},
    {SaveAsType::rfc822, messageFile}, {SaveAsType::message, outlookMessageFile},
    {SaveAsType::tnef, tnefStream},
};

}  // namespace

void saveAs(MailboxItem& item, TextView path, SaveAsType type) {
  for (const auto& format : formats) {
    if (format.type != type) continue;
    const auto file = item.clientOf().setup().batch.files().save(toUtf8(path), format.content(item));
    file->item = toUtf8(item.entryId());
    return;
  }
  throw failure("Could not save the e-mail as " + toUtf8(path) + ": that format cannot be written");
}

}  // namespace quillfile::mailbox
