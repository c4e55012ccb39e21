// Deleted items: when the user deletes a mail, the offer to delete the saved files that its link notes point
// to. An answer "to all" holds for the rest of a deletion of several items.
#pragma once

#include "core/files/frm_yes_no_prompt.h"
#include "core/links/quillfile_extended.h"
#include "core/module/module_state.h"
#include "core/module/rooms.h"

namespace quillfile {

class DeletedItemsFolder final : public DeletedItems {
 public:
  struct Ports {
    const ModuleState& module;
    const Settings& settings;
    EngineServices& services;
    EngineUtilities& utilities;
    MailHelper& mailHelper;
    Dialogs& dialogs;
    Trace trace;
  };
  DeletedItemsFolder(const Ports& ports, const LinkPorts& links) : ports_(ports), links_(links) {}

  // The next deleted item begins a new deletion, with no answer given.
  void resetPrompt() override;
  void HandleDeletedItemsFolderAdd(const Ref<Item>& item) override;

 private:
  // What is decided for the files of one item, link by link.
  struct Decision {
    bool prompting = false;
    bool deleteThis = false;
  };
  Decision beginItem();
  void handleLinkedFile(const Text& fileName, Decision& decision);
  void ask(const Text& fileName, Decision& decision);
  void endItem();

  Ports ports_;
  QuillfileExtended links_;

  // Across the items of one deletion.
  bool firstOfDeletion_ = true;
  bool yesToAll_ = false;
  bool noToAll_ = false;
  std::int32_t itemsLeft_ = 0;
};

}  // namespace quillfile
