// How a receipt writes its days and times: English words (the receipt's
// sentences are English) in the user's local time zone.
#pragma once

#include <string>

#include "foundation/dates.hpp"

namespace lumenote::ui::models {

// "Monday 23 November 2026": the local day containing `date`.
std::string receiptDayText(Date date, const LocalCalendar& calendar);

// "09:05": the local time of day of `date`, 24-hour clock.
std::string receiptTimeText(Date date, const LocalCalendar& calendar);

// "23 – 29 November 2026", "30 November – 6 December 2026" or
// "28 December 2026 – 3 January 2027": the local days from `first` to
// `last`, both included, with the month and year written once when shared.
std::string receiptDayRangeText(Date first, Date last, const LocalCalendar& calendar);

// "Mon": the short English name of a weekday, 0 Sunday ... 6 Saturday.
std::string receiptShortWeekday(unsigned weekday);

}  // namespace lumenote::ui::models
