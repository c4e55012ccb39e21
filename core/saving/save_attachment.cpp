// SaveAttachment: one attachment, from its type to the program that is run on the saved file.
#include "core/saving/naming.h"
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"SaveAttachment";
constexpr TextView reportName = u".SaveAttachment";

void traceType(const Trace& trace, std::int32_t type) {
  switch (static_cast<AttachmentType>(type)) {
    case AttachmentType::by_value:
      return trace(name, u"Attachment Type: olByValue");
    case AttachmentType::by_reference:
      return trace(name, u"Attachment Type: olByReference");
    case AttachmentType::embedded_item:
      return trace(name, u"Attachment Type: olEmbeddedItem");
    case AttachmentType::ole:
      return trace(name, u"Attachment Type: olOLE");
  }
  trace(name, u"Attachment Type: {}", type);
}

// The images by which the module itself keeps an item's paperclip.
bool isPaperclip(TextView lowered) {
  return lowered == u"paperclip.ico" || lowered == u"tessalysoftware.ico";
}

}  // namespace

SaveResult QuillfileRoutines::SaveAttachment(const Ref<Item>& item, const Ref<Attachment>& attachment,
                                             const SavingContext& context, TextView savePath) {
  const auto body = [&](Step& at) -> SaveResult {
    const auto target = chooseTarget(item, *attachment, savePath, at);
    const auto* path = std::get_if<Text>(&target);
    return path ? saveTo(item, *attachment, context, *path, at) : std::get<SaveResult>(target);
  };
  return guarded(body, [&](const Failure& failure, const Step& at) {
    ports_.trace(name, u"Error occurred.  Could not save attachment.  LastLineNumber: {}", at.number());
    reportError(ports_.services, {.name = reportName, .wording = wording::atLine}, at, failure);
    return SaveResult::stop;
  });
}

Target QuillfileRoutines::chooseTarget(const Ref<Item>& item, Attachment& attachment, TextView savePath,
                                       Step& at) {
  at(1);
  const auto type = attachment.type();
  traceType(ports_.trace, type);
  if (type == static_cast<std::int32_t>(AttachmentType::ole)) {
    ports_.trace(name, u"Not saving attachment (wrong type)");
    return SaveResult::skipped;
  }
  at(2);
  const auto cleaned = attachmentName(attachment);
  at(3);
  const auto exclusions = ports_.settings.text(u"ExclusionList");
  if (!exclusions.empty() && IsAMatch(cleaned, exclusions)) return SaveResult::skipped;
  at(4);
  if (isPaperclip(ports_.letters.lower(cleaned))) return SaveResult::skipped;
  at(5);
  auto target = attachmentPath(ports_, item, cleaned, savePath);
  at(6);
  if (const auto* path = std::get_if<Text>(&target)) {
    ports_.trace(name, u"Attachment FileName: {}", [&] { return attachment.fileName(); });
    ports_.trace(name, u"Attachment DisplayName: {}", [&] { return attachment.displayName(); });
    ports_.trace(name, u"Attachment Type: {}", type);
    ports_.trace(name, u"Saving attachment to: {}", *path);
  }
  return target;
}

// The file name; without one, the display name as a text file. That can be any text, of any length.
//   "", "Note #1" -> "Note -1.txt"
Text QuillfileRoutines::attachmentName(Attachment& attachment) {
  auto fileName = cleanedName(ports_.paths, attachment.fileName());
  if (!trim(fileName).empty()) return fileName;
  return ports_.utilities.cleanFileName(cleanedName(ports_.paths, attachment.displayName())).append(u".txt");
}

SaveResult QuillfileRoutines::saveTo(const Ref<Item>& item, Attachment& attachment,
                                     const SavingContext& context, TextView path, Step& at) {
  at(7);
  if (!saveToDisk(attachment, path, at)) return SaveResult::stop;
  at(8);
  ports_.fileTimes.ChangeDateTo(path, ports_.dates.general(item->receivedTime()));
  at(9);
  applyReadWrite(path, context.readWrite);
  at(10);
  const bool verified = !context.remove || removeSaved(attachment, path);
  if (context.deleteSaved) ports_.utilities.discardSavedFile(path);
  at(11);
  if (context.addLink && verified) addLink(item, path);
  at(12);
  if (ports_.settings.flag(u"ExecuteWanted")) ExecuteProgram(path);
  at(13);
  ++state_.counter.value;
  return SaveResult::saved;
}

// Saves, and once more when the file does not appear.
bool QuillfileRoutines::saveToDisk(Attachment& attachment, TextView path, const Step& at) {
  const auto save = [&] {
    attachment.saveAsFile(path);
    return ports_.fileWaiting.WaitForFile(path, moduleName);
  };
  return guarded([&](Step&) { return save() || save(), true; },
                 [&](const Failure& failure, const Step&) {
                   reportError(ports_.services, reportName,
                               fill(u"Error occurred at or near line {}.  Reason: {} ({}).  Path: {}",
                                    at.number(), failure.description, failure.number, path));
                   return false;
                 });
}

void QuillfileRoutines::applyReadWrite(TextView path, ReadWrite mode) {
  if (mode != ReadWrite::read_only && mode != ReadWrite::writable) return;
  const auto attributes = ports_.files.attributes(path);
  const bool readOnly = attributes % 2 != 0;
  if (mode == ReadWrite::read_only && !readOnly) {
    ports_.trace(name, u"Marking attachment read only");
    ports_.files.setAttributes(path, attributes + 1);
  }
  if (mode == ReadWrite::writable && readOnly) ports_.files.setAttributes(path, attributes - 1);
}

// False when the save is unverified: nothing on disk, or a host that is not sure that nothing would be lost.
bool QuillfileRoutines::removeSaved(Attachment& attachment, TextView path) {
  if (ports_.files.fileListed(path)) return attachment.remove() == Removal::removed;
  reportError(ports_.services, reportName,
              fill(u"Error occurred, leaving file attached: Could not find file at '{}'", path));
  return false;
}

void QuillfileRoutines::addLink(const Ref<Item>& item, TextView path) {
  if (!UpdateEmailBody(item, ports_.paths.linkTo(path))) return;
  item->save();
  ports_.trace(u"UpdateEmailBody", u"Body (without removal) after save: {}", [&] { return item->body(); });
}

}  // namespace quillfile
