// OutlookWorld: a mail client of real automation objects: application, folders, one explorer, items,
// attachments.
#pragma once

#include <deque>

#include "core/platform/date_time.h"
#include "tests/windows/fakes/scripted.h"

namespace quillfile::windows {

inline constexpr IID itemEventsId{0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID explorerEventsId{0x0006300F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct AttachmentState {
  Text fileName;
  Text displayName{};
  std::int32_t type = 1;
  std::string bytes = "content";
};

struct ItemState {
  Text type = u"MailItem";
  Text entryId{};
  Text subject = u"Subject";
  Text senderName = u"Ada";
  Text senderAddress = u"ada@example.org";
  Text senderType = u"SMTP";
  Text smtpAddress{};  // of an Exchange sender
  Text format = u"TEXT";
  Text body{}, html{}, rtf{};
  bool rtfAsBytes = false;
  LocalTime received{.year = 2009, .month = 3, .day = 4, .hour = 14, .minute = 5, .second = 0};
  std::vector<AttachmentState> attachments{};
  // What became of it.
  int saves = 0;
  int displayed = 0;
  bool deleted = false;
};

class OutlookWorld {
 public:
  explicit OutlookWorld(Recorder& recorder);
  OutlookWorld(const OutlookWorld&) = delete;
  OutlookWorld& operator=(const OutlookWorld&) = delete;

  struct Item {
    std::shared_ptr<ItemState> state;
    Fake object;
  };
  Item& add(const ItemState& state, int folder = 6);  // folders by their number, 6 the Inbox
  Fake inspector(const Item& item);
  void select(std::vector<const Item*> items);
  void showFolder(int folder) { currentFolder_ = folder; }

  // Raises an event as the client does; gives what Cancel is afterwards.
  bool respond(const Item& item, DISPID event);     // Reply F466, ReplyAll F467, Forward F468
  bool cancelable(const Item& item, DISPID event);  // Write F002, Close F004, Send F005
  void selectionChanges();

  Fake application, explorer;
  Fake folder(int number) { return folders_.at(number); }
  std::vector<Item*> itemsIn(int folder);
  std::vector<Item*> made;  // responses, oldest first

  static Text entryIdOf(int folder) { return fill(u"folder-{}", folder); }

 private:
  Fake makeFolder(int number, const Text& name);
  Fake makeItems(int folder);
  Fake makeItem(const std::shared_ptr<ItemState>& state);
  Fake makeAttachments(const std::shared_ptr<ItemState>& state);
  Fake makeAttachment(const std::shared_ptr<ItemState>& state, std::size_t index);
  Fake makeSelection();
  Variant respondTo(const ItemState& original);
  void save(ItemState& state);

  Recorder& recorder_;
  std::map<int, Fake> folders_;
  std::deque<std::pair<int, Item>> items_;
  std::vector<Fake> selected_;
  int currentFolder_ = 6;
  int lastId_ = 0;
};

}  // namespace quillfile::windows
