#include "hosts/mailbox/outlook/client.h"

#include <algorithm>

#include "core/module/procedure.h"
#include "hosts/mailbox/outlook/rewrite.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

struct Numbered {
  DefaultFolder number;
  FolderRole role;
};
constexpr Numbered defaultFolders[] = {
    {DefaultFolder::deleted_items, FolderRole::deleted}, {DefaultFolder::outbox, FolderRole::outbox},
    {DefaultFolder::sent_items, FolderRole::sent},       {DefaultFolder::inbox, FolderRole::inbox},
    {DefaultFolder::drafts, FolderRole::drafts},
};

class MailboxNameSpace final : public NameSpace {
 public:
  explicit MailboxNameSpace(std::shared_ptr<MailClient> client) : client_(std::move(client)) {}
  Ref<Folder> defaultFolder(DefaultFolder which) override {
    for (const auto& row : defaultFolders)
      if (row.number == which) return client_->folder(client_->setup().store.need(row.role));
    throw failure("There is no default folder number " + std::to_string(static_cast<int>(which)));
  }

 private:
  std::shared_ptr<MailClient> client_;
};

}  // namespace

std::shared_ptr<MailClient> MailClient::create(const ClientSetup& setup) {
  return std::shared_ptr<MailClient>{new MailClient{setup}};
}

MailClient::MailClient(const ClientSetup& setup)
    : setup_(setup), explorer_(std::make_shared<MailboxExplorer>()) {}

Ref<NameSpace> MailClient::nameSpace() { return std::make_shared<MailboxNameSpace>(shared_from_this()); }

std::shared_ptr<MailboxFolder> MailClient::folder(const std::shared_ptr<MailFolder>& folder) {
  return std::make_shared<MailboxFolder>(weak_from_this(), folder);
}

std::shared_ptr<MailboxItem> MailClient::item(const std::shared_ptr<MailFolder>& folder,
                                              const std::string& unique) {
  auto& known = items_[folder->itemId(unique)];
  if (auto item = known.lock()) return item;
  auto item = std::make_shared<MailboxItem>(weak_from_this(), folder, unique);
  known = item;
  // Items that nobody holds are forgotten, so that a walk over a large store keeps little.
  if (items_.size() > 2 * alive_ + 1000) {
    std::erase_if(items_, [](const auto& entry) { return entry.second.expired(); });
    alive_ = items_.size();
  }
  return item;
}

std::shared_ptr<MailboxItem> MailClient::item(TextView id) {
  for (const auto& fresh : newItems_)
    if (fresh->entryId() == id) return fresh;
  const auto address = setup_.store.address(toUtf8(id));
  if (!address) return nullptr;
  settle(*address->folder);
  if (!address->folder->find(address->unique)) return nullptr;
  return item(address->folder, address->unique);
}

std::shared_ptr<MailboxInspector> MailClient::openInspector(const std::shared_ptr<MailboxItem>& item) {
  return std::make_shared<MailboxInspector>(item);
}

void MailClient::underWay(const std::shared_ptr<MailboxItem>& item) {
  if (std::exchange(item->underWay_, true)) return;
  (item->isNew() ? newItems_ : underWay_).push_back(item);
}

void MailClient::displayed(const std::shared_ptr<MailboxItem>& item) {
  if (std::find(displayed_.begin(), displayed_.end(), item) == displayed_.end()) displayed_.push_back(item);
}

std::string MailClient::provisionalId() { return "new/" + std::to_string(++provisional_); }

void MailClient::settle(const MailFolder& folder) {
  if (onTheWay_.contains(&folder)) commit();
}

void MailClient::commit() {
  onTheWay_.clear();
  setup_.batch.commit();
}

// Does `work` about the item; a failure leaves the message as it was, and is told.
template <class Work>
void MailClient::telling(MailboxItem& item, Work&& work) {
  guarded([&](Step&) { return work(), true; },
          [&](const Failure& failure, const Step&) {
            setup_.reports.onChangeFailed(item, failure.description);
            return false;
          });
}

void MailClient::turnTo(const MailboxItem& next) {
  setup_.reports.onNextItem();
  if (underWay_.empty()) return;
  handOverAll(&next);
  setup_.batch.eventEnded();
}

void MailClient::handOverAll(const MailboxItem* except) {
  for (const auto& item : std::exchange(underWay_, {})) {
    if (item.get() == except) {
      underWay_.push_back(item);
      continue;
    }
    item->underWay_ = false;
    telling(*item, [&] { handOver(*item); });
    item->forget();
  }
}

void MailClient::endOfEvent() {
  handOverAll(nullptr);
  setup_.batch.eventEnded();
  for (const auto& item : std::exchange(newItems_, {})) {
    item->underWay_ = false;
    if (item->changes().save && !item->changes().remove) telling(*item, [&] { storeDraft(*item); });
  }
  for (const auto& item : std::exchange(displayed_, {}))
    if (!item->isNew()) setup_.reports.onDisplayed(*item);
}

// Whether the item's bodies or attachments are to be written. What was changed and never saved is not, as
// when a window is closed.
bool MailClient::changesDisk(MailboxItem& item) const {
  const auto& changes = item.changes();
  const bool goes = changes.remove && item.folder_->role() == FolderRole::deleted;
  return changes.save && !goes &&
         (changes.touchesParts() || (item.opened().bodies && item.opened().bodies->changed()));
}

// One change for all that the event made of the item.
void MailClient::handOver(MailboxItem& item) {
  auto& changes = item.changes();
  const bool rewrites = changesDisk(item);
  if (!rewrites && !changes.unRead && !changes.remove) return;
  MessageChange change;
  change.folder = item.folder_;
  change.unique = item.unique_;
  if (rewrites) {
    change.source = item.message()->file();
    if (!change.source->lock()) throw failure("Another program is working on the message");
    auto made = rewrite(item.message(), item.bodies(), changes, item.removedBefore());
    change.content = std::move(made.content);
    change.check = std::move(made.check);
    change.removed = std::move(made.removed);
  }
  for (const auto& [source, file] : changes.saved) change.needs.push_back(file);
  if (changes.unRead) (*changes.unRead ? change.clearFlags : change.setFlags) = "S";
  auto target = item.folder_;
  if (changes.remove) {
    const auto deleted = setup_.store.need(FolderRole::deleted);
    change.erase = deleted == item.folder_;
    if (!change.erase) change.moveTo = target = deleted;
  }
  const auto before = item.folder_->itemId(item.unique_);
  auto unique = setup_.batch.change(std::move(change));
  onTheWay_.insert({item.folder_.get(), target.get()});
  item.uniqueBefore_ = std::exchange(item.unique_, std::move(unique));
  item.folder_ = target;
  item.handedOver_ = true;
  items_.erase(before);
}

void MailClient::storeDraft(MailboxItem& item) {
  const auto drafts = setup_.store.need(FolderRole::drafts);
  commit();  // what the draft carries may be a file that is still on its way
  const auto made = rewrite(item.message(), item.bodies(), item.changes(), item.removedBefore());
  item.unique_ = drafts->create(made.content, "D", ownUniqueName(drafts->path()));
  item.folder_ = drafts;
  item.forget();
  items_[drafts->itemId(item.unique_)] = item.weak_from_this();
}

}  // namespace quillfile::mailbox
