#include "core/platform/item.h"

namespace quillfile {
namespace {

class CopiedBody final : public LooseCopy {
 public:
  CopiedBody(SafeItem& item, BodyKind kind) : LooseCopy(item.body(kind)), item_(item), kind_(kind) {}
  void write() override { item_.setBody(kind_, text()); }

 private:
  SafeItem& item_;
  BodyKind kind_;
};

}  // namespace

std::unique_ptr<WorkingCopy> SafeItem::workingCopy(BodyKind kind) {
  return std::make_unique<CopiedBody>(*this, kind);
}

}  // namespace quillfile
