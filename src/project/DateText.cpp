#include "project/DateText.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>

#include "frame/TextChecks.h"
#include "nvdl/Date.h"
#include "platform/Registry.h"

namespace nvdl {

namespace {

constexpr const char* kInternationalKey = "Control Panel\\International";
constexpr const char* kFallbackPattern = "%d.%m.%Y %H:%M:%S";

std::string readInternational(const char* valueName) {
    return registry::readString(registry::Hive::CurrentUser, kInternationalKey, valueName).value_or("");
}

bool startsWith(std::string_view piece, char letter) {
    return !piece.empty() && std::tolower(static_cast<unsigned char>(piece.front())) ==
                                 std::tolower(static_cast<unsigned char>(letter));
}

// The number with the pattern piece's length as its least width, zero-padded; a one-letter piece
// prints the number as it is. The number is never cut to the width.
std::string numberForPiece(int value, std::size_t pieceLength) {
    int width = pieceLength > 1 ? static_cast<int>(pieceLength) : 0;
    int needed = std::snprintf(nullptr, 0, "%0*d", width, value);
    if (needed <= 0) return {};
    std::string out(static_cast<std::size_t>(needed) + 1, '\0');
    std::snprintf(out.data(), out.size(), "%0*d", width, value);
    out.pop_back();
    return out;
}

// The fallback pattern through the standard formatter; its fields are plain numbers in every locale.
std::string formatFallback(const DateParts& parts) {
    std::tm t{};
    t.tm_year = parts.year - 1900;
    t.tm_mon = parts.month - 1;
    t.tm_mday = parts.day;
    t.tm_hour = parts.hour;
    t.tm_min = parts.minute;
    t.tm_sec = parts.second;
    t.tm_wday = parts.dayOfWeek;
    char text[64];
    std::size_t n = std::strftime(text, sizeof text, kFallbackPattern, &t);
    return std::string(text, n);
}

std::string buildDate(const std::vector<std::string>& pieces, const std::string& separator, const DateParts& parts) {
    std::string out;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out += separator;
        std::string piece = trimmed(pieces[i]);
        if (startsWith(piece, 'd')) {
            out += numberForPiece(parts.day, piece.size());
        } else if (startsWith(piece, 'M')) {
            out += numberForPiece(parts.month, piece.size());
        } else if (startsWith(piece, 'y')) {
            out += numberForPiece(parts.year, piece.size());
        }
    }
    return out;
}

// The part of a time piece that is not the mark: "ss tt" gives "ss", "tt h" gives "h".
std::string withoutMark(const std::string& piece) {
    std::vector<std::string> parts;
    SplitText(piece, " ", parts);
    for (const std::string& part : parts)
        if (!part.empty() && !startsWith(part, 't')) return part;
    return {};
}

bool hasMarkPiece(const std::vector<std::string>& pieces) {
    for (const std::string& piece : pieces) {
        std::vector<std::string> parts;
        SplitText(piece, " ", parts);
        for (const std::string& part : parts)
            if (startsWith(part, 't')) return true;
    }
    return false;
}

std::string buildTime(const std::vector<std::string>& pieces, const std::string& separator, const DateParts& parts,
                      const std::string& amText, const std::string& pmText) {
    bool twelveHour = hasMarkPiece(pieces);
    int hour = parts.hour;
    if (twelveHour && (hour == 0 || hour >= 13)) hour = std::max(hour - 12, 12 - hour);
    std::string out;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out += separator;
        std::string piece = withoutMark(pieces[i]);
        if (startsWith(piece, 's')) {
            out += numberForPiece(parts.second, piece.size());
        } else if (startsWith(piece, 'm')) {
            out += numberForPiece(parts.minute, piece.size());
        } else if (startsWith(piece, 'h')) {
            out += numberForPiece(hour, piece.size());
        }
    }
    if (twelveHour) {
        const std::string& mark = parts.hour < 12 ? amText : pmText;
        if (!mark.empty()) out += ' ' + mark;
    }
    return out;
}

}  // namespace

std::string ReadShortDateFormat() { return readInternational("sShortDate"); }
std::string ReadDateSeparator() { return readInternational("sDate"); }
std::string ReadTimeFormat() { return readInternational("sTimeFormat"); }
std::string ReadTimeSeparator() { return readInternational("sTime"); }
std::string ReadAmText() { return readInternational("s1159"); }
std::string ReadPmText() { return readInternational("s2359"); }

void SplitText(std::string_view text, std::string_view separator, std::vector<std::string>& pieces) {
    pieces.clear();
    if (text.empty()) return;
    if (separator.empty()) {
        pieces.emplace_back(text);
        return;
    }
    std::size_t start = 0;
    for (std::size_t at; (at = text.find(separator, start)) != std::string_view::npos; start = at + separator.size())
        pieces.emplace_back(text.substr(start, at - start));
    pieces.emplace_back(text.substr(start));
}

// All four patterns and separators are needed for the regional form; without any of them the
// fixed fallback form is used.
std::string FormatDateTimeLocal(DATE value) {
    DateParts parts;
    if (!dateToParts(value, parts)) return {};

    std::string datePattern = trimmed(ReadShortDateFormat());
    std::string dateSeparator = trimmed(ReadDateSeparator());
    std::string timePattern = trimmed(ReadTimeFormat());
    std::string timeSeparator = trimmed(ReadTimeSeparator());
    if (datePattern.empty() || dateSeparator.empty() || timePattern.empty() || timeSeparator.empty())
        return formatFallback(parts);
    std::string amText = trimmed(ReadAmText());
    std::string pmText = trimmed(ReadPmText());

    std::vector<std::string> datePieces, timePieces;
    SplitText(datePattern, dateSeparator, datePieces);
    if (!datePieces.empty()) SplitText(timePattern, timeSeparator, timePieces);

    std::string date = buildDate(datePieces, dateSeparator, parts);
    std::string time = buildTime(timePieces, timeSeparator, parts, amText, pmText);
    std::string text = !date.empty() && !time.empty() ? date + ' ' + time : date + time;
    return text.empty() ? formatFallback(parts) : text;
}

}  // namespace nvdl
