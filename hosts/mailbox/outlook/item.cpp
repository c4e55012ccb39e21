#include "hosts/mailbox/outlook/item.h"

#include <algorithm>
#include <limits>

#include "core/module/procedure.h"
#include "hosts/mailbox/mime/scan.h"
#include "hosts/mailbox/outlook/attachments.h"
#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/outlook/container.h"
#include "hosts/mailbox/outlook/item_type.h"
#include "hosts/mailbox/outlook/received_time.h"
#include "hosts/mailbox/outlook/response.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/maildir_name.h"

namespace quillfile::mailbox {

MailboxItem::MailboxItem(std::weak_ptr<MailClient> client, std::shared_ptr<MailFolder> folder,
                         std::string unique)
    : client_(std::move(client)), folder_(std::move(folder)), unique_(std::move(unique)) {}

MailboxItem::MailboxItem(std::weak_ptr<MailClient> client, std::shared_ptr<const Message> message,
                         std::vector<AddedAttachment> carried, std::vector<RemovedPart> removedBefore)
    : client_(std::move(client)) {
  opened().message = std::move(message);
  changes().added = std::move(carried);
  remember(std::move(removedBefore));
}

std::shared_ptr<MailClient> MailboxItem::client() const {
  if (auto client = client_.lock()) return client;
  throw failure("The mail client has been closed");
}

std::shared_ptr<const Message> MailboxItem::message() {
  if (handedOver_) readAnew();
  if (opened().message) return opened().message;
  auto file = folder_->open(unique_);
  if (!file && !uniqueBefore_.empty()) file = folder_->open(unique_ = uniqueBefore_);
  if (!file) throw failure("The message " + folder_->itemId(unique_) + " is no longer there");
  open(withContainersOpened(std::make_shared<const Message>(std::move(file))));
  return opened().message;
}

void MailboxItem::open(std::shared_ptr<const Message> message) {
  opened().message = std::move(message);
  remember(removedParts(opened().message->header()));
  client()->underWay(shared_from_this());
}

std::string MailboxItem::expectedPath() const {
  std::optional<Location> location;
  if (!isNew()) ignoringErrors([&] { location = folder_->expected(unique_); });
  return location ? folder_->filePath(*location) : "";
}

void MailboxItem::adopt(ReadMessage read) {
  const bool isOpen = opened_ && opened_->message;
  if (!read.message || isOpen || handedOver_ || !read.message->file()->isStillAt(expectedPath())) return;
  open(std::move(read.message));
  opened().decoded = std::move(read.decoded);
}

ItemBodies& MailboxItem::bodies() {
  const auto message = this->message();
  if (!opened().bodies) opened().bodies.emplace(message);
  return *opened().bodies;
}

AttachmentSources& MailboxItem::ownSources() {
  const auto message = this->message();
  if (!opened().sources) {
    auto sources = attachmentsOf(message, std::exchange(opened().decoded, {}));
    for (const auto& added : changes().added) sources.push_back(added.source);
    opened().sources = std::move(sources);
  }
  return *opened().sources;
}

const AttachmentSources& MailboxItem::sources() { return ownSources(); }

Text MailboxItem::typeName() { return itemType(*message()); }

Text MailboxItem::entryId() { return fromUtf8(isNew() ? provisionalId_ : folder_->itemId(unique_)); }

Text MailboxItem::subject() { return message()->header().text("Subject"); }

LocalTime MailboxItem::receivedTime() { return localTime(receivedSeconds(*message())); }

Text MailboxItem::receivedWithOffset() { return isoTime(receivedSeconds(*message())); }

mime::Address MailboxItem::sender() {
  const auto header = message()->header();
  auto senders = mime::parseAddresses(header.value("From"), 1);
  if (senders.empty()) senders = mime::parseAddresses(header.value("Sender"), 1);
  if (senders.empty()) return {};
  if (senders.front().name.empty()) senders.front().name = senders.front().address;
  return senders.front();
}

bool MailboxItem::unRead() {
  if (changes().unRead) return *changes().unRead;
  if (isNew()) return false;
  const auto location = folder_->find(unique_);
  if (!location) throw failure("The message " + folder_->itemId(unique_) + " is no longer there");
  return location->isNew || !hasFlag(parseMaildirName(location->fileName).flags, 'S');
}

void MailboxItem::setUnRead(bool unRead) {
  if (isNew() || unRead == this->unRead()) return;
  touch();
  changes().unRead = unRead;
}

Ref<Attachments> MailboxItem::attachments() {
  ownSources();
  return std::make_shared<MailboxAttachments>(shared_from_this());
}

Text MailboxItem::bodyFormat() { return Text{bodies().format()}; }

std::int64_t MailboxItem::size() { return static_cast<std::int64_t>(message()->stored().bytes().size()); }

Text MailboxItem::body(BodyKind kind) { return bodies().text(kind); }

Text MailboxItem::takeBody(BodyKind kind) { return bodies().take(kind); }

void MailboxItem::setBody(BodyKind kind, TextView text) {
  touch();
  bodies().set(kind, text);
}

bool MailboxItem::ownsBody(BodyKind kind) { return bodies().own(kind) != nullptr; }

TextView MailboxItem::ownBody(BodyKind kind) { return bodies().own(kind)->current(); }

void MailboxItem::replaceInBody(BodyKind kind, Position begin, Position end, TextView replacement) {
  touch();
  bodies().own(kind)->replace(static_cast<std::size_t>(begin - 1), static_cast<std::size_t>(end - 1),
                              replacement);
}

void MailboxItem::save() {
  bool cancel = false;
  listeners_.deliver([&](ItemEvents& listener) { listener.onWrite(cancel); });
  if (!cancel) saveQuietly();
}

void MailboxItem::saveQuietly() {
  touch();
  changes().save = true;
  if (isNew() && provisionalId_.empty()) provisionalId_ = client()->provisionalId();
}

void MailboxItem::remove() {
  touch();
  changes().remove = true;
}

void MailboxItem::display() {
  if (isNew()) saveQuietly();
  client()->displayed(shared_from_this());
}

Ref<Item> MailboxItem::respond(Response response) { return makeResponse(*this, response, *client()); }

std::shared_ptr<MailboxItem> MailboxItem::userResponds(Response response) {
  bool cancel = false;
  listeners_.deliver([&](ItemEvents& listener) { listener.onRespond(response, cancel); });
  if (cancel) return nullptr;
  auto made = makeResponse(*this, response, *client());
  made->display();
  return made;
}

bool MailboxItem::userCloses() {
  bool cancel = false;
  listeners_.deliver([&](ItemEvents& listener) { listener.onClose(cancel); });
  return !cancel;
}

void MailboxItem::finishRestore() { bodies().dropBlankLinesOfNotes(); }

void MailboxItem::touch() {
  if (handedOver_) readAnew();
  client()->underWay(shared_from_this());
}

void MailboxItem::readAnew() {
  handedOver_ = false;
  client()->settle(*folder_);
  forget();
}

void MailboxItem::remember(std::vector<RemovedPart> removed) {
  opened().awaited.clear();
  for (std::size_t i = 0; i < removed.size(); ++i) opened().awaited.emplace(removed[i].path, i);
  opened().removedBefore = std::move(removed);
}

Text MailboxItem::whyItStays(const AttachmentSource& source, const SavedFile* file) {
  const bool ownIcon = source.displayName() == u"Paperclip retained by Quillfile";
  if (file == nullptr && !ownIcon) return u"it has not been saved";
  if (file != nullptr && file->state == SavedFile::State::abandoned)
    return u"the file it was saved to is gone";
  if (auto reason = message()->whyNothingMayGo(); !reason.empty()) return reason;
  if (const auto& open = message()->file(); open && !open->lock())
    return u"another program is working on the message";
  if (const auto doubt = bodies().doubt(); !doubt.empty())
    return fill(u"the message's text cannot be relied upon: {}", doubt);
  if (const auto doubt = source.doubt(); !doubt.empty())
    return fill(u"the attachment \"{}\" cannot be relied upon: {}", source.displayName(), doubt);
  constexpr std::size_t spare = 4096;  // for other fields that a rewrite may add
  const auto header = message()->header().block().size() + changes().memory + memoryOf(source, file);
  if (header + spare > mime::ScanLimits{}.headerBytes)
    return u"the message's header has no room to remember more attachments, and restore could not put them "
           u"back";
  return {};
}

std::size_t MailboxItem::memoryOf(const AttachmentSource& source, const SavedFile* file) {
  const auto part = source.part();
  if (file == nullptr || !part) return 0;
  const auto& tree = message()->tree();
  const auto parent = *part == 0 ? std::string{} : boundaryOf(tree, tree[*part].parent);
  const RemovedPart told{file->asked, parent, std::numeric_limits<std::uint32_t>::max(),
                         std::string{tree.header(*part).block()}};
  return fieldOf(told, tree.lineEnd()).size();
}

void MailboxItem::decline(const Text& reason) {
  if (changes().declineTold) return;
  changes().declineTold = true;
  client()->setup().reports.onRemovalDeclined(*this, reason);
}

}  // namespace quillfile::mailbox
