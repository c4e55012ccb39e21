#include "hosts/mailbox/formats/message_content.h"

#include <array>

namespace quillfile::formats {
namespace {

struct ClassRow {
  TextView itemType;
  std::string_view method;  // empty: any
  TextView messageClass;
};

constexpr std::array kClasses = {
    ClassRow{u"PostItem", "", u"IPM.Post"},
    ClassRow{u"MeetingItem", "CANCEL", u"IPM.Schedule.Meeting.Canceled"},
    ClassRow{u"MeetingItem", "REPLY", u"IPM.Schedule.Meeting.Resp.Pos"},
    ClassRow{u"MeetingItem", "", u"IPM.Schedule.Meeting.Request"},
    ClassRow{u"ReportItem", "", u"REPORT.IPM.Note.NDR"},
};

}  // namespace

Text messageClassOf(TextView itemType, std::string_view method) {
  for (const ClassRow& row : kClasses) {
    if (row.itemType == itemType && (row.method.empty() || row.method == method))
      return Text(row.messageClass);
  }
  return u"IPM.Note";
}

}  // namespace quillfile::formats
