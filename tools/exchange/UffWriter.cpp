// The universal file writer. Numbers are printed as the fixed formats say (I10, E13.5, E20.12,
// D25.16, ...) with the exponent letter the dataset expects; texts are padded or cut to their width.
#include "exchange/UffWriter.h"

#include <cstdio>

namespace nvdl::exchange::uff {

namespace {

class Out {
public:
    std::string text;

    Out& integer(long value, int width) {
        char field[32];
        std::snprintf(field, sizeof field, "%*ld", width, value);
        text += field;
        return *this;
    }
    // Ew.d, or Dw.d with the exponent letter D.
    Out& real(double value, int width, int digits, char letter = 'E') {
        char field[48];
        std::snprintf(field, sizeof field, "%*.*E", width, digits, value);
        std::string printed = field;
        if (letter != 'E')
            for (char& c : printed)
                if (c == 'E') c = letter;
        text += printed;
        return *this;
    }
    Out& chars(const std::string& value, int width) {
        std::string field = value.substr(0, static_cast<std::size_t>(width));
        field.resize(static_cast<std::size_t>(width), ' ');
        text += field;
        return *this;
    }
    Out& space() {
        text += ' ';
        return *this;
    }
    Out& line(const std::string& value = {}) {
        // Free text lines are at most 80 characters; trailing blanks are left out.
        std::string cut = value.substr(0, 80);
        text += cut;
        text += '\n';
        return *this;
    }
    Out& end() { return line(); }
    void begin(int dataset) {
        text += "    -1\n";
        integer(dataset, 6).end();
    }
    void close() { text += "    -1\n"; }
    // Values in rows of `perLine`, each of the given width and digits.
    void rows(const std::vector<double>& values, int perLine, int width, int digits) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            real(values[i], width, digits);
            if ((i + 1) % static_cast<std::size_t>(perLine) == 0 || i + 1 == values.size()) end();
        }
    }
};

void writeUnits(Out& out, const Units& u) {
    out.begin(164);
    out.integer(u.code, 10).chars(u.description, 20).integer(u.temperatureMode, 10).end();
    out.real(u.length, 25, 17, 'D').real(u.force, 25, 17, 'D').real(u.temperature, 25, 17, 'D').end();
    out.real(u.temperatureOffset, 25, 17, 'D').end();
    out.close();
}

void writeNodes(Out& out, const std::vector<Node>& nodes, bool as2411) {
    out.begin(as2411 ? 2411 : 15);
    for (const Node& n : nodes) {
        out.integer(n.label, 10).integer(n.definitionSystem, 10).integer(n.displacementSystem, 10).integer(n.color, 10);
        if (as2411) out.end().real(n.x, 25, 16, 'D').real(n.y, 25, 16, 'D').real(n.z, 25, 16, 'D').end();
        else out.real(n.x, 13, 5).real(n.y, 13, 5).real(n.z, 13, 5).end();
    }
    out.close();
}

void writeTraceLine(Out& out, const TraceLine& t) {
    out.begin(82);
    out.integer(t.number, 10).integer(static_cast<long>(t.nodes.size()), 10).integer(t.color, 10).end();
    out.line(t.id.empty() ? "NONE" : t.id);
    for (std::size_t i = 0; i < t.nodes.size(); ++i) {
        out.integer(t.nodes[i], 10);
        if ((i + 1) % 8 == 0 || i + 1 == t.nodes.size()) out.end();
    }
    out.close();
}

void writeIdLines(Out& out, const std::array<std::string, 5>& lines) {
    for (const std::string& l : lines) out.line(l.empty() ? "NONE" : l);
}

void writeNodeData(Out& out, const NodeData& d) {
    out.begin(55);
    writeIdLines(out, d.idLines);
    out.integer(d.modelType, 10).integer(d.analysisType, 10).integer(d.dataCharacteristic, 10)
        .integer(d.quantityKind, 10).integer(d.dataType, 10).integer(d.valuesPerNode, 10).end();
    std::vector<long> record7{static_cast<long>(d.integers.size()), static_cast<long>(d.reals.size())};
    record7.insert(record7.end(), d.integers.begin(), d.integers.end());
    for (std::size_t i = 0; i < record7.size(); ++i) {
        out.integer(record7[i], 10);
        if ((i + 1) % 8 == 0 || i + 1 == record7.size()) out.end();
    }
    out.rows(d.reals, 6, 13, 5);
    for (const NodeData::AtNode& n : d.nodes) {
        out.integer(n.node, 10).end();
        out.rows(n.values, 6, 13, 5);
    }
    out.close();
}

void writeAxis(Out& out, const Axis& a) {
    out.integer(a.dataType, 10).integer(a.lengthExponent, 5).integer(a.forceExponent, 5)
        .integer(a.temperatureExponent, 5).space().chars(a.label.empty() ? "NONE" : a.label, 20).space()
        .chars(a.unit.empty() ? "NONE" : a.unit, 20).end();
}

// The values of a function in the layout its ordinate type and spacing ask for.
void writeValues(Out& out, const Function& f) {
    const std::size_t n = f.re.size();
    const bool wide = f.doublePrecision();
    std::size_t onLine = 0;
    const std::size_t perLine = f.even ? (wide ? 4 : 6) : (wide ? (f.complex() ? 1 : 2) : (f.complex() ? 2 : 3));
    for (std::size_t i = 0; i < n; ++i) {
        if (!f.even) out.real(f.x[i], 13, 5);
        if (wide) out.real(f.re[i], 20, 12);
        else out.real(f.re[i], 13, 5);
        if (f.complex()) {
            if (wide) out.real(f.im[i], 20, 12);
            else out.real(f.im[i], 13, 5);
        }
        // Even data counts single numbers per line, uneven data whole points.
        onLine += f.even ? (f.complex() ? 2 : 1) : 1;
        if (onLine >= perLine || i + 1 == n) {
            out.end();
            onLine = 0;
        }
    }
}

void writeFunction(Out& out, const Function& f) {
    out.begin(58);
    writeIdLines(out, f.idLines);
    out.integer(f.functionType, 5).integer(f.functionId, 10).integer(f.version, 5).integer(f.loadCase, 10)
        .space().chars(f.responseEntity, 10).integer(f.responseNode, 10).integer(f.responseDirection, 4)
        .space().chars(f.referenceEntity, 10).integer(f.referenceNode, 10).integer(f.referenceDirection, 4).end();
    out.integer(f.ordinateType, 10).integer(static_cast<long>(f.re.size()), 10).integer(f.even ? 1 : 0, 10)
        .real(f.even ? f.xMinimum : 0.0, 13, 5).real(f.even ? f.xIncrement : 0.0, 13, 5).real(f.z, 13, 5).end();
    writeAxis(out, f.abscissa);
    writeAxis(out, f.numerator);
    writeAxis(out, f.denominator);
    writeAxis(out, f.zAxis);
    writeValues(out, f);
    out.close();
}

}  // namespace

std::string writeText(const File& file) {
    Out out;
    if (file.hasUnits) writeUnits(out, file.units);
    if (!file.nodes.empty()) writeNodes(out, file.nodes, file.nodesAs2411);
    for (const TraceLine& t : file.traceLines) writeTraceLine(out, t);
    for (const NodeData& d : file.nodeData) writeNodeData(out, d);
    for (const Function& f : file.functions) writeFunction(out, f);
    return out.text;
}

}  // namespace nvdl::exchange::uff
