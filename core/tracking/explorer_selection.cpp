#include "core/tracking/explorer_selection.h"

#include "core/module/procedure.h"

namespace quillfile {

void ExplorerSelection::listenTo(const Ref<Explorer>& explorer) {
  subscription_.reset();
  explorer_ = explorer;
  if (explorer_) subscription_ = explorer_->listen(*this);
}

void ExplorerSelection::onSelectionChange() {
  constexpr Wording wording{u"Error occurred. Reason: {}", false};
  procedure(services_, {.name = u".SelectionChange(1)", .wording = wording}, [&](Step&) {
    constexpr TextView name = u"olExplorer.SelectionChange";
    Ref<Selection> selection;  // Nothing while the mail client switches views
    ignoringErrors([&] { selection = held(explorer_).selection(); });
    if (!selection) return;
    trace_(name, u"Selection changed");
    const auto count = selection->count();
    if (count <= 0) return;
    trace_(name, u"Selection count: {}", count);
    ExplorerMapUnderlyingItem(selection);
  });
}

bool ExplorerSelection::ExplorerMapUnderlyingItem(const Ref<Selection>& selection) {
  constexpr Wording wording{
      u"Error occurred.  Reason: {}.  Check to see if Exchange Cached Mode and Shared Mailboxes are being "
      u"used at "
      u"the same time.",
      false};
  constexpr Procedure about{.name = u".ExplorerMapUnderlyingItem", .wording = wording};
  return procedure(services_, about, [&](Step&) -> bool {
    const auto active = held(module_.outlookApp).activeExplorer();
    if (held(held(active).currentFolder()).entryId() == module_.outboxEntryId) return true;
    if (held(selection).count() == 0) return true;
    const auto item = selection->item(1);
    if (auto* current = slots_.find(held(item).typeName(), explorerSlot)) current->set(item);
    return true;
  });
}

}  // namespace quillfile
