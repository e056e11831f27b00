// Measurements and functions (dataset 58). The function type, the response and reference names
// with their node and direction, the axes' quantities, units and exponents and the values map one
// to one; a name longer than the ten characters of the entity field is kept whole in the fourth
// (response) or fifth (reference) identification line, and taken from there when it begins with
// the entity name.
#include <algorithm>
#include <cmath>

#include "exchange/MeasurementData.h"
#include "exchange/UffMapping.h"
#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/UnitClient.h"

namespace nvdl::exchange::uff {

namespace {

struct FunctionCode {
    LONG type;  // the measurement's function type
    int code;   // the dataset's
};
// The first row of a code is the one read; a complex (cross) power or density reads as its cross form.
constexpr FunctionCode kFunctionCodes[] = {
    {1001, 1}, {1003, 2}, {1004, 3}, {1011, 4}, {1013, 6}, {1009, 7}, {1010, 8}, {1005, 9}, {1006, 9},
    {1007, 10}, {1008, 10}, {1019, 11}, {1002, 12}, {1018, 13}, {1021, 18}, {1015, 21}, {1032, 24},
    {1014, 26}, {1037, 27},
};

struct QuantityCode {
    const char* dimension;
    int code;
};
constexpr QuantityCode kQuantityCodes[] = {
    {"Time", 17}, {"Frequency", 18}, {"Length", 8}, {"Velocity", 11}, {"Acceleration", 12}, {"Mass", 16},
    {"Force", 13}, {"Pressure", 15}, {"Temperature", 5}, {"Strain", 3}, {"Angular velocity", 19},
};

constexpr const char* kDirections[] = {"+X", "+Y", "+Z", "+RX", "+RY", "+RZ"};

int functionCode(LONG type) {
    for (const FunctionCode& f : kFunctionCodes)
        if (f.type == type) return f.code;
    return 0;
}

LONG functionType(int code, bool complex) {
    if (code == 9 && complex) return 1006;
    if (code == 10 && complex) return 1008;
    for (const FunctionCode& f : kFunctionCodes)
        if (f.code == code) return f.type;
    return kFunctionNone;
}

// The direction a name ends with ("+Z", "-RX"), as the dataset's code; 0 (scalar) for none.
int directionOf(const std::string& name) {
    int best = 0;
    std::size_t bestLength = 0;
    for (int k = 0; k < 6; ++k) {
        const std::string plus = kDirections[k];
        const std::string minus = "-" + plus.substr(1);
        for (const std::string& d : {plus, minus})
            if (name.size() >= d.size() && name.compare(name.size() - d.size(), d.size(), d) == 0 && d.size() > bestLength) {
                best = d[0] == '+' ? k + 1 : -(k + 1);
                bestLength = d.size();
            }
    }
    return best;
}

std::string directionText(int code) {
    if (code == 0 || std::abs(code) > 6) return {};
    std::string d = kDirections[std::abs(code) - 1];
    if (code < 0) d[0] = '-';
    return d;
}

// The ten characters of an entity field: blanks become underscores so that the field stays one word.
std::string entityOf(const std::string& name) {
    std::string e = name.substr(0, 10);
    for (char& c : e)
        if (c == ' ') c = '_';
    return e.empty() ? "NONE" : e;
}

// The name a function gives its response or reference: the whole name from the identification line
// when it extends the entity name, else the entity name, else the node number; the direction is
// added when the name does not end with it already, so that it comes back on export.
std::string nameFromFields(const std::string& entity, long node, int direction, const std::string& idLine) {
    std::string name = entity;
    if (!entity.empty() && idLine.size() > entity.size() && entityOf(idLine) == entity) name = idLine;
    if (name.empty() && node != 0) name = std::to_string(node);
    if (directionOf(name) != direction) name += directionText(direction);
    return name;
}

Axis axisOf(const std::string& dimension, const std::string& unit, IDispatch* dimensionObject) {
    Axis a;
    a.dataType = dimension.empty() ? 0 : 1;
    for (const QuantityCode& q : kQuantityCodes)
        if (dimension == q.dimension) a.dataType = q.code;
    // Units that differ between systems differ in length, force and temperature: mass counts as
    // force times time squared per length.
    DimensionExponents e{};
    if (GetDimensionExponents(dimensionObject, e)) {
        a.forceExponent = e[kMass - 1];
        a.lengthExponent = e[kLength - 1] - e[kMass - 1];
        a.temperatureExponent = e[kTemperature - 1];
    }
    a.label = dimension.empty() ? "NONE" : dimension;
    a.unit = unit.empty() ? "NONE" : unit;
    return a;
}

IDispatch* dimensionObject(IMeasurement* m, HRESULT (IMeasurement::*getter)(IDispatch**)) {
    IDispatch* d = nullptr;
    (m->*getter)(&d);
    return d;
}

// The factor that brings an axis's values from the file's units to SI.
double toSi(const Axis& a, const Units& u) {
    return std::pow(u.length, a.lengthExponent) * std::pow(u.force, a.forceExponent) *
           std::pow(u.temperature, a.temperatureExponent);
}

// The dimension an axis names: its label when that is a dimension, else its unit's.
std::string dimensionText(const Axis& a) {
    for (const QuantityCode& q : kQuantityCodes)
        if (a.label.empty() && a.dataType == q.code) return q.dimension;
    return a.label;
}

}  // namespace

bool functionFromMeasurement(IDispatch* measurement, Function& f, std::string& error) {
    ComPtr<IMeasurement> m(measurementOf(measurement));
    MeasurementData d;
    if (!m) {
        error = "an object that is not a measurement";
        return false;
    }
    if (!readMeasurement(m.get(), d, error)) return false;
    f = Function{};
    const std::u16string_view* typeText = measurementEnumTable().lookupString(d.functionType);
    f.idLines = {d.name, typeText ? narrow(*typeText) : std::string(), "", d.response, d.reference};
    f.functionType = functionCode(d.functionType);
    f.responseEntity = entityOf(d.response);
    f.responseNode = d.responseChannel;
    f.responseDirection = directionOf(d.response);
    f.referenceEntity = entityOf(d.reference);
    f.referenceNode = d.referenceChannel;
    f.referenceDirection = directionOf(d.reference);
    f.ordinateType = d.complex ? kComplexDouble : kRealDouble;
    f.even = d.evenlySpaced();
    f.xMinimum = d.xStart;
    f.xIncrement = d.xIncrement;
    ComPtr<IDispatch> xd(dimensionObject(m.get(), &IMeasurement::get_XdDimension));
    ComPtr<IDispatch> yd(dimensionObject(m.get(), &IMeasurement::get_YdDimension));
    f.abscissa = axisOf(d.xDimension, d.xUnit, xd.get());
    f.numerator = axisOf(d.yDimension, d.yUnit, yd.get());
    if (!f.even) f.x.assign(d.x.begin(), d.x.end());
    f.re.assign(d.re.begin(), d.re.end());
    f.im.assign(d.im.begin(), d.im.end());
    return true;
}

bool measurementFromFunction(const Function& f, const Units& units, IDispatch** result, std::string& error) {
    if (f.re.empty()) {
        error = "a function without values";
        return false;
    }
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    const double xScale = toSi(f.abscissa, units);
    const double yScale = toSi(f.numerator, units) / toSi(f.denominator, units);
    const LONG n = static_cast<LONG>(f.re.size());
    std::vector<float> re(f.re.size()), im(f.im.size()), x(f.x.size());
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = static_cast<float>(f.re[i] * yScale);
    for (std::size_t i = 0; i < im.size(); ++i) im[i] = static_cast<float>(f.im[i] * yScale);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<float>(f.x[i] * xScale);

    const std::string name = f.idLines[0].empty() ? "Function " + std::to_string(f.functionId) : f.idLines[0];
    HRESULT h = m->put_Name(Bstr(std::string_view(name)).get());
    if (SUCCEEDED(h)) h = m->put_FunctionType(Variant::fromLong(functionType(f.functionType, f.complex())));
    if (SUCCEEDED(h))
        h = m->put_Response(Bstr(std::string_view(nameFromFields(f.responseEntity, f.responseNode, f.responseDirection, f.idLines[3]))).get());
    if (SUCCEEDED(h))
        h = m->put_Reference(Bstr(std::string_view(nameFromFields(f.referenceEntity, f.referenceNode, f.referenceDirection, f.idLines[4]))).get());
    // A channel is a count from 0; a negative node has no channel.
    if (SUCCEEDED(h)) h = m->put_ResponseChannel(static_cast<LONG>(std::max(f.responseNode, 0L)));
    if (SUCCEEDED(h)) h = m->put_ReferenceChannel(static_cast<LONG>(std::max(f.referenceNode, 0L)));
    if (SUCCEEDED(h)) h = m->put_XAxisType(Variant::fromLong(f.even ? kAxisEquidistant : kAxisArbitrary));
    if (SUCCEEDED(h)) h = m->put_XStart(static_cast<float>((f.even ? f.xMinimum : f.x.front()) * xScale));
    if (SUCCEEDED(h) && f.even && f.xIncrement != 0) h = m->put_XIncrement(static_cast<float>(f.xIncrement * xScale));
    if (SUCCEEDED(h)) h = m->put_Size(n);
    if (SUCCEEDED(h)) h = m->put_Complex(f.complex() ? VARIANT_TRUE : VARIANT_FALSE);
    if (FAILED(h)) {
        error = "the function \"" + name + "\" cannot be made a measurement";
        return false;
    }
    m->SetYValues(0, n, re.data(), f.complex() ? im.data() : nullptr);
    if (!f.even) m->SetXValues(0, n, x.data());
    // Axes whose quantity or unit the unit table does not know are left without a dimension.
    const std::string xDimension = dimensionText(f.abscissa), yDimension = dimensionText(f.numerator);
    if (!xDimension.empty() && FAILED(m->put_XDimension(Bstr(std::string_view(xDimension)).get())) && !f.abscissa.unit.empty())
        m->put_XDimension(Bstr(std::string_view(f.abscissa.unit)).get());
    if (!yDimension.empty() && FAILED(m->put_YDimension(Bstr(std::string_view(yDimension)).get())) && !f.numerator.unit.empty())
        m->put_YDimension(Bstr(std::string_view(f.numerator.unit)).get());
    if (!f.abscissa.unit.empty()) m->put_StorageUnitX(Bstr(std::string_view(f.abscissa.unit)).get());
    if (!f.numerator.unit.empty()) m->put_StorageUnitY(Bstr(std::string_view(f.numerator.unit)).get());
    *result = static_cast<IMeasurement*>(m.release());
    return true;
}

}  // namespace nvdl::exchange::uff
