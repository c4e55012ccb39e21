#include "hosts/windows/outlook/mail_helper.h"

#include "core/module/procedure.h"
#include "hosts/windows/com/failure.h"
#include "hosts/windows/outlook/item.h"

namespace quillfile::windows {

namespace {

constexpr const char16_t* safeItemClass = u"TSOutlook.TSSafeMailItem";
constexpr const char16_t* utilitiesClass = u"TSOutlook.TSMAPIUtils";

bool registered(const Text& progId) {
  CLSID classId;
  return SUCCEEDED(CLSIDFromProgID(wide(progId), &classId));
}

const char16_t* propertyOf(BodyKind kind) {
  switch (kind) {
    case BodyKind::html:
      return u"HTMLBody";
    case BodyKind::rtf:
      return u"RTFBody";
    default:
      return u"Body";
  }
}

Ref<Attachments> attachmentsOf(const Object& object) {
  return adapt<OutlookAttachments>(object.get(u"Attachments").object());
}

Ref<AddressEntry> senderOf(const Object& object) {
  return adapt<OutlookAddressEntry>(object.get(u"Sender").object());
}

}  // namespace

LibrarySafeItem::LibrarySafeItem(const Object& item) : Adapted(Object::create(safeItemClass)) {
  object().put(u"Item", item.ptr());
}

Ref<AddressEntry> LibrarySafeItem::sender() { return senderOf(object()); }
Ref<Attachments> LibrarySafeItem::attachments() { return attachmentsOf(object()); }
Text LibrarySafeItem::body(BodyKind kind) { return object().get(propertyOf(kind)).text(); }
void LibrarySafeItem::setBody(BodyKind kind, TextView text) { object().put(propertyOf(kind), text); }
void LibrarySafeItem::saveAs(TextView path, SaveAsType type) {
  object().run(u"SaveAs", path, static_cast<std::int32_t>(type));
}

Ref<AddressEntry> PlainSafeItem::sender() { return senderOf(object()); }
Ref<Attachments> PlainSafeItem::attachments() { return attachmentsOf(object()); }
Text PlainSafeItem::body(BodyKind kind) { return object().get(propertyOf(kind)).text(); }

void PlainSafeItem::setBody(BodyKind kind, TextView text) {
  // The client itself keeps rich text as bytes.
  object().put(propertyOf(kind), kind == BodyKind::rtf ? Variant::bytes(text) : Variant{text});
}

void PlainSafeItem::saveAs(TextView path, SaveAsType type) {
  if (type == SaveAsType::rfc822 || type == SaveAsType::tnef) raise(E_NOTIMPL);
  object().run(u"SaveAs", path, static_cast<std::int32_t>(type));
}

Ref<SafeItem> OutlookMailHelper::wrap(const Ref<Item>& item) {
  if (registered(safeItemClass)) return std::make_shared<LibrarySafeItem>(behind(item));
  return std::make_shared<PlainSafeItem>(behind(item));
}

Text OutlookMailHelper::smtpAddress(const Ref<AddressEntry>& sender) {
  const Object entry = behind(sender);
  if (registered(utilitiesClass)) {
    return Object::create(utilitiesClass).call(u"GetSMTPAddress", entry.ptr()).text();
  }
  const Object user = entry.call(u"GetExchangeUser").object();
  return user ? user.get(u"PrimarySmtpAddress").text() : Text{};
}

void OutlookMailHelper::cleanUp() {
  if (registered(utilitiesClass)) Object::create(utilitiesClass).run(u"CleanUp");
}

}  // namespace quillfile::windows
