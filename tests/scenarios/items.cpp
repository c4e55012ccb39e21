#include "tests/scenarios/items.h"

namespace quillfile {

ItemData notedMail(const Stage& stage, TextView subject, const Text& format, const std::vector<Text>& files) {
  ItemData mail{.subject = Text{subject}, .format = format, .body = u"Hello"};
  if (format == u"HTML") mail.htmlBody = u"<html><body>Hello";
  if (format == u"RTF") mail.rtfBody = u"{\\rtf1 Hello";
  for (const auto& file : files) {
    const Text link = stage.linkTo(file);
    mail.body += fill(
        format == u"RTF" ? u"\r\nAttachment saved to <{}>\r\n" : u"\r\n\r\nAttachment saved to <{}>", link);
    if (format == u"HTML")
      mail.htmlBody += fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link);
    if (format == u"RTF")
      mail.rtfBody += fill(u"\\par\r\nAttachment saved to <{}>\\par", replaceAll(link, u"\\", u"\\\\"));
  }
  if (format == u"HTML") mail.htmlBody += u"</body></html>";
  if (format == u"RTF") mail.rtfBody += u"}";
  return mail;
}

}  // namespace quillfile
