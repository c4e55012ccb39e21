// What the tests of the three commands share: the commands over a started module with a recording saving
// engine.
#pragma once

#include "core/commands/commands.h"
#include "tests/fakes/both_rules.h"
#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/fake_rooms.h"

namespace quillfile {

struct CommandsUnderTest {
  explicit CommandsUnderTest(FakePlatform& fake)
      : world(fake), settings(world.settings, world.services, world.paths), saving(world.record, counter) {
    state.engine = world.host;
    state.outlookApp = world.application;
  }

  FakePlatform& world;
  Settings settings;
  RunCounter counter;
  FakeSavingEngine saving;
  ModuleState state;
  Commands commands{{.module = state,
                     .settings = settings,
                     .saving = saving,
                     .counter = counter,
                     .services = world.services,
                     .utilities = world.utilities,
                     .user = world.user,
                     .letters = world.letters,
                     .trace = Trace{world.log},
                     .paths = world.paths}};
};

// The settings of a typical run; each test changes what it is about.
inline void typicalSettings(FakePlatform& world) {
  world.settings.set(u"SavePath", world.path(u"C:\\Saved\\"));
  world.settings.set(u"SaveAllAttachments", u"1");
  world.settings.set(u"PostProcess", u"1");
  world.settings.set(u"RemoveAttachment", u"1");
  world.settings.set(u"AddURL", u"1");
}

// The eleven lines of typicalSettings().
inline std::vector<Text> optionLines(TextView procedure, TextView savePath, bool imitate = false,
                                     TextView sendRemove = u"0", TextView sendDelete = u"0") {
  std::vector<Text> lines;
  const auto line = [&](TextView text, TextView value) {
    lines.push_back(fill(u"trace {}: {}{}", procedure, text, value));
  };
  line(u"Save All Attachments: ", u"-1");
  line(u"Post Pocessing (read, unread, delete): ", u"1");
  line(u"Remove Attachment After Processing: ", u"-1");
  line(u"Mimic Outlook Folders: ", imitate ? u"-1" : u"0");
  line(u"Error Prompt: ", u"0");
  line(u"Add URL: ", u"-1");
  line(u"Root Save Path: ", savePath);
  line(u"Read write change (none, ro, rw): ", u"0");
  line(u"Automatic Rename: ", u"-1");
  line(u"Send Remove Attachments: ", sendRemove);
  line(u"Send Delete Attachments: ", sendDelete);
  return lines;
}

// What the saving engine is told of an item under typicalSettings().
inline Text saved(TextView label, TextView savePath, TextView sent = u"no") {
  return fill(
      u"save {}: skip criteria yes, after save 1, error prompt no, add link yes, remove yes, read/write 0, "
      u"path {}, sent {}",
      label, savePath, sent);
}

inline std::vector<Text> operator+(std::vector<Text> lines, const std::vector<Text>& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

}  // namespace quillfile
