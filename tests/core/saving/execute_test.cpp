#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class Execute : public SavingUnderBothRules {
 protected:
  Execute() { world.files.add(saved); }
  void commandLine(TextView text) { world.settings.set(u"ExecuteCommandLine", text); }

  const Text saved = path(u"/Saved/a b.pdf");
};

TEST_P(Execute, ThePathStandsWhereTheCommandLineSaysIt) {
  commandLine(path(u"/Tools/view.exe \"%1\""));
  engine.ExecuteProgram(saved);
  const auto started = path(u"/Tools/view.exe \"") + saved + u"\"";
  expectTranscript(lines(), {fill(u"trace ExecuteProgram: Executing {}", started),
                             fill(u"start {} for {}", started, saved)});
}

TEST_P(Execute, ForAnAttachmentOnlyTheTextAfterTheLastSeparatorIsFilled) {
  commandLine(path(u"/Tools/view %1 /out/%1"));
  engine.ExecuteProgram(saved);
  expectTranscript(done(), {fill(u"start {}{} for {}", path(u"/Tools/view %1 /out/"), saved, saved)});
}

TEST_P(Execute, ACommandLineWithoutASeparatorStartsNothingForAnAttachment) {
  commandLine(u"notepad %1");
  engine.ExecuteProgram(saved);
  expectTranscript(lines(), {});
}

TEST_P(Execute, TheSameCommandLineRunsForAnEmail) {
  commandLine(u"notepad %1");
  world.settings.set(u"ExecuteOn", u"0");
  engine.ExecuteProgramOnEmail(saved);
  expectTranscript(lines(), {u"trace ExecuteProgram: firstPart: notepad %1",
                             fill(u"trace ExecuteProgram: Executing notepad {}", saved),
                             fill(u"start notepad {} for {}", saved, saved)});
}

TEST_P(Execute, TheSettingSaysWhatTheProgramIsRunOn) {
  struct Row {
    TextView mode;
    bool onAttachments, onEmails;
  };
  commandLine(path(u"/v %1"));
  for (const auto& [mode, onAttachments, onEmails] :
       {Row{.mode = u"0", .onAttachments = false, .onEmails = true},
        Row{.mode = u"1", .onAttachments = true, .onEmails = false},
        Row{.mode = u"2", .onAttachments = true, .onEmails = true},
        Row{.mode = u"3", .onAttachments = false, .onEmails = false}}) {
    world.settings.set(u"ExecuteOn", mode);
    world.record.clear();
    engine.ExecuteProgram(saved);
    EXPECT_EQ(!done().empty(), onAttachments) << toUtf8(mode);
    world.record.clear();
    engine.ExecuteProgramOnEmail(saved);
    EXPECT_EQ(!done().empty(), onEmails) << toUtf8(mode);
  }
}

TEST_P(Execute, AnEmptyCommandLineStartsNothing) {
  world.settings.set(u"ExecuteOn", u"2");
  engine.ExecuteProgram(saved);
  engine.ExecuteProgramOnEmail(saved);
  expectTranscript(lines(), {});
}

TEST_P(Execute, AFileThatIsGoneIsOnlyTraced) {
  commandLine(path(u"/v %1"));
  world.files.erase(saved);
  engine.ExecuteProgram(saved);
  engine.ExecuteProgramOnEmail(saved);
  expectTranscript(lines(), {fill(u"trace Execute: File not found: {}", saved),
                             fill(u"trace ExecuteOnEmail: File not found: {}", saved)});
}

TEST_P(Execute, AProgramThatDoesNotStartIsSilent) {
  commandLine(path(u"/v %1"));
  world.record.failOn(u"Programs.start");
  engine.ExecuteProgram(saved);
  expectTranscript(
      lines(), {fill(u"trace ExecuteProgram: Executing {}", path(u"/v ") + saved), u"Programs.start fails"});
}

RUN_UNDER_BOTH_RULES(Execute);

}  // namespace
}  // namespace quillfile
