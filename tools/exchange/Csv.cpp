// The CSV writer: "x [unit]" then "name [unit]" (or "name re [unit]" and "name im [unit]") per
// measurement, units being the measurements' own; values printed with nine significant digits so
// that every float reads back exactly. Names are written as UTF-8, quoted when they hold a comma
// or a quote.
#include "exchange/Csv.h"

#include <cstdio>

#include "exchange/MeasurementData.h"
#include "exchange/TextFile.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"

namespace nvdl::exchange {

namespace {

std::string csvCell(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string out = "\"";
    for (char c : cell) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

std::string column(const std::string& name, const std::string& unit) {
    std::string text = utf16ToUtf8(widen(name));
    if (!unit.empty()) text += " [" + utf16ToUtf8(widen(unit)) + "]";
    return csvCell(text);
}

void appendNumber(std::string& line, float value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    line += text;
}

}  // namespace

bool writeMeasurementsCsv(const std::vector<IDispatch*>& measurements, const std::string& path, std::string& error) {
    if (measurements.empty()) {
        error = "no measurement to write";
        return false;
    }
    std::vector<MeasurementData> data(measurements.size());
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        ComPtr<IMeasurement> m(measurementOf(measurements[i]));
        if (!m) {
            error = "object " + std::to_string(i) + " is not a measurement";
            return false;
        }
        if (!readMeasurement(m.get(), data[i], error)) return false;
    }

    std::string text = column("x", data.front().xUnit);
    for (const MeasurementData& d : data) {
        if (d.complex) text += "," + column(d.name + " re", d.yUnit) + "," + column(d.name + " im", d.yUnit);
        else text += "," + column(d.name, d.yUnit);
    }
    text += "\n";
    // Rows follow the first measurement's abscissa; a shorter measurement leaves its cells empty.
    for (std::size_t row = 0; row < data.front().x.size(); ++row) {
        appendNumber(text, data.front().x[row]);
        for (const MeasurementData& d : data) {
            const bool present = row < d.re.size();
            text += ',';
            if (present) appendNumber(text, d.re[row]);
            if (!d.complex) continue;
            text += ',';
            if (present) appendNumber(text, d.im[row]);
        }
        text += '\n';
    }

    return writeTextFile(path, text, error);
}

}  // namespace nvdl::exchange
