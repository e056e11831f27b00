#include "nvdl/Date.h"

#include <cctype>
#include <cmath>
#include <cstdio>

namespace nvdl {

namespace {

// Days from 1970-01-01 of a proleptic Gregorian civil date.
constexpr long long daysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

void civilFromDays(long long z, int& y, int& m, int& d) {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = static_cast<int>(static_cast<long long>(yoe) + era * 400 + (m <= 2));
}

constexpr long long kEpochOffset = daysFromCivil(1899, 12, 30);

int daysInMonth(int y, int m) {
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return m == 2 && leap ? 29 : kDays[m - 1];
}

struct Cursor {
    std::string_view s;
    std::size_t i = 0;
    void skipSpaces() {
        while (i < s.size() && std::isspace(static_cast<unsigned char>(s[i]))) ++i;
    }
    bool number(int& value, int maxDigits = 4) {
        std::size_t start = i;
        value = 0;
        while (i < s.size() && i - start < static_cast<std::size_t>(maxDigits) && std::isdigit(static_cast<unsigned char>(s[i])))
            value = value * 10 + (s[i++] - '0');
        return i > start;
    }
    bool accept(char c) {
        if (i < s.size() && s[i] == c) {
            ++i;
            return true;
        }
        return false;
    }
    bool done() {
        skipSpaces();
        return i == s.size();
    }
};

int expandYear(int year, std::size_t digits) {
    if (digits > 2) return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

// "h:mm[:ss] [AM|PM]" at the cursor.
bool parseTime(Cursor& c, int& h, int& mi, int& sec) {
    sec = 0;
    if (!c.number(h, 2) || !c.accept(':') || !c.number(mi, 2)) return false;
    if (c.accept(':') && !c.number(sec, 2)) return false;
    c.skipSpaces();
    if (c.i + 1 < c.s.size() + 1 && c.i < c.s.size()) {
        char a = static_cast<char>(std::toupper(static_cast<unsigned char>(c.s[c.i])));
        if ((a == 'A' || a == 'P') && c.i + 1 < c.s.size() &&
            std::toupper(static_cast<unsigned char>(c.s[c.i + 1])) == 'M') {
            if (h < 1 || h > 12) return false;
            if (a == 'A' && h == 12) h = 0;
            if (a == 'P' && h != 12) h += 12;
            c.i += 2;
        }
    }
    return h < 24 && mi < 60 && sec < 60;
}

}  // namespace

DATE dateFromParts(int year, int month, int day, int hour, int minute, double second) {
    double days = static_cast<double>(daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) - kEpochOffset);
    double time = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
    // Before the epoch the fraction still counts forward from midnight: -1.25 is 1899-12-29 06:00.
    return days < 0 ? days - time : days + time;
}

bool dateToParts(DATE date, DateParts& p) {
    if (!std::isfinite(date) || date <= -657435.0 || date >= 2958466.0) return false;
    double whole = std::trunc(date);
    double fraction = std::fabs(date - whole);
    long long seconds = std::llround(fraction * 86400.0);
    long long dayNumber = static_cast<long long>(whole);
    if (seconds >= 86400) {
        seconds -= 86400;
        dayNumber += date < 0 ? -1 : 1;
    }
    civilFromDays(dayNumber + kEpochOffset, p.year, p.month, p.day);
    p.hour = static_cast<int>(seconds / 3600);
    p.minute = static_cast<int>(seconds / 60 % 60);
    p.second = static_cast<int>(seconds % 60);
    long long dow = (dayNumber + kEpochOffset + 4) % 7;  // 1970-01-01 was a Thursday
    p.dayOfWeek = static_cast<int>(dow < 0 ? dow + 7 : dow);
    return true;
}

std::string formatDate(DATE date) {
    DateParts p;
    if (!dateToParts(date, p)) return {};
    char buf[64];
    bool hasDay = std::trunc(date) != 0;
    bool hasTime = p.hour || p.minute || p.second;
    // The day alone when there is no time of day, the time alone on the zero day (a pure time,
    // midnight included), both otherwise.
    std::string out;
    if (hasDay) {
        std::snprintf(buf, sizeof buf, "%d/%d/%d", p.month, p.day, p.year);
        out = buf;
        if (!hasTime) return out;
        out += ' ';
    }
    int h12 = p.hour % 12 == 0 ? 12 : p.hour % 12;
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, p.minute, p.second, p.hour < 12 ? "AM" : "PM");
    out += buf;
    return out;
}

bool parseDate(std::string_view text, DATE& date) {
    Cursor c{text};
    c.skipSpaces();
    int a, b, y, h = 0, mi = 0, sec = 0;
    std::size_t start = c.i;
    if (!c.number(a)) return false;
    std::size_t firstDigits = c.i - start;
    if (c.s.size() > c.i && c.s[c.i] == ':') {  // a time alone
        c.i = start;
        if (!parseTime(c, h, mi, sec) || !c.done()) return false;
        date = dateFromParts(1899, 12, 30, h, mi, sec);
        return true;
    }
    int year, month, day;
    if (firstDigits == 4 && c.accept('-')) {  // ISO
        if (!c.number(b, 2) || !c.accept('-') || !c.number(y, 2)) return false;
        year = a, month = b, day = y;
        if (c.accept('T')) {
            if (!parseTime(c, h, mi, sec)) return false;
        }
    } else {
        char sep = c.i < c.s.size() ? c.s[c.i] : '\0';
        if (sep != '/' && sep != '-' && sep != '.') return false;
        ++c.i;
        if (!c.number(b, 2) || !c.accept(sep)) return false;
        std::size_t yearStart = c.i;
        if (!c.number(y)) return false;
        year = expandYear(y, c.i - yearStart), month = a, day = b;
    }
    c.skipSpaces();
    if (!c.done() && !parseTime(c, h, mi, sec)) return false;
    if (!c.done()) return false;
    if (month < 1 || month > 12 || day < 1 || year < 100 || year > 9999 || day > daysInMonth(year, month)) return false;
    date = dateFromParts(year, month, day, h, mi, sec);
    return true;
}

}  // namespace nvdl
