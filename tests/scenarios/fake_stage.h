// FakeStage: the stage of the hosts whose mail client is the fakes': scenery and user; the engine is left to
// whoever drives the module. CoreStage: the core itself over the fakes.
#pragma once

#include <memory>

#include "core/module/module.h"
#include "tests/fakes/fake_platform.h"
#include "tests/scenarios/scenario.h"

namespace quillfile {

class FakeStage : public Stage {
 public:
  FakeStage(FakePlatform& world, Text folder);

  Mail add(const ItemData& item, const std::vector<AttachmentData>& attachments,
           DefaultFolder folder) override;
  void file(TextView name, bool readOnly) override;
  void show(DefaultFolder folder) override { world.explorer->folder = world.folder(folder); }
  void select(const std::vector<Mail>& mails) override;
  void selectNothing() override;
  void does(Mail mail, Doing doing) override;
  std::vector<Text> itemsNow() const;  // as an outcome lists them

 protected:
  // Calls an entry point of the module: its result, or the failure that it hands to the engine, is a line of
  // the transcript.
  template <class Body>
  void calling(TextView entry, Body&& body) {
    try {
      world.record.did(resultLine(entry, body()));
    } catch (const Failure& failure) {
      world.record.did(fill(u"{} fails: {}", entry, failure.description));
    }
  }
  Ref<Item> item(Mail mail) const { return items_.at(mail); }

  FakePlatform& world;

 private:
  std::vector<std::shared_ptr<FakeItem>> items_;
};

class CoreStage final : public FakeStage {
 public:
  using FakeStage::FakeStage;
  void start() override;
  void stop() override;
  void openExplorer() override;
  void closeExplorer() override;
  void message(TextView text) override;
  void arrived(Mail mail, DefaultFolder folder) override;
  void button() override;
  void hotkey() override;
  void open(Mail mail) override;

 private:
  std::unique_ptr<Module> module_;
};

// Plays a scenario on the core over the fakes. Failures begin once the scenery stands.
Outcome playOnCore(const Scenario& scenario, const PathRules& rules, const Text& saveFolder,
                   const Failing& failing = {});
// Sets the world to fail from now on.
void fail(FakePlatform& world, const Failing& failing);
// The fakes' files below the folder, as an outcome lists them.
std::vector<Text> filesBelow(FakeFiles& files, const Text& folder);

}  // namespace quillfile
