// The four item types that are tracked, by the mail client's own type names. Items of any other type are
// ignored.
#pragma once

#include <array>
#include <cstdint>

#include "core/text/text.h"

namespace quillfile {

struct ItemType {
  TextView name;
  TextView explorerItem;  // the reference to the explorer's current item of this type
  TextView slotStem;      // of the ten watched slots; with the number the slot's name: "m_olMailItem3"
  TextView mapProcedure;
};

inline constexpr std::array itemTypes{
    ItemType{u"MailItem", u"m_olExplorerMailItem", u"m_olMailItem", u".MapMailItem"},
    ItemType{u"PostItem", u"m_olExplorerPostItem", u"m_olPostItem", u".MapPostItem"},
    ItemType{u"MeetingItem", u"m_olExplorerMeetingItem", u"m_olMeetingItem", u".MapMeetingItem"},
    ItemType{u"ReportItem", u"m_olExplorerReportItem", u"m_olReportItem", u".MapReportItem"},
};

// Slots of one type are numbered from 1; 0 is the explorer's current item.
inline constexpr std::int32_t slotsPerType = 10;
inline constexpr std::int32_t explorerSlot = 0;

}  // namespace quillfile
