#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/monitored.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "core/module/procedure.h"
#include "core/settings/number.h"
#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/engine/mailbox_engine.h"
#include "hosts/mailbox/engine/printable.h"
#include "hosts/mailbox/engine/watch.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::app {
namespace {

std::atomic<int> stopSignal{0};
int stopPipe[2] = {-1, -1};

// The first signal lets the item in hand be finished. The second ends the program at once; nothing is lost by
// that, what was begun is taken up at the next start.
void onStopSignal(int signal) {
  if (stopSignal.exchange(signal) != 0) ::_exit(128 + signal);
  const int error = errno;
  (void)!::write(stopPipe[1], "", 1);
  errno = error;
}

void catchStopSignals() {
  if (::pipe2(stopPipe, O_CLOEXEC | O_NONBLOCK) != 0)
    throw mailbox::fromErrno(errno, "prepare for signals", "");
  struct sigaction action {};
  action.sa_handler = onStopSignal;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGTERM, SIGINT}) ::sigaction(signal, &action, nullptr);
}

// What a flag is to the module; one that is no number counts as off.
std::int32_t valueOf(mailbox::SettingsFile& settings, TextView key) {
  const auto value = settings.read(mailbox::engineName, u"Quillfile", key);
  std::int32_t number = 0;
  if (value) ignoringErrors([&] { number = toNumber(*value); });
  return number;
}

// For people: what is watched and where files go; on standard error where standard output is for programs.
void announce(mailbox::Session& session, const Options& options) {
  if (options.quiet) return;
  std::FILE* const out = options.json ? stderr : stdout;
  std::string names;
  for (const std::string& id : session.watchedFolders())
    names += (names.empty() ? "" : ", ") + mailbox::printable(fromUtf8(id));
  std::fprintf(out, "Watching %s\nFiles are saved below %s\n", names.c_str(),
               mailbox::printable(fromUtf8(session.saveFolder())).c_str());
  const bool automatic = valueOf(session.settings(), u"AutomaticMode") == 1;  // another number is not on
  const bool sent = valueOf(session.settings(), u"SendRemoveAttachments") != 0 ||
                    valueOf(session.settings(), u"SendDeleteAttachments") != 0;
  if (!automatic && !sent)
    std::fputs(
        "Automatic mode is off, and so are both send options: no attachment will be saved. To turn them on:\n"
        "  quillfile settings set AutomaticMode 1          for mail that arrives in monitored folders\n"
        "  quillfile settings set SendRemoveAttachments 1  for sent mail: save, and leave links\n"
        "  quillfile settings set SendDeleteAttachments 1  for sent mail: save, and leave nothing\n",
        out);
  if (automatic && monitoredIds(session.settings()).empty())
    std::fputs("No folder is monitored. `quillfile monitor Inbox` adds one.\n", out);
  std::fflush(out);
}

template <class Entries>
void append(Entries& to, const Entries& from) {
  to.insert(to.end(), from.begin(), from.end());
}

// What is told of each message: one document, or a sentence where something was done; with --once, all of it
// at the end.
class Printer {
 public:
  Printer(const Options& options, mailbox::RunReport& report) : options_(options), report_(report) {}

  void handled() {
    // The module's own counter begins anew on one of its paths and not on the other.
    report_.count = 0;
    for (const auto& entry : report_.saved) report_.count += entry.fileName.empty() ? 0 : 1;
    if (options_.once) {
      gather();
    } else if (options_.json) {
      const auto line = reportJson(report_).dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
      std::fwrite(line.data(), 1, line.size(), stdout);
    } else {
      printReport(options_, report_);
    }
    std::fflush(stdout);
    report_.clear();
  }

  // The exit status.
  int finished() { return options_.once ? printReport(options_, total_) : done; }

 private:
  void gather() {
    total_.count += report_.count;
    if (report_.message) total_.message = report_.message;
    append(total_.saved, report_.saved);
    append(total_.items, report_.items);
    append(total_.drafts, report_.drafts);
    append(total_.deletedFiles, report_.deletedFiles);
    append(total_.errors, report_.errors);
  }

  const Options& options_;
  mailbox::RunReport& report_;
  mailbox::RunReport total_{{}};
};

}  // namespace

int runWatch(const Options& options) {
  const auto session = openSession(options);
  mailbox::Seen seen{mailbox::seenFile(mailbox::stateFolder(), session->store().directory())};
  catchStopSignals();
  session->cleanUp();
  session->start();
  Printer printer{options, session->report()};
  mailbox::Watch watch{*session,
                       seen,
                       {.poll = std::chrono::seconds{options.poll},
                        .stopDescriptor = stopPipe[0],
                        .stopping = [] { return stopSignal != 0; },
                        .handled = [&] { printer.handled(); }}};
  if (options.once) {
    announce(*session, options);
    watch.catchUp();
  } else {
    watch.begin();
    announce(*session, options);  // true from here on
    watch.run();
  }
  session->finish();
  return printer.finished();
}

}  // namespace quillfile::app
