#include "exchange/UffFields.h"

#include <cmath>
#include <cstdlib>

namespace nvdl::exchange::uff {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

std::string_view columns(std::string_view line, std::size_t from, std::size_t width) {
    if (from >= line.size()) return {};
    return line.substr(from, width);
}

std::optional<double> parseReal(std::string_view text) {
    text = trimmed(text);
    if (text.empty() || text.size() > 40) return std::nullopt;
    std::string number;
    bool digits = false, exponent = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9') {
            digits = true;
            number += c;
        } else if (c == '.') {
            number += c;
        } else if (c == 'E' || c == 'e' || c == 'D' || c == 'd') {
            if (exponent || !digits) return std::nullopt;
            exponent = true;
            number += 'E';
        } else if (c == '+' || c == '-') {
            // A sign after a digit starts an exponent whose letter was left out.
            const bool afterMantissa = i > 0 && ((text[i - 1] >= '0' && text[i - 1] <= '9') || text[i - 1] == '.');
            if (afterMantissa && !exponent) {
                exponent = true;
                number += 'E';
            } else if (i > 0 && number.back() != 'E') {
                return std::nullopt;
            }
            number += c;
        } else {
            return std::nullopt;
        }
    }
    if (!digits) return std::nullopt;
    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    if (end != number.c_str() + number.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<long> parseInteger(std::string_view text) {
    text = trimmed(text);
    if (text.empty() || text.size() > 18) return std::nullopt;
    std::size_t i = text[0] == '-' || text[0] == '+' ? 1 : 0;
    if (i == text.size()) return std::nullopt;
    long value = 0;
    for (; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9') return std::nullopt;
        value = value * 10 + (text[i] - '0');
    }
    return text[0] == '-' ? -value : value;
}

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> out;
    std::size_t at = 0;
    while (true) {
        at = line.find_first_not_of(" \t\r", at);
        if (at == std::string_view::npos) break;
        std::size_t end = line.find_first_of(" \t\r", at);
        if (end == std::string_view::npos) end = line.size();
        out.push_back(line.substr(at, end - at));
        at = end;
    }
    return out;
}

std::optional<std::vector<double>> recordNumbers(std::string_view line, const std::vector<int>& widths) {
    std::vector<double> out;
    const auto separated = words(line);
    if (separated.size() == widths.size()) {
        for (std::string_view w : separated) {
            auto v = parseReal(w);
            if (!v) break;
            out.push_back(*v);
        }
        if (out.size() == widths.size()) return out;
        out.clear();
    }
    std::size_t from = 0;
    for (int width : widths) {
        const std::string_view field = columns(line, from, static_cast<std::size_t>(width));
        from += static_cast<std::size_t>(width);
        if (trimmed(field).empty()) {
            out.push_back(0.0);
            continue;
        }
        auto v = parseReal(field);
        if (!v) return std::nullopt;
        out.push_back(*v);
    }
    return out;
}

}  // namespace nvdl::exchange::uff
