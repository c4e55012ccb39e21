// HostServices: one host's services, as the contract suites see them: the ports, and what a test needs of the
// world around them. Each test program says which hosts it has; the same suites run against all of them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/platform/date_time.h"
#include "core/platform/letter_case.h"
#include "core/platform/path_rules.h"
#include "core/platform/settings_store.h"
#include "core/platform/system.h"
#include "core/platform/user_interface.h"

namespace quillfile {

struct ServicePorts {
  FileSystem& files;
  FileTimes& times;
  SettingsStore& settings;
  DateFormat& dates;
  LetterCase& letters;
  Clock& clock;
  Programs& programs;
  UserInterface& user;
  Dialogs& dialogs;
  PathRules paths;
};

class HostServices {
 public:
  virtual ~HostServices() = default;
  virtual ServicePorts ports() = 0;

  // --- A folder of the test's own, empty at first, with a separator at its end.
  virtual Text folder() = 0;
  // A file in it, which some other program has written; gives its path.
  virtual Text file(TextView name) = 0;
  // When it was last written; 0 when it is not there.
  virtual FileTimes::FileTime lastWrite(TextView path) = 0;
  // Another program holds the file open and shares it with nobody, until the result goes or `milliseconds`
  // have passed (0: no limit). Null where the system has no such thing.
  virtual std::shared_ptr<void> hold(TextView path, int milliseconds) = 0;

  // --- A user, who does this at the next window and remembers its text.
  virtual void userAnswers(Answer answer) = 0;  // a message box
  virtual void userAnswersPrompt(
      std::int32_t answer) = 0;  // 1 No, 2 No to All, 3 Yes, 4 Yes to All, 0 closes it
  virtual void userTakes(
      std::optional<Text> name) = 0;  // in the Save-As form; empty: the proposed; none: Cancel
  virtual Text seen() = 0;            // the text of the last box or prompt; lines may end in any way
};

struct ContractHost {
  std::string name;
  std::function<std::unique_ptr<HostServices>()> make;
};
inline void PrintTo(const ContractHost& host, std::ostream* out) { *out << host.name; }

// The hosts of this test program.
std::vector<ContractHost> contractHosts();
// The fakes, under either system's rules: a host as any other.
std::vector<ContractHost> fakeHosts();

}  // namespace quillfile
