// The rooms as the module puts them together: from the mail client's event to the rebuilt response.
#include "core/files/frm_yes_no_prompt.h"
#include "core/module/module.h"
#include "tests/core/links/link_texts.h"

namespace quillfile {
namespace {

class Wiring : public UnderBothRules {
 protected:
  Module module{world.platform()};
  LinkTexts text{GetParam()};

  void SetUp() override {
    world.log.isWanted = false;
    module.api().CEStartup(world.host);
    module.api().CEExplorerOpen(world.explorer);
    world.files.add(text.path(u"a.pdf"));
    world.record.clear();
  }
};

INSTANTIATE_TEST_SUITE_P(Paths, Wiring, bothRules(), rulesName);

TEST_P(Wiring, AForwardOfTheSelectedMailIsTheModulesOwnWithItsFileBack) {
  auto mail = world.addItem({.subject = u"A", .body = text.plainNote(u"a.pdf")});
  world.explorer->select({mail});
  EXPECT_TRUE(mail->raiseRespond(Response::forward));
  ASSERT_EQ(mail->responses.size(), 1u);
  EXPECT_EQ(mail->responses[0]->data.body, u"");
  EXPECT_EQ(mail->responses[0]->attached.size(), 1u);
  EXPECT_TRUE(mail->responses[0]->displayed);
}

TEST_P(Wiring, WithTheSettingOffTheMailClientsOwnResponsesGoAhead) {
  world.settings.set(u"AutomaticReattachWanted", u"0");
  auto mail = world.addItem({.subject = u"A"});
  module.api().CEInspectorOpen(world.openInspector(mail));
  for (const auto response : {Response::forward, Response::reply, Response::reply_all})
    EXPECT_FALSE(mail->raiseRespond(response, true));
  EXPECT_TRUE(mail->responses.empty());
}

TEST_P(Wiring, AnOpenItemsReplyLosesItsNotesAndItsCloseFreesTheSlot) {
  auto mail = world.addItem({.subject = u"A", .body = u"Hi " + text.plainNote(u"a.pdf")});
  module.api().CEInspectorOpen(world.openInspector(mail));
  EXPECT_TRUE(mail->raiseRespond(Response::reply));
  EXPECT_EQ(mail->responses[0]->data.body, u"Hi ");
  EXPECT_FALSE(mail->raiseClose());
  EXPECT_EQ(mail->listeners.count(), 0u);
}

TEST_P(Wiring, WhatTheUserSavesIsOnTheListsThatAnyoneMayAsk) {
  auto mail = world.addItem({.subject = u"A", .saved = false});
  module.api().CEInspectorOpen(world.openInspector(mail));
  mail->raiseWrite();
  EXPECT_TRUE(module.lists().IsOnPendingList(u"m_olMailItem1"));
  mail->save();
  mail->raiseWrite();
  EXPECT_TRUE(module.lists().IsOnUserSavedList(u"A-id"));
}

TEST_P(Wiring, ADeletedMailOffersToDeleteItsFile) {
  world.explorer->selected = std::vector<Ref<Item>>(1);
  world.dialogs.promptAnswers = {frmYesNoPrompt::ResponseYes};
  auto mail =
      world.addItem({.subject = u"A", .body = text.plainNote(u"a.pdf")}, DefaultFolder::deleted_items);
  const auto& folder = world.folder(DefaultFolder::deleted_items);
  module.api().CEItemEvent(1, mail, folder->id(), folder->store());
  EXPECT_FALSE(world.files.find(text.path(u"a.pdf")));
}

TEST_P(Wiring, AfterAShutdownNothingIsListenedTo) {
  auto mail = world.addItem({.subject = u"A"});
  world.explorer->select({mail});
  module.api().CEInspectorOpen(world.openInspector(mail));
  EXPECT_EQ(mail->listeners.count(), 2u);
  module.api().CEShutdown();
  EXPECT_EQ(mail->listeners.count(), 0u);
  EXPECT_EQ(world.explorer->listeners.count(), 0u);
}

}  // namespace
}  // namespace quillfile
