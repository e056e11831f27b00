#include "platform/MessageFormat.h"

#include <cstdio>

namespace nvdl {

namespace {

// A printf conversion of one insert, as written between its exclamation marks.
struct InsertFormat {
    std::string flags;
    int width = -1;      // -1: none
    int precision = -1;  // -1: none
    enum class Size { Int, Short, Char } size = Size::Int;
    char conversion = 's';
};

constexpr int kMaxFieldDigits = 6;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads a decimal field at body[pos]; -1 when there are no digits, nothing when too long.
std::optional<int> readNumber(std::string_view body, std::size_t& pos) {
    int value = -1;
    int digits = 0;
    while (pos < body.size() && isDigit(body[pos])) {
        if (++digits > kMaxFieldDigits) return std::nullopt;
        value = (value < 0 ? 0 : value * 10) + (body[pos++] - '0');
    }
    return value;
}

std::optional<InsertFormat> parseInsertFormat(std::string_view body) {
    InsertFormat f;
    std::size_t pos = 0;
    while (pos < body.size() && std::string_view("-+ #0").find(body[pos]) != std::string_view::npos) {
        if (f.flags.find(body[pos]) == std::string::npos) f.flags += body[pos];
        ++pos;
    }
    std::optional<int> width = readNumber(body, pos);
    if (!width) return std::nullopt;
    f.width = *width;
    if (pos < body.size() && body[pos] == '.') {
        ++pos;
        std::optional<int> precision = readNumber(body, pos);
        if (!precision) return std::nullopt;
        f.precision = *precision < 0 ? 0 : *precision;
    }
    const std::string_view rest = body.substr(pos);
    // Size prefixes: the arguments are 32-bit, so only h and hh narrow them further.
    static constexpr std::string_view kWidePrefixes[] = {"I64", "I32", "ll", "l", "I", "w", "z", "j", "t"};
    if (rest.starts_with("hh")) {
        f.size = InsertFormat::Size::Char;
        pos += 2;
    } else if (rest.starts_with("h")) {
        f.size = InsertFormat::Size::Short;
        pos += 1;
    } else {
        for (std::string_view prefix : kWidePrefixes) {
            if (rest.starts_with(prefix)) {
                pos += prefix.size();
                break;
            }
        }
    }
    if (pos + 1 != body.size()) return std::nullopt;
    f.conversion = body[pos];
    if (std::string_view("diouxXcCsS").find(f.conversion) == std::string_view::npos) return std::nullopt;
    return f;
}

std::string withoutFlags(std::string flags, std::string_view drop) {
    std::erase_if(flags, [&](char c) { return drop.find(c) != std::string_view::npos; });
    return flags;
}

std::string formatText(const std::string& text, const InsertFormat& f) {
    std::string out = f.precision >= 0 ? text.substr(0, static_cast<std::size_t>(f.precision)) : text;
    if (f.width > 0 && out.size() < static_cast<std::size_t>(f.width)) {
        const std::string padding(static_cast<std::size_t>(f.width) - out.size(), ' ');
        out = f.flags.find('-') != std::string::npos ? out + padding : padding + out;
    }
    return out;
}

// Integers go through printf with a conversion string rebuilt from the parsed parts only, with
// the flags and precision that are defined for the conversion.
std::string formatInteger(std::int32_t value, const InsertFormat& f) {
    char conversion = f.conversion;
    if (conversion == 's' || conversion == 'S') conversion = 'd';
    if (conversion == 'C') conversion = 'c';
    std::string flags = f.flags;
    int precision = f.precision;
    if (conversion == 'c') {
        flags = withoutFlags(flags, "+ #0");
        precision = -1;
    } else if (conversion == 'd' || conversion == 'i' || conversion == 'u') {
        flags = withoutFlags(flags, "#");
    }
    std::string printfFormat = "%" + flags;
    if (f.width >= 0) printfFormat += std::to_string(f.width);
    if (precision >= 0) printfFormat += "." + std::to_string(precision);
    const bool isSigned = conversion == 'd' || conversion == 'i';
    if (conversion != 'c') {
        if (f.size == InsertFormat::Size::Short) printfFormat += "h";
        if (f.size == InsertFormat::Size::Char) printfFormat += "hh";
    }
    printfFormat += conversion;

    // Reduce to the named size first, so that printf sees an exact int or unsigned int.
    long long narrowed = value;
    const auto bits = static_cast<std::uint32_t>(value);
    if (conversion == 'c') {
        narrowed = static_cast<unsigned char>(bits);
    } else if (f.size == InsertFormat::Size::Short) {
        narrowed = isSigned ? static_cast<long long>(static_cast<std::int16_t>(bits)) : static_cast<std::uint16_t>(bits);
    } else if (f.size == InsertFormat::Size::Char) {
        narrowed = isSigned ? static_cast<long long>(static_cast<std::int8_t>(bits)) : static_cast<std::uint8_t>(bits);
    } else if (!isSigned) {
        narrowed = bits;
    }

    const auto print = [&](char* buffer, std::size_t size) {
        if (isSigned || conversion == 'c') return std::snprintf(buffer, size, printfFormat.c_str(), static_cast<int>(narrowed));
        return std::snprintf(buffer, size, printfFormat.c_str(), static_cast<unsigned>(narrowed));
    };
    const int length = print(nullptr, 0);
    if (length <= 0) return {};
    std::string out(static_cast<std::size_t>(length), '\0');
    print(out.data(), out.size() + 1);
    return out;
}

}  // namespace

std::optional<std::string> formatMessage(std::string_view format, std::span<const MessageArg> args,
                                         std::size_t bufferChars) {
    if (bufferChars == 0) return std::nullopt;
    const std::size_t limit = bufferChars - 1;
    std::string out;
    const auto append = [&](std::string_view piece) {
        if (piece.size() > limit - out.size()) return false;
        out += piece;
        return true;
    };

    std::size_t pos = 0;
    while (pos < format.size()) {
        const std::size_t percent = format.find('%', pos);
        if (!append(format.substr(pos, percent == std::string_view::npos ? std::string_view::npos : percent - pos))) {
            return std::nullopt;
        }
        if (percent == std::string_view::npos) break;
        pos = percent + 1;
        if (pos >= format.size()) return std::nullopt;  // a '%' that ends the text
        const char code = format[pos++];
        if (code == '0') return out;
        if (!isDigit(code)) {
            const std::string_view replacement = code == 'n'   ? "\r\n"
                                                 : code == 't' ? "\t"
                                                 : code == 'r' ? "\r"
                                                 : code == 'b' ? " "
                                                               : format.substr(pos - 1, 1);
            if (!append(replacement)) return std::nullopt;
            continue;
        }

        std::size_t number = static_cast<std::size_t>(code - '0');
        if (pos < format.size() && isDigit(format[pos])) number = number * 10 + static_cast<std::size_t>(format[pos++] - '0');
        InsertFormat insertFormat;
        if (pos < format.size() && format[pos] == '!') {
            const std::size_t close = format.find('!', pos + 1);
            if (close == std::string_view::npos) return std::nullopt;
            std::optional<InsertFormat> parsed = parseInsertFormat(format.substr(pos + 1, close - pos - 1));
            if (!parsed) return std::nullopt;
            insertFormat = std::move(*parsed);
            pos = close + 1;
        }
        if (number > args.size()) return std::nullopt;
        const MessageArg& arg = args[number - 1];
        const bool isText = std::holds_alternative<std::string>(arg);
        // A field wider than the room left cannot fit; refuse it before making it.
        const std::size_t room = limit - out.size();
        if (insertFormat.width > 0 && static_cast<std::size_t>(insertFormat.width) > room) return std::nullopt;
        if (!isText && insertFormat.precision > 0 && static_cast<std::size_t>(insertFormat.precision) > room) {
            return std::nullopt;
        }
        const std::string piece = isText ? formatText(std::get<std::string>(arg), insertFormat)
                                         : formatInteger(std::get<std::int32_t>(arg), insertFormat);
        if (!append(piece)) return std::nullopt;
    }
    return out;
}

}  // namespace nvdl
