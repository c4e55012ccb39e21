#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::app {
namespace {

// The first-run settings take attachments out of messages. Somebody who has never run this should hear of it.
bool firstRunAccepted(mailbox::Session& session, const Options& options) {
  if (!session.isFirstRun() || options.answer || options.quiet || !session.terminal().present()) return true;
  session.terminal().show(
      "This is the first run. Attachments will be saved below " +
      mailbox::printable(fromUtf8(session.saveFolder())) +
      "\nand taken out of their messages, with a link left in each. Go ahead? [y]es  [n]o: ");
  return session.terminal().readKey("yn") == 'y';
}

}  // namespace

int runSave(const Options& options) {
  const auto session = openSessionToChange(options);
  const auto folder = chosenFolder(*session, options);
  auto items = chosenItems(*session, folder, options.arguments);
  if (!firstRunAccepted(*session, options)) {
    session->terminal().show(
        "Nothing was changed. To keep attachments in their messages: quillfile settings set "
        "RemoveAttachment 0\n");
    return not_all_done;
  }
  session->start();
  session->tellWatch();
  session->select(folder, std::move(items));
  session->pressButton();
  session->finish();
  return printReport(options, session->report());
}

}  // namespace quillfile::app
