// Dates as the automation values carry them: days since 1899-12-30, the time as the fraction of a day.
#pragma once

#include <string>
#include <string_view>

#include "nvdl/Export.h"
#include "nvdl/Types.h"

NVDL_API_BEGIN

namespace nvdl {

// Date text of the system locale: "M/D/YYYY h:mm:ss AM"; the date alone when the time is midnight,
// the time alone when the day is 0.
std::string formatDate(DATE date);
// Parses the forms formatDate writes, ISO "YYYY-MM-DD[ HH:MM[:SS]]" and a time alone. False if it does not parse.
bool parseDate(std::string_view text, DATE& date);
// Day arithmetic: calendar date and time to days since 1899-12-30 and back.
DATE dateFromParts(int year, int month, int day, int hour, int minute, double second);
struct DateParts {
    int year, month, day, hour, minute, second, dayOfWeek;  // dayOfWeek 0 = Sunday
};
bool dateToParts(DATE date, DateParts& parts);

}  // namespace nvdl

NVDL_API_END
