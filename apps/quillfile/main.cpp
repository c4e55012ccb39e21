// quillfile: the command line.
#include <cstdio>
#include <exception>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/options.h"
#include "core/platform/failure.h"
#include "hosts/mailbox/engine/printable.h"

int main(int argc, char** argv) {
  using namespace quillfile;
  int status = app::done;
  try {
    const auto options = app::parseOptions(argc, argv, status);
    if (!options) return status;
    status = app::runCommand(*options);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    std::fputs("quillfile: Standard output could not be written.\n", stderr);
    return app::not_all_done;
  } catch (const app::WrongCommandLine& wrong) {
    std::fprintf(stderr, "quillfile: %s\n", mailbox::printable(fromUtf8(wrong.reason)).c_str());
    return app::wrong_command_line;
  } catch (const Failure& failure) {
    std::fprintf(stderr, "quillfile: %s.\n", mailbox::printable(failure.description).c_str());
    return app::unusable;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quillfile: %s.\n", error.what());
    return app::unusable;
  }
}
