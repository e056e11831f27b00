// The universal file reader. The text is cut into lines once; each dataset is the run of lines
// between two delimiter lines and is read by its own function through a cursor that knows the
// line numbers, so every complaint names the line it is about.
#include "exchange/UffReader.h"

#include <cmath>
#include <optional>
#include <stdexcept>

#include "exchange/UffFields.h"

namespace nvdl::exchange::uff {

namespace {

struct Damaged : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool isDelimiter(std::string_view line) {
    const std::string_view t = trimmed(line);
    return t == "-1" && line.find_first_not_of(' ') <= 4;
}

// The lines of one dataset and the position of the next one to read.
class Body {
public:
    Body(std::vector<std::string_view> lines, std::size_t firstLineNumber, long dataset)
        : lines_(std::move(lines)), first_(firstLineNumber), dataset_(dataset) {
        for (std::string_view l : lines_) chars_ += l.size() + 1;
    }

    bool atEnd() const { return at_ >= lines_.size(); }
    std::string_view next() {
        if (atEnd()) fail(lineNumber(), "the dataset ends early");
        chars_ -= lines_[at_].size() + 1;
        return lines_[at_++];
    }
    // The number of the line last read (or the closing line when none is left).
    std::size_t lineNumber() const { return first_ + (at_ == 0 ? 0 : at_ - 1); }
    [[noreturn]] void fail(std::size_t line, const std::string& what) const {
        throw Damaged("line " + std::to_string(line) + ": dataset " + std::to_string(dataset_) + ": " + what);
    }
    [[noreturn]] void fail(const std::string& what) const { fail(lineNumber(), what); }

    // A count read from the file is refused when the rest of the dataset cannot hold that many
    // numbers: each needs a character and a separator at least.
    void checkCount(long count, long perItem, const char* what) const {
        if (count < 0) fail(std::string("a negative number of ") + what);
        const double needed = static_cast<double>(count) * static_cast<double>(perItem) * 2.0;
        if (needed > static_cast<double>(chars_) + 1.0)
            fail("it declares " + std::to_string(count) + " " + what + " but holds fewer");
    }

    std::vector<double> record(const std::vector<int>& widths) {
        const std::string_view line = next();
        auto numbers = recordNumbers(line, widths);
        if (!numbers) fail("a field is not a number: \"" + std::string(trimmed(line).substr(0, 40)) + "\"");
        return *numbers;
    }

    // The numbers of one line; a word that is no number makes the line be read again as fields
    // of the given widths (repeated), for writers that let fields touch.
    std::vector<double> lineValues(std::string_view line, const std::vector<int>& widths) const {
        std::vector<double> out;
        std::string_view unreadable;
        for (std::string_view w : words(line)) {
            auto v = parseReal(w);
            if (!v) {
                unreadable = w;
                break;
            }
            out.push_back(*v);
        }
        if (unreadable.empty()) return out;
        out.clear();
        const std::size_t end = line.find_last_not_of(" \t\r") + 1;
        for (std::size_t k = 0, from = 0; from < end; ++k) {
            const auto width = static_cast<std::size_t>(widths[k % widths.size()]);
            auto v = parseReal(columns(line, from, width));
            if (!v) fail("\"" + std::string(unreadable.substr(0, 40)) + "\" is not a number");
            out.push_back(*v);
            from += width;
        }
        return out;
    }

    // `count` numbers read across lines, after the `given` ones of a line already read.
    std::vector<double> numbers(std::size_t count, const std::vector<int>& widths, std::vector<double> given = {}) {
        std::vector<double> out = std::move(given);
        if (out.size() > count) fail("more values on the line than the dataset declares");
        out.reserve(count);
        while (out.size() < count) {
            const std::vector<double> onLine = lineValues(next(), widths);
            if (onLine.empty()) fail("a line without values");
            if (out.size() + onLine.size() > count) fail("more values on the line than the dataset declares");
            out.insert(out.end(), onLine.begin(), onLine.end());
        }
        return out;
    }

