#include "core/saving/rename_keywords.h"

#include "core/saving/naming.h"

namespace quillfile {
namespace {

constexpr Position longestName = 127;

// A template on its way to a name. A keyword is found and replaced ignoring case, wherever it stands.
class Template {
 public:
  Template(LetterCase& letters, Text text) : letters_(letters), text_(std::move(text)) {}
  bool holds(TextView keyword) const { return findIgnoringCase(letters_, text_, keyword) > 0; }
  void replace(TextView keyword, TextView value) {
    text_ = replaceAllIgnoringCase(letters_, text_, keyword, value);
  }
  const Text& text() const { return text_; }

 private:
  LetterCase& letters_;
  Text text_;
};

Text receivedDate(const SavingPorts& ports, Item& item) {
  const auto date = ports.dates.general(item.receivedTime());
  return replaceAll(replaceAll(date, u"/", u"-"), u":", u"-");
}

Text senderAddress(const SavingPorts& ports, SafeItem& safe) {
  const auto sender = safe.sender();
  return sender && sender->type() == u"EX" ? ports.mailHelper.smtpAddress(sender) : safe.senderEmailAddress();
}

}  // namespace

Text renameWithKeywords(const SavingPorts& ports, const Ref<Item>& item, TextView name) {
  Template result{ports.letters, ports.settings.text(u"AutomaticRenameKeywords")};
  ports.trace(u"SaveAttachment", u"Attachment Keywords: {}", result.text());
  result.replace(u"<received date>", receivedDate(ports, *item));
  if (result.holds(u"<sender name>"))
    result.replace(u"<sender name>", ports.mailHelper.wrap(item)->senderName());
  if (result.holds(u"<sender address>"))
    result.replace(u"<sender address>", senderAddress(ports, *ports.mailHelper.wrap(item)));
  const auto subject = ports.utilities.cleanFileName(item->subject());
  const auto room = longestName - static_cast<Position>(result.text().size());
  if (room > 0) result.replace(u"<subject>", cutLeft(subject, room));
  const auto [base, extension] = partsOf(name);
  result.replace(u"<attachment name>", base);
  auto renamed = ports.utilities.cleanFileName(replaceAll(result.text() + Text{extension}, u"#", u"-"));
  return renamed.empty() ? ports.utilities.cleanFileName(name) : renamed;
}

}  // namespace quillfile
