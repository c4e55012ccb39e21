// SideBySide: one scenario run twice: on the core over the fakes of its own tests, and on the registered
// component over the same fakes behind automation objects. The transcripts must be the same, line for line.
#pragma once

#include <functional>

#include "core/module/module.h"
#include "tests/windows/fakes/com_world.h"
#include "tests/windows/fakes/desktop.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {

// The module as a scenario drives it.
class Driver {
 public:
  virtual ~Driver() = default;
  virtual void button() = 0;
  virtual void hotkey() = 0;
  virtual void itemAdded(const Ref<Item>& item, DefaultFolder folder) = 0;
  virtual void openInspector(const Ref<Item>& item) = 0;
  virtual void openExplorer() = 0;
  virtual void message(TextView text) = 0;
  virtual void closeExplorer() = 0;
  virtual void stop() = 0;
};

struct Answers {
  std::deque<Answer> boxes;
  std::deque<std::int32_t> prompts;
  std::deque<std::optional<Text>> paths;
};

// Where a scenario plays: a folder of the disk's, with "\" at its end, which the fakes know too.
struct Stage {
  FakePlatform& world;
  Text folder;
  // A file that is there before.
  std::function<void(TextView name, std::int32_t attributes)> file;
};

struct Scenario {
  std::string name;
  std::vector<std::pair<Text, Text>> settings = {};  // beside those of SideBySide::usual()
  std::function<void(Stage&)> act = {};              // fills the world, before the module is started
  std::function<void(Stage&, Driver&)> play = {};    // empty: the button
  Answers answers = {};
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

struct Outcome {
  std::vector<Text> lines;
  std::vector<std::pair<Text, std::optional<Text>>> settings;  // those that the module wrote
};

class SideBySide {
 public:
  // `failing`: the port's call that fails each time; empty for none.
  static Outcome onCore(const Scenario& scenario, TextView failing = {});
  static Outcome onComponent(const Scenario& scenario, TextView failing = {}, bool withMailHelper = true);

  // The manual run with removal and links into the stage's folder.
  static std::vector<std::pair<Text, Text>> usual(const Text& folder);
};

}  // namespace quillfile::windows
