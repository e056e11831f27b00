#include "project/units/UnitExpression.h"

#include <cmath>
#include <limits>

namespace nvdl::units {

namespace {

constexpr std::size_t kMaxExpressionLength = 200;
constexpr int kMaxDepth = 16;
constexpr char kMiddleDot = '\xB7';
constexpr char kSquared = '\xB2';
constexpr char kCubed = '\xB3';

bool isOperator(char c) {
    return c == '*' || c == '/' || c == kMiddleDot || c == '(' || c == ')' || c == '^' || c == kSquared ||
           c == kCubed;
}

class Evaluator {
public:
    Evaluator(const UnitTable& table, std::string_view text) : m_table(table), m_text(text) {}

    std::optional<ExpressionValue> run() {
        std::optional<ExpressionValue> value = expression(0);
        skipBlanks();
        if (!value || m_pos != m_text.size()) return std::nullopt;
        return value;
    }

private:
    void skipBlanks() {
        while (m_pos < m_text.size() && (m_text[m_pos] == ' ' || m_text[m_pos] == '\t')) ++m_pos;
    }
    bool peek(char c) {
        skipBlanks();
        return m_pos < m_text.size() && m_text[m_pos] == c;
    }

    // Combines b into a: a * b^sign.
    static bool combine(ExpressionValue& a, const ExpressionValue& b, int sign) {
        for (int i = 0; i < kBaseExponentCount; ++i) {
            int sum = a.exponents[i] + sign * b.exponents[i];
            if (sum < std::numeric_limits<SHORT>::min() || sum > std::numeric_limits<SHORT>::max()) return false;
            a.exponents[i] = static_cast<SHORT>(sum);
        }
        a.factor = sign > 0 ? a.factor * b.factor : a.factor / b.factor;
        return std::isfinite(a.factor) && a.factor != 0.0;
    }

    std::optional<ExpressionValue> expression(int depth) {
        if (depth > kMaxDepth) return std::nullopt;
        std::optional<ExpressionValue> value = factor(depth);
        while (value) {
            int sign;
            if (peek('*') || peek(kMiddleDot)) sign = 1;
            else if (peek('/')) sign = -1;
            else break;
            ++m_pos;
            std::optional<ExpressionValue> next = factor(depth);
            if (!next || !combine(*value, *next, sign)) return std::nullopt;
        }
        return value;
    }

    std::optional<ExpressionValue> factor(int depth) {
        std::optional<ExpressionValue> value = primary(depth);
        while (value) {
            long power;
            if (peek(kSquared)) {
                ++m_pos;
                power = 2;
            } else if (peek(kCubed)) {
                ++m_pos;
                power = 3;
            } else if (peek('^')) {
                ++m_pos;
                if (!integer(power)) return std::nullopt;
            } else {
                break;
            }
            if (!raise(*value, power)) return std::nullopt;
        }
        return value;
    }

    bool integer(long& power) {
        skipBlanks();
        bool negative = false;
        if (m_pos < m_text.size() && (m_text[m_pos] == '-' || m_text[m_pos] == '+')) negative = m_text[m_pos++] == '-';
        std::size_t start = m_pos;
        power = 0;
        while (m_pos < m_text.size() && m_text[m_pos] >= '0' && m_text[m_pos] <= '9' && m_pos - start < 5)
            power = power * 10 + (m_text[m_pos++] - '0');
        if (m_pos == start) return false;
        if (negative) power = -power;
        return true;
    }

    static bool raise(ExpressionValue& value, long power) {
        for (SHORT& e : value.exponents) {
            long product = e * power;
            if (product < std::numeric_limits<SHORT>::min() || product > std::numeric_limits<SHORT>::max()) return false;
            e = static_cast<SHORT>(product);
        }
        value.factor = std::pow(value.factor, static_cast<double>(power));
        return std::isfinite(value.factor) && value.factor != 0.0;
    }

    std::optional<ExpressionValue> primary(int depth) {
        if (peek('(')) {
            ++m_pos;
            std::optional<ExpressionValue> inner = expression(depth + 1);
            if (!inner || !peek(')')) return std::nullopt;
            ++m_pos;
            return inner;
        }
        skipBlanks();
        std::size_t start = m_pos;
        while (m_pos < m_text.size() && !isOperator(m_text[m_pos]) && m_text[m_pos] != ' ' && m_text[m_pos] != '\t')
            ++m_pos;
        if (m_pos == start) return std::nullopt;
        std::optional<UnitPosition> found = m_table.findUnit(m_text.substr(start, m_pos - start));
        if (!found) return std::nullopt;
        const DimensionRecord& dimension = m_table.dimensions[found->dimension];
        if (dimension.unknown) return std::nullopt;
        return ExpressionValue{dimension.exponents, dimension.units[found->unit].factor};
    }

    const UnitTable& m_table;
    std::string_view m_text;
    std::size_t m_pos = 0;
};

}  // namespace

std::optional<ExpressionValue> evaluateUnitExpression(const UnitTable& table, std::string_view text) {
    if (text.size() > kMaxExpressionLength) return std::nullopt;
    return Evaluator(table, text).run();
}

}  // namespace nvdl::units
