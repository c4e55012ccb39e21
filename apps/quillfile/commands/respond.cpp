#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"

namespace quillfile::app {
namespace {

Response responseOf(const Options& options) {
  if (options.command == "forward") return Response::forward;
  return options.command == "reply" ? Response::reply : Response::reply_all;
}

// The click in the list: it is raised on the first selected item, and the module answers for the whole
// selection. Where it does not take over, the client's own responses appear, one for each item.
void respondFromList(mailbox::Session& session, const std::shared_ptr<mailbox::MailFolder>& folder,
                     const mailbox::Items& items, Response response) {
  session.select(folder, items);
  for (const auto& item : items) {
    const bool ours = item->userResponds(response) == nullptr;
    session.endOfEvent();
    if (ours) return;
  }
}

// The click in an item's own window.
void respondFromWindows(mailbox::Session& session, const mailbox::Items& items, Response response) {
  for (const auto& item : items) {
    const auto window = session.openWindow(item);
    item->userResponds(response);
    session.endOfEvent();
    window->close();
  }
}

}  // namespace

int runRespond(const Options& options) {
  const auto session = openSessionToChange(options);
  const auto folder = chosenFolder(*session, options);
  const auto items = chosenItems(*session, folder, options.arguments);
  session->start();
  if (options.open) {
    respondFromWindows(*session, items, responseOf(options));
  } else {
    respondFromList(*session, folder, items, responseOf(options));
  }
  session->finish();
  return printReport(options, session->report());
}

}  // namespace quillfile::app
