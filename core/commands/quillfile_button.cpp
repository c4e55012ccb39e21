// The manual save command.
#include "core/commands/commands.h"
#include "core/commands/option_lines.h"
#include "core/module/procedure.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"QuillfileButton";
constexpr Wording onLine{u"Error occurred on line: {}; Reason: {}", true};

// "removed", whatever the settings say about removing.
Text completionMessage(std::int32_t count) {
  return count == 1 ? fill(u"Processing complete.  {} attachment removed.", count)
                    : fill(u"Processing complete.  {} attachments removed.", count);
}

}  // namespace

void Commands::QuillfileButton() {
  const auto run = [&](Step& at) {
    at(1);
    ports_.trace(procedureName, u"Entering QuillfileButton");
    at(2);
    const auto settings = ReadRunSettings(ports_.settings);
    at(3);
    ports_.user.setPointer(Pointer::hourglass);
    at(4);
    ports_.counter.value = 0;
    at(5);
    const Text savePath = manualSavePath(settings);
    at(6);
    traceOptions(ports_.trace, procedureName, settings, savePath);
    at(7);
    ports_.settings.write(u"ButtonClicked", u"1");
    at(8);
    saveSelection(settings, savePath);
    at(9);
    ports_.user.messageBox(completionMessage(ports_.counter.value), u"Quillfile", Buttons::ok);
    at(10);
    ports_.settings.write(u"ButtonClicked", u"0");
    at(11);
    ports_.trace(procedureName, u"Leaving QuillfileButton");
    at(12);
    ports_.user.setPointer(Pointer::standard);
  };
  guarded(run, [&](const Failure& failure, const Step& step) {
    ignoringErrors([&] { ports_.user.setPointer(Pointer::standard); });
    // This key and not ButtonClicked, which stays "1": known behaviour that users' settings rely on.
    ignoringErrors([&] { ports_.settings.write(u"OptionalRenameWanted", u"0"); });
    reportError(ports_.services, {.name = u".QuillfileButton", .wording = onLine}, step, failure);
    ports_.trace(procedureName, u"Error on Line: {} : {}", step.number(), failure.description);
  });
}

Text Commands::manualSavePath(const RunSettings& run) {
  if (!run.imitateOutlookFolders) return run.savePath;
  const auto explorer = held(ports_.module.outlookApp).activeExplorer();
  Text path = pathOf(run, held(explorer).currentFolder());
  ports_.utilities.createFolderPath(path);
  return path;
}

// Last item first: one that is deleted or moved does not shift those still to come.
void Commands::saveSelection(const RunSettings& run, TextView savePath) {
  const auto explorer = held(ports_.module.outlookApp).activeExplorer();
  const auto selection = held(explorer).selection();
  for (auto i = held(selection).count(); i >= 1; --i) save(held(selection).item(i), run, savePath, false);
}

}  // namespace quillfile
