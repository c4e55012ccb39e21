// Stage: a mail client with a user in front of it, the engine and the module, as a scenario plays on it.
// Every host has one; what happened there is its outcome.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "core/platform/outlook.h"
#include "core/platform/path_rules.h"
#include "tests/fakes/fake_item.h"

namespace quillfile {

// What a user does with an item.
enum class Doing { forward, reply, reply_all, write, send, close };

class Stage {
 public:
  // `folder`: where attachments are saved, a folder that is there, with a separator at its end.
  Stage(Text folder, const PathRules& rules) : saveFolder(std::move(folder)), paths(rules) {}
  virtual ~Stage() = default;

  const Text saveFolder;
  const PathRules paths;
  Text linkTo(TextView file) const { return paths.linkTo(saveFolder + Text{file}); }

  // Items go by their numbers, from 0 in the order in which they were added.
  using Mail = std::size_t;
  virtual Mail add(const ItemData& item, const std::vector<AttachmentData>& attachments,
                   DefaultFolder folder) = 0;
  Mail add(const ItemData& item, const std::vector<AttachmentData>& attachments = {}) {
    return add(item, attachments, DefaultFolder::inbox);
  }
  std::size_t mails() const { return mails_; }
  // A file that was saved earlier, in the save folder.
  virtual void file(TextView name, bool readOnly = false) = 0;

  // The engine: starts the module and opens the explorer, which shows the Inbox; …; stops the module.
  virtual void start() = 0;
  virtual void stop() = 0;
  virtual void openExplorer() = 0;  // another one, or the same again
  virtual void closeExplorer() = 0;
  virtual void message(TextView text) = 0;  // by CESendMessage
  virtual void arrived(Mail mail, DefaultFolder folder) = 0;

  // The user.
  virtual void show(DefaultFolder folder) = 0;
  virtual void select(const std::vector<Mail>& mails) = 0;
  virtual void selectNothing() = 0;  // while the view is being switched there is no selection
  virtual void button() = 0;
  virtual void hotkey() = 0;
  virtual void open(Mail mail) = 0;               // in a window of its own
  virtual void does(Mail mail, Doing doing) = 0;  // noted in the transcript, with whether it was cancelled

 protected:
  std::size_t mails_ = 0;
};

// What a scenario is played with: a port's call that fails.
struct Failing {
  Text call;             // "Item.save"; empty: none fails
  std::int32_t nth = 0;  // this time only; 0: each time
};

struct Outcome {
  std::vector<Text> lines;                                     // the transcript
  std::vector<Text> files;                                     // in the save folder: see described()
  std::vector<Text> items;                                     // "Invoices, unread: Paperclip.ico, b.xls"
  std::vector<std::pair<Text, std::optional<Text>>> settings;  // those that the module writes itself
  std::map<Text, std::int32_t> calls;                          // of the fakes' ports: how often each was made
};

// "CEButtonAction gives 1", a line of every stage's transcript.
inline Text resultLine(TextView entry, std::int32_t result) { return fill(u"{} gives {}", entry, result); }

// A file of an outcome: "a.pdf | read-only | its content".
inline Text described(TextView path, bool readOnly, std::string_view content) {
  return fill(u"{}{} | {}", path, readOnly ? TextView{u" | read-only"} : TextView{}, fromUtf8(content));
}

// An item of an outcome, with the names of the attachments that it still has.
inline Text described(TextView subject, bool unRead, const std::vector<Text>& attachments) {
  Text line = fill(u"{}{}:", subject, unRead ? TextView{u", unread"} : TextView{});
  for (const auto& name : attachments) line += fill(u" {}", name);
  return line;
}

// "user forward: cancelled", a line of every stage's transcript.
inline Text lineOf(Doing doing, bool cancelled) {
  constexpr TextView words[] = {u"forward", u"reply", u"reply to all", u"write", u"send", u"close"};
  return fill(u"user {}: {}", words[static_cast<std::size_t>(doing)],
              cancelled ? TextView{u"cancelled"} : TextView{u"goes on"});
}

}  // namespace quillfile
