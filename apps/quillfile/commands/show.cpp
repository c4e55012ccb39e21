#include <algorithm>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/item_output.h"
#include "apps/quillfile/run.h"
#include "hosts/mailbox/engine/item_order.h"
#include "hosts/mailbox/engine/printable.h"
#include "hosts/mailbox/engine/progress.h"

namespace quillfile::app {
namespace {

Json shown(mailbox::Session& session, mailbox::MailboxItem& item, std::size_t number) {
  Json document = itemJson(item, number);
  document["body"] = toUtf8(item.body(BodyKind::plain));
  document["html_body"] = toUtf8(item.body(BodyKind::html));
  document["rtf_body"] = toUtf8(item.body(BodyKind::rtf));
  document["links"] = session.linksIn(item);
  return document;
}

void printHeaders(mailbox::MailboxItem& item) {
  const auto message = item.message();
  for (const char* name : {"From", "To", "Cc"}) {
    const Text value = message->header().text(name);
    if (!value.empty())
      std::printf("%-9s %s\n", (std::string(name) + ":").c_str(), mailbox::printable(value).c_str());
  }
  std::printf("Received: %s\n", toUtf8(item.receivedWithOffset()).c_str());
  std::printf("Subject:  %s\n", mailbox::printable(item.subject()).c_str());
}

void print(mailbox::Session& session, mailbox::MailboxItem& item) {
  printHeaders(item);
  std::printf("\n%s\n", mailbox::printableLines(item.body()).c_str());
  const auto attachments = item.attachments();
  for (std::int32_t i = 1; i <= attachments->count(); ++i) {
    const auto attachment = attachments->item(i);
    std::printf("Attachment %d: %s, %s\n", i, mailbox::printable(attachment->fileName()).c_str(),
                mailbox::sizeText(attachment->size()).c_str());
  }
  for (const auto& path : session.linksIn(item)) {
    std::printf("Link: %s\n", mailbox::printable(fromUtf8(path)).c_str());
  }
}

}  // namespace

int runShow(const Options& options) {
  const auto session = openSession(options);
  const auto folder = chosenFolder(*session, options);
  const auto items = chosenItems(*session, folder, options.arguments);
  if (items.size() != 1) throw WrongCommandLine{"show takes one item."};
  const auto all = mailbox::itemsInOrder(*folder);
  const auto place = std::find(all.begin(), all.end(), items.front()->unique());
  const std::size_t number = place == all.end() ? 0 : static_cast<std::size_t>(place - all.begin()) + 1;
  if (options.json) {
    printJson(shown(*session, *items.front(), number));
  } else {
    print(*session, *items.front());
  }
  return done;
}

}  // namespace quillfile::app
