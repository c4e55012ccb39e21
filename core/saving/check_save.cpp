// CheckSave: whether an item qualifies for saving under the filters that the user set.
#include <limits>

#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"CheckSave";

// One run of CheckSave. The filters are alternatives: the first that qualifies the whole item ends it.
class Criteria {
 public:
  Criteria(QuillfileRoutines& routines, const SavingPorts& ports, const Ref<Item>& item, TextView savePath,
           SaveFilters& filters, const SavingContext& context, bool checkOnly)
      : routines_(routines),
        ports_(ports),
        item_(item),
        savePath_(savePath),
        filters_(filters),
        context_(context),
        checkOnly_(checkOnly) {}

  void run(Step& at) {
    at(1);
    safe_ = ports_.mailHelper.wrap(item_);
    at(2);
    traceFilters();
    tryFilters(at);
    at(8);
    if (!checkOnly_ && anySaved_ && routines_.AttachPaperclip(safe_)) safe_->save();
    at(9);
    ports_.trace(name, u"Leaving (Returning: {})", result_ ? u"True" : u"False");
  }
  bool result() const { return result_; }

 private:
  void traceFilters() const {
    const auto& trace = ports_.trace;
    trace(name, u"Typename: {}", [&] { return item_->typeName(); });
    trace(name, u"SaveBySubjectEnabled: {}", filters_.SaveBySubjectEnabled);
    trace(name, u"TextSubject: {}", filters_.TextSubject);
    trace(name, u"SaveByFromEnabled: {}", filters_.SaveByFromEnabled);
    trace(name, u"TextFrom: {}", filters_.TextFrom);
    trace(name, u"SaveByNameEnabled: {}", filters_.SaveByNameEnabled);
    trace(name, u"TextFileName: {}", filters_.TextFileName);
    trace(name, u"SaveBySizeEnabled: {}", filters_.SaveBySizeEnabled);
    trace(name, u"TextFileSize: {}", filters_.TextFileSize);
  }

  void tryFilters(Step& at) {
    at(3);
    if (filters_.SaveBySubjectEnabled != 0) bySubject();
    if (result_) return;
    at(4);
    if (filters_.SaveByFromEnabled != 0) bySender();
    if (result_) return;
    at(5);
    const bool firstMatched = filters_.SaveByNameEnabled != 0 && byName();
    at(6);
    if (result_ || firstMatched || filters_.SaveBySizeEnabled == 0) return;
    at(7);
    bySize();
  }

  void bySubject() {
    lower(filters_.TextSubject);
    result_ = matches(u"EmailSubject: {}", safe_->subject(), filters_.TextSubject);
  }

  void bySender() {
    lower(filters_.TextFrom);
    result_ = matches(u"emailFrom (.SenderName): {}", safe_->senderName(), filters_.TextFrom);
    if (result_) return;
    const auto sender = safe_->sender();
    if (!sender) return;
    if (sender->type() == u"EX") {
      const auto address = ports_.mailHelper.smtpAddress(sender);
      if (!address.empty()) result_ = matches(u"emailFrom (GetSMTPAddress): {}", address, filters_.TextFrom);
    } else {
      result_ =
          matches(u"emailFrom (.SenderEmailAddress): {}", safe_->senderEmailAddress(), filters_.TextFrom);
    }
  }

  // Looks at every attachment; whether the first one, looked at last, matched.
  bool byName() {
    lower(filters_.TextFileName);
    bool matched = false;
    const auto attachments = safe_->attachments();
    for (auto i = attachments->count(); i >= 1; --i) {
      const auto attachment = attachments->item(i);
      matched =
          matches(u"emailFileName (.DisplayName): {}", attachment->displayName(), filters_.TextFileName) ||
          matches(u"emailFileName (.FileName): {}", attachment->fileName(), filters_.TextFileName);
      if (matched) qualify(i);
    }
    return matched;
  }

  void bySize() {
    constexpr std::int64_t bytesPerKilobyte = 1024;
    const auto limit = filters_.TextFileSize * bytesPerKilobyte;
    using Limits = std::numeric_limits<std::int32_t>;
    if (limit > Limits::max() || limit < Limits::min()) throw Failure::overflow();
    filters_.TextFileSize = static_cast<std::int32_t>(limit);
    const auto attachments = safe_->attachments();
    for (auto i = attachments->count(); i >= 1; --i) {
      const auto size = attachments->item(i)->size();
      ports_.trace(name, u"Attachment Size: {}; Wanted Size: {}", size, limit);
      if (limit <= size) {
        ports_.trace(name, u"Attachment Size failed");
        continue;
      }
      if (!checkOnly_) ports_.trace(name, u"Attachment Size passed");
      qualify(i);
    }
  }

  // An attachment that matches qualifies the item where nothing is saved; else it is saved, and it alone.
  void qualify(std::int32_t index) {
    result_ = checkOnly_;
    if (checkOnly_) return;
    routines_.SaveAttachment(item_, item_->attachments()->item(index), context_, savePath_);
    anySaved_ = true;
  }

  void lower(Text& pattern) const { pattern = ports_.letters.lower(pattern); }

  bool matches(TextView traced, TextView text, TextView pattern) const {
    const auto lowered = ports_.letters.lower(text);
    ports_.trace(name, traced, lowered);
    return ports_.utilities.matchText(lowered, pattern) != 0;
  }

  QuillfileRoutines& routines_;
  const SavingPorts& ports_;
  const Ref<Item>& item_;
  TextView savePath_;
  SaveFilters& filters_;
  const SavingContext& context_;
  const bool checkOnly_;
  Ref<SafeItem> safe_;
  bool result_ = false;
  bool anySaved_ = false;
};

}  // namespace

bool QuillfileRoutines::CheckSave(const Ref<Item>& item, TextView savePath, SaveFilters& filters,
                                  const SavingContext& context, bool checkOnly) {
  Criteria criteria{*this, ports_, item, savePath, filters, context, checkOnly};
  procedure(ports_.services, {.name = u".CheckSave", .wording = wording::atLine},
            [&](Step& at) { criteria.run(at); });
  return criteria.result();
}

}  // namespace quillfile
