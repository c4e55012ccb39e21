#include "core/commands/dispatch.h"

namespace quillfile {

void Dispatch::ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) {
  constexpr Procedure about{.name = u".ProcessClick", .wording = wording::atLine};
  cancel = procedure(ports_.services, about, [&](Step& at) -> bool {
    at(1);
    ports_.trace(u"ProcessClick", u"{} {} action: {}", typeName, slot, action);
    at(2);
    const auto explorer = held(ports_.module.outlookApp).activeExplorer();
    if (held(held(explorer).currentFolder()).entryId() == ports_.module.outboxEntryId) {
      ports_.trace(u"Processclick", u"In Outbox, skipping processing");  // sic
      return false;
    }
    at(3);
    if (ports_.settings.number(u"AutomaticReattachWanted") == 0) return false;
    at(4);
    return respond(typeName, slot, action);
  });
}

bool Dispatch::respond(TextView typeName, std::int32_t slot, TextView action) {
  struct Row {
    TextView action;
    bool (Responses::*respond)(std::int32_t slot, TextView typeName);
  };
  constexpr Row rows[] = {{u"Forward", &Responses::ForwardItem},
                          {u"Reply", &Responses::ReplyItem},
                          {u"ReplyToAll", &Responses::ReplyAllItem}};
  for (const auto& row : rows)
    if (row.action == action) return (responses_.*row.respond)(slot, typeName);
  return false;
}

}  // namespace quillfile
