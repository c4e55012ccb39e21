#include "hosts/windows/services/dates.h"

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/variant.h"

namespace quillfile::windows {

Text LocaleDates::general(const LocalTime& time) {
  Bstr text;
  check(VarBstrFromDate(Variant::date(time).raw().date, locale_, 0, text.out()));
  return text.text();
}

LocalTime LocaleDates::parse(TextView text) {
  Text whole{text};
  Variant date;
  VARIANT* out = date.out();
  if (FAILED(VarDateFromStr(wide(whole), locale_, 0, &out->date))) throw Failure::typeMismatch();
  out->vt = VT_DATE;
  return date.date();
}

}  // namespace quillfile::windows
