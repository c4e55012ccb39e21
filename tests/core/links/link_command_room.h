// LinkCommand: the commands over links in a fake world, under both path rules.
#pragma once

#include "core/links/link_commands.h"
#include "tests/core/links/link_texts.h"
#include "tests/fakes/both_rules.h"

namespace quillfile {

// The commands as the module composes them, over a fake world.
struct Commands {
  explicit Commands(FakePlatform& world)
      : application(world.application),
        commands({world.services, world.log, world.letters, world.files, world.paths}, world.mailHelper,
                 application) {}
  Ref<Application> application;
  LinkCommands commands;
};

class LinkCommand : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  Commands made{world};
  LinkCommands& commands = made.commands;
  LinkTexts text{GetParam()};

  void addFiles(const std::vector<Text>& names) {
    for (const auto& name : names) world.files.add(text.path(name));
  }
  static std::vector<Text> attachedTo(const FakeItem& item) {
    std::vector<Text> names;
    for (const auto& attachment : item.attached) names.push_back(attachment->fileName);
    return names;
  }
  // The effects alone: everything but the trace.
  std::vector<Text> effects() const {
    std::vector<Text> lines;
    for (const auto& line : world.record.lines())
      if (!startsWith(line, u"trace ")) lines.push_back(line);
    return lines;
  }
};

}  // namespace quillfile
