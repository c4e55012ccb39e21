// What a note costs, in counts: neither reading, writing nor searching a body may grow with the number of its
// notes.
#include "tests/core/links/link_command_room.h"

namespace quillfile {
namespace {

// Counts the units that are copied into lower case.
class CountingLetters : public FakeLetters {
 public:
  Text lower(TextView text) override {
    units += text.size();
    return FakeLetters::lower(text);
  }
  std::size_t units = 0;
};

// An item that lends its body, as a host does that keeps it: a body that is read or written whole is counted.
class LendingItem : public FakeSafeItem {
 public:
  using FakeSafeItem::FakeSafeItem;

  Text body(BodyKind kind) override { return ++whole, FakeSafeItem::body(kind); }
  void setBody(BodyKind kind, TextView text) override { ++whole, FakeSafeItem::setBody(kind, text); }
  std::unique_ptr<WorkingCopy> workingCopy(BodyKind kind) override {
    if (!lent) lent = std::make_shared<LooseCopy>(FakeSafeItem::body(kind));
    struct Loan : WorkingCopy {
      explicit Loan(std::shared_ptr<LooseCopy> of) : of_(std::move(of)) {}
      TextView text() const override { return of_->text(); }
      void replace(Position begin, Position end, TextView replacement) override {
        of_->replace(begin, end, replacement);
      }
      void write() override {}
      std::shared_ptr<LooseCopy> of_;
    };
    return std::make_unique<Loan>(lent);
  }

  std::shared_ptr<LooseCopy> lent;
  std::size_t whole = 0;
};

class LendingHelper : public FakeMailHelper {
 public:
  using FakeMailHelper::FakeMailHelper;
  Ref<SafeItem> wrap(const Ref<Item>& item) override {
    return last = std::make_shared<LendingItem>(std::dynamic_pointer_cast<FakeItem>(item));
  }
  std::shared_ptr<LendingItem> last;
};

class LinkCost : public LinkCommand {};
INSTANTIATE_TEST_SUITE_P(Rules, LinkCost, bothRules(), rulesName);

TEST_P(LinkCost, NoNoteCostsAPassOverTheBodyThatItStandsIn) {
  constexpr std::size_t notes = 300, filler = 50'000;
  world.log.isWanted = false;
  const Ref<Application> application = world.application;
  for (const TextView format : {u"TEXT", u"RTF", u"HTML"}) {
    Text body = Text(filler, u'.');
    for (std::size_t i = 0; i < notes; ++i) {
      const Text name = fill(u"{}.pdf", i);
      world.files.add(text.path(name));
      body += format == u"TEXT"  ? u"\r\n\r\n" + text.plainNote(name)
              : format == u"RTF" ? u"\\par\r\n" + text.rtfNote(name) + u"\\par"
                                 : text.htmlNote(name);
    }
    CountingLetters letters;
    LendingHelper helper{world.record};
    LinkCommands counted{{world.services, world.log, letters, world.files, world.paths}, helper, application};
    const auto forward = world.addItem(
        {.subject = u"F", .format = Text{format}, .body = body, .htmlBody = body, .rtfBody = body});
    ASSERT_TRUE(counted.ReplaceLinksWithAttachments(forward));
    EXPECT_EQ(forward->attached.size(), notes);
    EXPECT_EQ(find(helper.last->lent->text(), u"Attachment"), 0);
    EXPECT_EQ(helper.last->whole, 0u) << "a body was read or written whole: " << toUtf8(format);
    EXPECT_LT(letters.units, notes * 2'000)
        << "more than the notes' own text was lowered: " << toUtf8(format);
  }
}

// A search that ignores case asks for the lower case of what lies beyond ASCII. Here each note ends with such
// a letter, so that whoever looks at a note asks.
TEST_P(LinkCost, NoNoteIsLookedAtForEachOther) {
  constexpr std::size_t notes = 1'000;
  world.log.isWanted = false;
  const Ref<Application> application = world.application;
  Text body;
  for (std::size_t i = 0; i < notes; ++i)
    body += fill(u"{}\r\n\r\n",
                 text.plainNote(decimal(1'000 + static_cast<std::int64_t>(i)) + Text(100, u'\u00C9')));
  CountingLetters letters;
  LendingHelper helper{world.record};
  LinkCommands counted{{world.services, world.log, letters, world.files, world.paths}, helper, application};
  const auto forward = world.addItem({.subject = u"F", .format = u"TEXT", .body = body});
  ASSERT_TRUE(counted.ReplaceLinksWithAttachments(forward));
  EXPECT_EQ(find(helper.last->lent->text(), u"Attachment"), 0);
  EXPECT_LT(letters.units, notes * 2'000);
}

}  // namespace
}  // namespace quillfile
