// The module's own commands on link notes, over a test's mail store.
#pragma once

#include "core/links/link_commands.h"
#include "hosts/mailbox/services/letters.h"
#include "tests/mailbox/outlook/mailbox.h"

namespace quillfile::mailbox {

class QuietEngine final : public EngineServices, public EngineLog {
 public:
  Text settingsApplicationName() override { return u"Corvane"; }
  Ref<ModuleCollection> prepareModuleCollection(TextView) override { return nullptr; }
  Text specialFolderPath(std::int32_t) override { return {}; }
  void ensureFolder(TextView) override {}
  Text expandPath(TextView path) override { return Text{path}; }
  void reportError(TextView message, std::int32_t, TextView source) override {
    errors.push_back(toUtf8(source) + ": " + toUtf8(message));
  }
  Ref<LanguageStrings> languageStrings() override { return nullptr; }
  void prepareForm(TextView) override {}
  bool wanted() override { return false; }
  void write(TextView, TextView, TextView, std::int32_t) override {}

  std::vector<std::string> errors;
};

class RegularFiles final : public LinkedFiles {
 public:
  bool exists(const Ref<SafeItem>&, TextView path) override {
    return std::filesystem::is_regular_file(toUtf8(path));
  }
};

class OutlookLinks : public OutlookItems {
 protected:
  bool restore(const std::shared_ptr<MailboxItem>& item) {
    LinkCommands commands{ports(), client->helper(), application()};
    const bool done = commands.ReplaceLinksWithAttachments(item);
    item->finishRestore();
    return done;
  }
  bool eraseLinks(const Ref<Item>& item) {
    LinkCommands commands{ports(), client->helper(), application()};
    return commands.JustEraseLinks(item);
  }

  QuietEngine engine;

 private:
  LinkPorts ports() { return {engine, engine, letters, linkedFiles, rules}; }
  const Ref<Application>& application() { return application_ = client; }

  PathRules rules = PathRules::posix();
  UnicodeLetters letters;
  RegularFiles linkedFiles;
  Ref<Application> application_;
};

}  // namespace quillfile::mailbox
