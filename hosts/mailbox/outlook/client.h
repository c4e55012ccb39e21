// MailClient: the mail client over a mail store: the application object that the module sees, and beside it
// what the engine needs to act as the user: items by their ids, the selection, inspectors, and the end of an
// event.
//
//   auto client = MailClient::create({.store = store, .batch = batch, .reports = reports});
//   client->explorer()->showFolder(inbox);  client->explorer()->select({item});   // SelectionChange
//   …the module works on the item: bodies, removals, saves, in memory…
//   client->endOfEvent();                                                         // one rewrite for each
//   message
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/platform/outlook.h"
#include "hosts/mailbox/outlook/explorer.h"
#include "hosts/mailbox/outlook/folder.h"
#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/outlook/safe_item.h"
#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/store/mail_store.h"

namespace quillfile::mailbox {

// What the client has to tell. Called on the caller's thread, from within the module's calls and
// endOfEvent().
class ClientReports {
 public:
  virtual ~ClientReports() = default;
  // Attachments of the item stay in it: once for each item and event, `reason` is a sentence for a person.
  virtual void onRemovalDeclined(MailboxItem& item, const Text& reason) = 0;
  // An item was opened for the user. A draft is in Drafts by then, under its final id.
  virtual void onDisplayed(MailboxItem& item) = 0;
  // A change of an item could not be handed to the batch or written to Drafts; the message is as it was.
  virtual void onChangeFailed(MailboxItem& item, const Text& reason) = 0;
  // Whoever walks over a selection has come to its next item.
  virtual void onNextItem() {}
};

struct ClientSetup {
  MailStore& store;
  Batch& batch;
  ClientReports& reports;
  std::vector<Text> ownAddresses = {};  // left out of replies, beside those that Delivered-To names
  Text version = u"16.0.0.0";
};

class MailClient final : public Application, public std::enable_shared_from_this<MailClient> {
 public:
  static std::shared_ptr<MailClient> create(const ClientSetup& setup);

  Text version() override { return setup_.version; }
  Ref<NameSpace> nameSpace() override;
  Ref<Explorer> activeExplorer() override { return explorer_; }

  const std::shared_ptr<MailboxExplorer>& explorer() const { return explorer_; }
  MailHelper& helper() { return helper_; }

  std::shared_ptr<MailboxFolder> folder(const std::shared_ptr<MailFolder>& folder);
  // The one object of that message while anybody holds it or it has changes under way. Nothing is opened.
  std::shared_ptr<MailboxItem> item(const std::shared_ptr<MailFolder>& folder, const std::string& unique);
  // By id; null when the id is none of this store, or the message is gone. Throws Failure.
  std::shared_ptr<MailboxItem> item(TextView id);
  // Opens the item in a window of its own. The engine tells the module of it.
  std::shared_ptr<MailboxInspector> openInspector(const std::shared_ptr<MailboxItem>& item);

  // The event that the engine handled is over: everything that was saved goes to the batch as one change for
  // each message, new items go into Drafts, and what was displayed is told. Failures are reported and never
  // thrown.
  void endOfEvent();

  // --- For the objects of this room.
  const ClientSetup& setup() const { return setup_; }
  // This event reads or changes the item.
  void underWay(const std::shared_ptr<MailboxItem>& item);
  // The module has turned to `next`: what it worked on before is complete, and goes to the batch.
  void turnTo(const MailboxItem& next);
  void displayed(const std::shared_ptr<MailboxItem>& item);  // to be told at the event's end
  const std::vector<std::shared_ptr<MailboxItem>>& newItems() const {
    return newItems_;
  }  // saved in this event
  std::string provisionalId();
  // Makes sure that no change of that folder is still on its way to disk.
  void settle(const MailFolder& folder);

 private:
  explicit MailClient(const ClientSetup& setup);
  void handOverAll(const MailboxItem* except);
  void handOver(MailboxItem& item);
  bool changesDisk(MailboxItem& item) const;
  void storeDraft(MailboxItem& item);
  void commit();
  template <class Work>
  void telling(MailboxItem& item, Work&& work);

  ClientSetup setup_;
  MailboxMailHelper helper_;
  std::shared_ptr<MailboxExplorer> explorer_;
  std::map<std::string, std::weak_ptr<MailboxItem>> items_;  // by id
  std::vector<std::shared_ptr<MailboxItem>> underWay_;
  std::vector<std::shared_ptr<MailboxItem>> newItems_;
  std::vector<std::shared_ptr<MailboxItem>> displayed_;
  std::set<const MailFolder*> onTheWay_;  // folders with changes in the batch
  std::size_t alive_ = 0;                 // items that were held when last counted
  std::int32_t provisional_ = 0;
};

}  // namespace quillfile::mailbox
