// The two commands on a new response: a forward gets its saved files back for its link notes, a reply loses
// the notes. Both write the body through the mail helper's wrapper, by the item's body format.
#pragma once

#include "core/links/link_walk.h"
#include "core/platform/outlook.h"

namespace quillfile {

class LinkCommands {
 public:
  LinkCommands(const LinkPorts& ports, MailHelper& mailHelper, const Ref<Application>& outlookApp)
      : ports_(ports), mailHelper_(mailHelper), outlookApp_(outlookApp), links_(ports), trace_(ports.log) {}

  // Attaches every file that a note of the item points to and erases the notes; placeholders of the paperclip
  // go first. False when an error ended it; what was changed until then stays.
  bool ReplaceLinksWithAttachments(const Ref<Item>& item);

  // Erases the notes and attaches nothing; in rich text each paperclip marker becomes a mention of the file.
  bool JustEraseLinks(const Ref<Item>& item);

 private:
  struct Body;

  Text version2();
  void removePaperclips(const Ref<Item>& item);
  void eraseNotes(LinkWalk& walk, TextView fileName);

  LinkPorts ports_;
  MailHelper& mailHelper_;
  const Ref<Application>& outlookApp_;
  QuillfileExtended links_;
  Trace trace_;
};

}  // namespace quillfile
