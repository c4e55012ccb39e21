// The program that the user wants run on what was saved. It is started and not waited for; a program that
// cannot be started ends the procedure silently.
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"ExecuteProgram";

// The numbers of the setting "ExecuteOn".
constexpr std::int32_t onEmails = 0, onAttachments = 1, onBoth = 2;

}  // namespace

// "%1" counts only after the command line's last separator. A command line without one starts nothing: there
// is no text before it to take.
void QuillfileRoutines::ExecuteProgram(TextView path) {
  ignoringErrors([&] {
    const auto mode = ports_.settings.number(u"ExecuteOn");
    if (!ports_.files.fileListed(path)) return ports_.trace(u"Execute", u"File not found: {}", path);
    if (mode != onAttachments && mode != onBoth) return;
    const auto commandLine = ports_.settings.text(u"ExecuteCommandLine");
    if (commandLine.empty()) return;
    const auto separator = findLast(commandLine, ports_.paths.separator);
    const auto head = left(commandLine, separator - 1);
    const auto tail = replaceAll(from(commandLine, separator + 1), u"%1", path);
    const auto started = fill(u"{}{}{}", head, ports_.paths.separator, tail);
    ports_.trace(name, u"Executing {}", started);
    ports_.programs.start(started, path);
  });
}

void QuillfileRoutines::ExecuteProgramOnEmail(TextView path) {
  ignoringErrors([&] {
    const auto mode = ports_.settings.number(u"ExecuteOn");
    if (!ports_.files.fileListed(path)) return ports_.trace(u"ExecuteOnEmail", u"File not found: {}", path);
    if (mode != onEmails && mode != onBoth) return;
    const auto commandLine = ports_.settings.text(u"ExecuteCommandLine");
    if (commandLine.empty()) return;
    ports_.trace(name, u"firstPart: {}", commandLine);
    const auto started = replaceAll(commandLine, u"%1", path);
    ports_.trace(name, u"Executing {}", started);
    ports_.programs.start(started, path);
  });
}

}  // namespace quillfile
