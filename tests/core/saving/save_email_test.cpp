#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class SaveEmail : public SavingUnderBothRules {
 protected:
  bool save(bool skipCriteria = true) {
    world.record.clear();
    return engine.SaveEmail(world.addItem({.label = u"A", .subject = u"In/voice"}), skipCriteria,
                            path(u"/Saved/"));
  }
  Text saved(TextView name, int type) const {
    return fill(u"A: save as {}{} of type {}", path(u"/Saved/"), name, type);
  }
  void formats(TextView first, TextView second) {
    world.settings.set(u"SaveEmailsAs1", first);
    world.settings.set(u"SaveEmailsAs2", second);
  }
};

TEST_P(SaveEmail, ByDefaultThereIsOneMessageFile) {
  EXPECT_TRUE(save());
  expectTranscript(lines(), {fill(u"trace SaveEmail: Saving to {}", path(u"/Saved/Invoice.msg")),
                             saved(u"Invoice.msg", 3)});
}

TEST_P(SaveEmail, TwoFormatsShareABaseName) {
  formats(u"2", u"3");
  EXPECT_TRUE(save());
  expectTranscript(
      lines(),
      {fill(u"trace SaveEmail: Saving to {}", path(u"/Saved/Invoice.txt")), saved(u"Invoice.txt", 1),
       fill(u"trace SaveEmail: Saving 2nd to {}", path(u"/Saved/Invoice.eml")), saved(u"Invoice.eml", 1024)});
}

TEST_P(SaveEmail, EachFormatHasItsExtensionAndType) {
  formats(u"1", u"4");
  EXPECT_TRUE(save());
  expectTranscript(done(), {saved(u"Invoice.html", 5), saved(u"Invoice.tnef", 1025)});
}

TEST_P(SaveEmail, ANumberThatIsNoFormatWritesNothing) {
  formats(u"-1", u"5");
  EXPECT_TRUE(save());
  expectTranscript(lines(), {});
}

TEST_P(SaveEmail, ATakenNameIsNumbered) {
  save();
  EXPECT_TRUE(save());
  expectTranscript(done(), {saved(u"Invoice-1.msg", 3)});
}

TEST_P(SaveEmail, WithoutRenamingTheSubjectIsTheName) {
  world.settings.set(u"AutomaticRename", u"0");
  EXPECT_TRUE(
      engine.SaveEmail(world.addItem({.label = u"A", .subject = u"..\\In/voice"}), true, path(u"/New?")));
  expectTranscript(done(), {fill(u"create folder {}", path(u"/New-")),
                            fill(u"A: save as {} of type 3", path(u"/New-/..Invoice.msg"))});
}

TEST_P(SaveEmail, TheProgramRunsOnTheFirstFileAlone) {
  formats(u"2", u"3");
  world.settings.set(u"ExecuteWanted", u"1");
  world.settings.set(u"ExecuteOn", u"2");
  world.settings.set(u"ExecuteCommandLine", u"view %1");
  EXPECT_TRUE(save());
  const auto first = path(u"/Saved/Invoice.txt");
  expectTranscript(done(), {saved(u"Invoice.txt", 1), fill(u"start view {} for {}", first, first),
                            saved(u"Invoice.eml", 1024)});
}

TEST_P(SaveEmail, WithCriteriaAndNoFilterOnNothingIsWritten) {
  EXPECT_FALSE(save(false));
  EXPECT_TRUE(done().empty());
}

TEST_P(SaveEmail, AFilterQualifiesTheEmail) {
  world.settings.set(u"SubjectLineEnabled", u"1");
  world.settings.set(u"SubjectLine", u"VOICE");
  EXPECT_TRUE(save(false));
  expectTranscript(done(), {saved(u"Invoice.msg", 3)});
}

TEST_P(SaveEmail, APatternThatWasNeverStoredMatchesNothingOrdinary) {
  world.settings.set(u"SubjectLineEnabled", u"1");
  EXPECT_FALSE(save(false));
  EXPECT_EQ(traced(u"CheckSave").at(2), u"TextSubject: not found");
}

TEST_P(SaveEmail, TheSizeIsTheNumberOfANoughtAndTheStoredText) {
  for (const auto& [stored, line] : {std::pair<TextView, TextView>{u"", u"TextFileSize: 0"},
                                     std::pair<TextView, TextView>{u"12", u"TextFileSize: 12"}}) {
    world.settings.set(u"AttachmentSize", stored);
    EXPECT_FALSE(save(false));
    EXPECT_EQ(traced(u"CheckSave").at(8), line);
  }
  world.settings.set(u"AttachmentSize", u"-1");
  EXPECT_FALSE(save(false));
  expectTranscript(lines(),
                   {u"error 0 Quillfile.SaveEmail: Error occurred at line 1.  Reason: Type mismatch"});
}

TEST_P(SaveEmail, AnErrorIsReportedAndEndsIt) {
  formats(u"2", u"3");
  world.record.failOn(u"SafeItem.saveAs", {5, u"No such format"});
  EXPECT_FALSE(save());
  expectTranscript(done(),
                   {u"SafeItem.saveAs fails",
                    u"error 0 Quillfile.SaveEmail: Error occurred at line 3.  Reason: No such format"});
}

RUN_UNDER_BOTH_RULES(SaveEmail);

}  // namespace
}  // namespace quillfile
