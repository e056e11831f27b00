#include "project/units/UnitsFileReader.h"

#include <charconv>
#include <fstream>
#include <limits>
#include <vector>

#include "platform/CodePage.h"
#include "platform/DebugTrace.h"

namespace nvdl::units {

namespace {

constexpr std::size_t kMaxLineBytes = 1000;

std::string_view trim(std::string_view s) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

std::vector<std::string_view> fields(std::string_view s) {
    std::vector<std::string_view> out;
    std::size_t i = 0;
    while (i < s.size()) {
        while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
        std::size_t start = i;
        while (i < s.size() && s[i] != ' ' && s[i] != '\t') ++i;
        if (i > start) out.push_back(s.substr(start, i - start));
    }
    return out;
}

bool parseDouble(std::string_view text, double& value) {
    const char* end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, value);
    return ec == std::errc() && ptr == end && value == value && value - value == 0.0;  // finite
}

bool parseExponent(std::string_view text, SHORT& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    int wide = 0;
    const char* end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, wide);
    if (ec != std::errc() || ptr != end || wide < std::numeric_limits<SHORT>::min() ||
        wide > std::numeric_limits<SHORT>::max())
        return false;
    value = static_cast<SHORT>(wide);
    return true;
}

class Parser {
public:
    explicit Parser(std::string_view source) : m_source(source), m_table(std::make_shared<UnitTable>()) {}

    void line(std::string_view raw, std::size_t number) {
        m_number = number;
        if (raw.size() > kMaxLineBytes) return skip("line too long");
        std::string_view text = trim(raw);
        if (text.empty() || text.front() == '#') return;
        if (text.front() == '[') return dimensionLine(text);
        unitLine(text);
    }

    UnitsFileContent finish() { return {std::move(m_table), m_skipped}; }

private:
    void skip(const char* why) {
        ++m_skipped;
        DebugTraceF("units file %.*s line %zu skipped: %s", static_cast<int>(m_source.size()), m_source.data(),
                    m_number, why);
    }

    void dimensionLine(std::string_view text) {
        m_inSkippedSection = true;  // until the header proves good
        std::size_t close = text.find(']');
        if (close == std::string_view::npos) return skip("no closing bracket");
        std::string name = narrow(utf8ToUtf16(trim(text.substr(1, close - 1))));
        if (name.empty()) return skip("dimension without a name");
        std::vector<std::string_view> rest = fields(text.substr(close + 1));
        bool unknown = rest.size() == kBaseExponentCount + 1 && rest.back() == "unknown";
        if (rest.size() != kBaseExponentCount + (unknown ? 1u : 0u)) return skip("a dimension needs ten exponents");
        DimensionRecord record;
        record.name = std::move(name);
        record.unknown = unknown;
        for (int i = 0; i < kBaseExponentCount; ++i)
            if (!parseExponent(rest[i], record.exponents[i])) return skip("bad exponent");
        if (m_table->findDimension(record.name)) return skip("dimension named twice");
        m_table->dimensions.push_back(std::move(record));
        m_inSkippedSection = false;
    }

    void unitLine(std::string_view text) {
        if (m_table->dimensions.empty()) return skip("unit before the first dimension");
        if (m_inSkippedSection) return skip("unit of a skipped dimension");
        std::vector<std::string_view> parts = fields(text);
        if (parts.size() < 2 || parts.size() > 3) return skip("a unit needs a name, a factor and an optional offset");
        UnitRecord unit;
        unit.name = narrow(utf8ToUtf16(parts[0]));
        if (!parseDouble(parts[1], unit.factor) || unit.factor == 0.0) return skip("bad factor");
        if (parts.size() == 3 && !parseDouble(parts[2], unit.offset)) return skip("bad offset");
        m_table->dimensions.back().units.push_back(std::move(unit));
    }

    std::string_view m_source;
    std::shared_ptr<UnitTable> m_table;
    std::size_t m_skipped = 0;
    std::size_t m_number = 0;
    bool m_inSkippedSection = false;
};

}  // namespace

UnitsFileContent parseUnitsText(std::string_view utf8, std::string_view source) {
    if (utf8.substr(0, 3) == "\xEF\xBB\xBF") utf8.remove_prefix(3);
    Parser parser(source);
    std::size_t number = 0;
    while (!utf8.empty()) {
        std::size_t end = utf8.find('\n');
        parser.line(utf8.substr(0, end), ++number);
        if (end == std::string_view::npos) break;
        utf8.remove_prefix(end + 1);
    }
    return parser.finish();
}

UnitsFileContent readUnitsFile(const std::string& utf8Path) {
    std::ifstream in(utf8Path, std::ios::binary);
    if (!in) {
        DebugTraceF("units file %s cannot be opened", utf8Path.c_str());
        return {};
    }
    std::string text;
    char buffer[65536];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        text.append(buffer, static_cast<std::size_t>(in.gcount()));
        if (text.size() > kMaxUnitsFileBytes) {
            DebugTraceF("units file %s is larger than %zu bytes", utf8Path.c_str(), kMaxUnitsFileBytes);
            return {};
        }
    }
    if (in.bad()) return {};
    UnitsFileContent content = parseUnitsText(text, utf8Path);
    if (content.table->dimensions.empty()) {
        DebugTraceF("units file %s holds no dimension", utf8Path.c_str());
        content.table.reset();
    }
    return content;
}

}  // namespace nvdl::units