    long dataset() const { return dataset_; }

private:
    std::vector<std::string_view> lines_;
    std::size_t first_;
    long dataset_;
    std::size_t at_ = 0;
    std::size_t chars_ = 0;
};

long asInteger(Body& body, double value) {
    if (value != std::floor(value) || std::fabs(value) > 2e9) body.fail("\"" + std::to_string(value) + "\" is not a whole number");
    return static_cast<long>(value);
}

std::string idLine(std::string_view line) {
    std::string text(trimmed(line));
    return text == "NONE" ? std::string() : text;
}

std::string textField(std::string_view line, std::size_t from, std::size_t width) {
    std::string text(trimmed(columns(line, from, width)));
    return text == "NONE" ? std::string() : text;
}

void readUnits(Body& body, File& file) {
    const std::string_view first = body.next();
    Units& u = file.units;
    const auto code = parseInteger(columns(first, 0, 10));
    if (!code) body.fail("the units code is not a number");
    u.code = static_cast<int>(*code);
    u.description = std::string(trimmed(columns(first, 10, 20)));
    u.temperatureMode = static_cast<int>(parseInteger(columns(first, 30, 10)).value_or(2));
    const auto factors = body.record({25, 25, 25});
    if (!(factors[0] > 0) || !(factors[1] > 0)) body.fail("a unit factor is not positive");
    u.length = factors[0];
    u.force = factors[1];
    u.temperature = factors[2];
    if (!body.atEnd()) u.temperatureOffset = body.record({25})[0];
    file.hasUnits = true;
}

void readNodes15(Body& body, File& file) {
    while (!body.atEnd()) {
        const auto r = body.record({10, 10, 10, 10, 13, 13, 13});
        Node n;
        n.label = asInteger(body, r[0]);
        n.definitionSystem = static_cast<int>(asInteger(body, r[1]));
        n.displacementSystem = static_cast<int>(asInteger(body, r[2]));
        n.color = static_cast<int>(asInteger(body, r[3]));
        n.x = r[4], n.y = r[5], n.z = r[6];
        file.nodes.push_back(n);
    }
    file.nodesAs2411 = false;
}

void readNodes2411(Body& body, File& file) {
    while (!body.atEnd()) {
        const auto r = body.record({10, 10, 10, 10});
        const auto c = body.record({25, 25, 25});
        Node n;
        n.label = asInteger(body, r[0]);
        n.definitionSystem = static_cast<int>(asInteger(body, r[1]));
        n.displacementSystem = static_cast<int>(asInteger(body, r[2]));
        n.color = static_cast<int>(asInteger(body, r[3]));
        n.x = c[0], n.y = c[1], n.z = c[2];
        file.nodes.push_back(n);
    }
    file.nodesAs2411 = true;
}

void readTraceLine(Body& body, File& file) {
    const auto r = body.record({10, 10, 10});
    TraceLine t;
    t.number = asInteger(body, r[0]);
    const long count = asInteger(body, r[1]);
    t.color = static_cast<int>(asInteger(body, r[2]));
    t.id = idLine(body.next());
    body.checkCount(count, 1, "nodes");
    for (double v : body.numbers(static_cast<std::size_t>(count), {10})) t.nodes.push_back(asInteger(body, v));
    file.traceLines.push_back(std::move(t));
}

void readIdLines(Body& body, std::array<std::string, 5>& lines) {
    for (std::string& l : lines) l = idLine(body.next());
}

void readNodeData(Body& body, File& file) {
    NodeData d;
    readIdLines(body, d.idLines);
    const auto r6 = body.record({10, 10, 10, 10, 10, 10});
    d.modelType = static_cast<int>(asInteger(body, r6[0]));
    d.analysisType = static_cast<int>(asInteger(body, r6[1]));
    d.dataCharacteristic = static_cast<int>(asInteger(body, r6[2]));
    d.quantityKind = static_cast<int>(asInteger(body, r6[3]));
    d.dataType = static_cast<int>(asInteger(body, r6[4]));
    d.valuesPerNode = static_cast<int>(asInteger(body, r6[5]));
    if (d.dataType != 2 && d.dataType != 5) body.fail("data type " + std::to_string(d.dataType) + " is neither real (2) nor complex (5)");
    if (d.valuesPerNode < 1 || d.valuesPerNode > 1000) body.fail("a number of values per node out of range");
    // The two counts and the integers share the lines of record 7, eight to a line.
    std::vector<double> record7 = body.lineValues(body.next(), {10});
    if (record7.size() < 2) body.fail("record 7 lacks its counts");
    const long integers = asInteger(body, record7[0]), reals = asInteger(body, record7[1]);
    if (integers < 0 || integers > 100 || reals < 0 || reals > 100) body.fail("a parameter count out of range");
    record7 = body.numbers(static_cast<std::size_t>(integers) + 2, {10}, std::move(record7));
    for (std::size_t k = 2; k < record7.size(); ++k) d.integers.push_back(asInteger(body, record7[k]));
    d.reals = body.numbers(static_cast<std::size_t>(reals), {13});
    const std::size_t perNode = static_cast<std::size_t>(d.valuesPerNode) * (d.complex() ? 2 : 1);
    while (!body.atEnd()) {
        NodeData::AtNode n;
        n.node = asInteger(body, body.record({10})[0]);
        body.checkCount(static_cast<long>(perNode), 1, "values");
        n.values = body.numbers(perNode, {13});
        d.nodes.push_back(std::move(n));
    }
    file.nodeData.push_back(std::move(d));
}

Axis readAxis(Body& body) {
    const std::string_view line = body.next();
    Axis a;
    auto number = [&](std::size_t from, std::size_t width) {
        auto v = parseInteger(columns(line, from, width));
        if (!v && !trimmed(columns(line, from, width)).empty()) body.fail("an axis field is not a whole number");
        return static_cast<int>(v.value_or(0));
    };
    a.dataType = number(0, 10);
    a.lengthExponent = number(10, 5);
    a.forceExponent = number(15, 5);
    a.temperatureExponent = number(20, 5);
    a.label = textField(line, 26, 20);
    a.unit = textField(line, 47, 20);
    return a;
}

void readFunction(Body& body, File& file) {
    Function f;
    readIdLines(body, f.idLines);
    const std::string_view r6 = body.next();
    // The fields at their columns; a line whose fields are not where they belong is taken word by
    // word when it has all ten.
    bool aligned = true;
    auto integer = [&](std::size_t from, std::size_t width) {
        auto v = parseInteger(columns(r6, from, width));
        if (!v && !trimmed(columns(r6, from, width)).empty()) aligned = false;
        return v.value_or(0);
    };
    f.functionType = static_cast<int>(integer(0, 5));
    f.functionId = static_cast<int>(integer(5, 10));
    f.version = static_cast<int>(integer(15, 5));
    f.loadCase = static_cast<int>(integer(20, 10));
    f.responseEntity = textField(r6, 31, 10);
    f.responseNode = integer(41, 10);
    f.responseDirection = static_cast<int>(integer(51, 4));
    f.referenceEntity = textField(r6, 56, 10);
    f.referenceNode = integer(66, 10);
    f.referenceDirection = static_cast<int>(integer(76, 4));
    if (!aligned) {
        const auto w = words(r6);
        std::optional<long> n[10];
        for (std::size_t k = 0; k < w.size() && k < 10; ++k) n[k] = parseInteger(w[k]);
        if (w.size() != 10 || !n[0] || !n[1] || !n[2] || !n[3] || !n[5] || !n[6] || !n[8] || !n[9])
            body.fail("a field of record 6 is not a whole number");
        f.functionType = static_cast<int>(*n[0]), f.functionId = static_cast<int>(*n[1]);
        f.version = static_cast<int>(*n[2]), f.loadCase = static_cast<int>(*n[3]);
        f.responseEntity = w[4] == "NONE" ? "" : std::string(w[4]);
        f.responseNode = *n[5], f.responseDirection = static_cast<int>(*n[6]);
        f.referenceEntity = w[7] == "NONE" ? "" : std::string(w[7]);
        f.referenceNode = *n[8], f.referenceDirection = static_cast<int>(*n[9]);
    }

    const auto r7 = body.record({10, 10, 10, 13, 13, 13});
    f.ordinateType = static_cast<int>(asInteger(body, r7[0]));
    const long count = asInteger(body, r7[1]);
    const long spacing = asInteger(body, r7[2]);
    if (f.ordinateType != kRealSingle && f.ordinateType != kRealDouble && f.ordinateType != kComplexSingle &&
        f.ordinateType != kComplexDouble)
        body.fail("ordinate data type " + std::to_string(f.ordinateType) + " is not one of 2, 4, 5, 6");
    if (spacing != 0 && spacing != 1) body.fail("abscissa spacing " + std::to_string(spacing) + " is neither 0 nor 1");
    f.even = spacing == 1;
    f.xMinimum = r7[3], f.xIncrement = r7[4], f.z = r7[5];
    f.abscissa = readAxis(body);
    f.numerator = readAxis(body);
    f.denominator = readAxis(body);
    f.zAxis = readAxis(body);

    const long perPoint = (f.complex() ? 2 : 1) + (f.even ? 0 : 1);
    body.checkCount(count, perPoint, "values");
    const int width = f.doublePrecision() ? 20 : 13;
    std::vector<int> widths;
    if (!f.even) widths.push_back(13);
    widths.push_back(width);
    if (f.complex()) widths.push_back(width);
    const auto values = body.numbers(static_cast<std::size_t>(count * perPoint), widths);
    const auto n = static_cast<std::size_t>(count);
    f.re.resize(n);
    if (f.complex()) f.im.resize(n);
    if (!f.even) f.x.resize(n);
    for (std::size_t i = 0, k = 0; i < n; ++i) {
        if (!f.even) f.x[i] = values[k++];
        f.re[i] = values[k++];
        if (f.complex()) f.im[i] = values[k++];
    }
    if (!body.atEnd()) body.fail(body.lineNumber() + 1, "more values than the dataset declares");
    file.functions.push_back(std::move(f));
}

}  // namespace

bool readText(std::string_view text, File& file, std::string& error) {
    file = File{};
    std::vector<std::string_view> lines;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(at, end - at);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back(line);
        at = end + 1;
    }
    bool sawNodes15 = false, sawNodes2411 = false;
    try {
        std::size_t i = 0;
        bool any = false;
        while (i < lines.size()) {
            if (trimmed(lines[i]).empty()) {
                ++i;
                continue;
            }
            if (!isDelimiter(lines[i]))
                throw Damaged("line " + std::to_string(i + 1) + ": a dataset must begin with a line \"    -1\"");
            const std::size_t headLine = i + 2;
            if (i + 1 >= lines.size()) throw Damaged("line " + std::to_string(i + 1) + ": a delimiter without a dataset");
            const std::string_view head = trimmed(lines[i + 1]);
            const auto number = parseInteger(words(head).empty() ? head : words(head)[0]);
            if (!number) throw Damaged("line " + std::to_string(headLine) + ": \"" + std::string(head.substr(0, 20)) +
                                       "\" is not an ASCII dataset number");
            std::size_t close = i + 2;
            while (close < lines.size() && !isDelimiter(lines[close])) ++close;
            if (close >= lines.size())
                throw Damaged("line " + std::to_string(i + 1) + ": dataset " + std::to_string(*number) + " is not closed by a line \"    -1\"");
            Body body({lines.begin() + static_cast<std::ptrdiff_t>(i + 2), lines.begin() + static_cast<std::ptrdiff_t>(close)},
                      i + 3, *number);
            switch (*number) {
                case 164: readUnits(body, file); break;
                case 15: readNodes15(body, file); sawNodes15 = true; break;
                case 2411: readNodes2411(body, file); sawNodes2411 = true; break;
                case 82: readTraceLine(body, file); break;
                case 55: readNodeData(body, file); break;
                case 58: readFunction(body, file); break;
                default: break;  // a dataset this reader does not take is skipped whole
            }
            any = true;
            i = close + 1;
        }
        if (!any) throw Damaged("line 1: no dataset in the file");
    } catch (const Damaged& damaged) {
        error = damaged.what();
        return false;
    } catch (const std::bad_alloc&) {
        error = "not enough memory to read the file";
        return false;
    }
    if (sawNodes15 != sawNodes2411) file.nodesAs2411 = sawNodes2411;
    return true;
}

}  // namespace nvdl::exchange::uff
