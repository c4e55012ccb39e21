// QuillfileRoutines: the saving engine. One class, a source file for each of its procedures' concerns.
//
//   CheckForAttachments -> SaveEmail -> CheckSave (deciding only), RenameIt, ExecuteProgramOnEmail
//                       -> CheckSave -> SaveAttachment for what a filter matches
//                       -> SaveAttachments -> SaveAttachment, last first -> UpdateEmailBody, ExecuteProgram
//                                          -> AttachPaperclip
//
// No procedure throws: each takes its errors itself, and answers with its empty result.
#pragma once

#include <functional>
#include <utility>

#include "core/module/procedure.h"
#include "core/saving/attachment_path.h"
#include "core/saving/save_filters.h"
#include "core/saving/saving_context.h"
#include "core/saving/saving_engine.h"
#include "core/saving/saving_ports.h"
#include "core/saving/saving_state.h"

namespace quillfile {

class QuillfileRoutines final : public SavingEngine {
 public:
  // `state` must outlive the engine.
  QuillfileRoutines(SavingPorts ports, SavingState& state) : ports_(std::move(ports)), state_(state) {}

  bool CheckForAttachments(const SaveRequest& request) override;

  // True when the item qualifies as a whole. Unless `checkOnly`, saves the attachments that match by name or
  // size. Lower-cases the patterns of `filters` and turns its kilobytes into bytes, in place.
  bool CheckSave(const Ref<Item>& item, TextView savePath, SaveFilters& filters, const SavingContext& context,
                 bool checkOnly);

  // Saves every attachment, last first; false when the folder cannot be made.
  bool SaveAttachments(const Ref<Item>& item, const SavingContext& context, TextView savePath);
  SaveResult SaveAttachment(const Ref<Item>& item, const Ref<Attachment>& attachment,
                            const SavingContext& context, TextView savePath);

  bool SaveEmail(const Ref<Item>& item, bool skipCriteria, TextView savePath);
  // The full path under which an e-mail is saved; empty when the folder is missing and cannot be made.
  Text RenameIt(const Ref<Item>& item, TextView extension, TextView savePath);

  // Whether `text` matches one of the patterns, which ";" separates.
  bool IsAMatch(TextView text, TextView list);

  // Gives an item that has no attachment left the placeholder. The caller saves the item.
  bool AttachPaperclip(const Ref<Item>& item);
  bool AttachPaperclip(const Ref<SafeItem>& item);

  // Writes a note with `link` into the item's body and saves it.
  bool UpdateEmailBody(const Ref<Item>& item, TextView link);

  void ExecuteProgram(TextView path);
  void ExecuteProgramOnEmail(TextView path);

 private:
  void removeItem(Item& item);
  void finishItem(const Ref<Item>& item, const SavingContext& context);

  // The halves of SaveAttachment: before a byte is written, and from there on.
  Target chooseTarget(const Ref<Item>& item, Attachment& attachment, TextView savePath, Step& at);
  Text attachmentName(Attachment& attachment);
  SaveResult saveTo(const Ref<Item>& item, Attachment& attachment, const SavingContext& context,
                    TextView path, Step& at);
  bool saveToDisk(Attachment& attachment, TextView path, const Step& at);
  void applyReadWrite(TextView path, ReadWrite mode);
  bool removeSaved(Attachment& attachment, TextView path);
  void addLink(const Ref<Item>& item, TextView path);

  Text emailPath(const Ref<Item>& item, TextView extension, TextView savePath);
  bool attachPaperclip(const std::function<Ref<SafeItem>()>& wrapped);
  void noteInHtml(SafeItem& safe, TextView note, bool atBottom);
  void noteInPlainText(SafeItem& safe, TextView note, bool atBottom);
  void noteInRtf(SafeItem& safe, TextView note);

  SavingPorts ports_;
  SavingState& state_;
};

}  // namespace quillfile
