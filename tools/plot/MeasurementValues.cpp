#include "plot/MeasurementValues.h"

#include <cmath>

#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/UnitClient.h"

namespace nvdl::plot {

namespace {

// Texts inside objects are in the system code page; cairo takes UTF-8.
std::string shown(const std::string& ansi) { return utf16ToUtf8(widen(ansi)); }

long codeOf(HRESULT (IMeasurement::*get)(VARIANT*), IMeasurement& m) {
    Variant v;
    if (FAILED((m.*get)(&v)) || FAILED(v.changeType(VT_I4))) return 0;
    return v.lVal;
}

void readDimension(IMeasurement& m, HRESULT (IMeasurement::*get)(IDispatch**), std::string& name, std::string& unit) {
    ComPtr<IDispatch> dimension;
    if (FAILED((m.*get)(dimension.out())) || !dimension || DimensionIsUnknown(dimension.get())) return;
    name = shown(DimensionName(dimension.get()));
    unit = shown(DimensionDefaultUnitName(dimension.get()));
}

// The abscissa of every value: the X vector on axes that carry one, a geometric row on a
// logarithmic axis, else start plus index times increment.
void fillAbscissa(IMeasurement& m, MeasurementValues& values, LONG size) {
    float start = 0.0f, increment = 1.0f;
    m.get_XStart(&start);
    m.get_XIncrement(&increment);
    values.xIncrement = increment;
    values.x.resize(static_cast<std::size_t>(size));
    if (axisHasXVector(values.axisType)) {
        std::vector<float> x(values.x.size());
        m.GetXValues(0, size, x.data());
        values.x.assign(x.begin(), x.end());
    } else if (values.axisType == kAxisLogarithmic) {
        for (LONG i = 0; i < size; ++i) values.x[static_cast<std::size_t>(i)] = start * std::pow(double(increment), i);
    } else {
        for (LONG i = 0; i < size; ++i) values.x[static_cast<std::size_t>(i)] = start + double(increment) * i;
    }
}

}  // namespace

bool readMeasurementValues(IDispatch* object, MeasurementValues& values, std::string& error) {
    ComPtr<IMeasurement> m;
    if (!object || FAILED(object->QueryInterface(IID_IMeasurement, reinterpret_cast<void**>(m.out())))) {
        error = "not a measurement";
        return false;
    }
    Bstr name;
    if (SUCCEEDED(m->get_Name(name.out()))) values.name = shown(name.ansi());
    LONG size = 0;
    SHORT complex = 0;
    m->get_Size(&size);
    m->get_Complex(&complex);
    if (size <= 0) {
        error = "measurement \"" + values.name + "\" has no values to draw";
        return false;
    }
    values.functionType = codeOf(&IMeasurement::get_FunctionType, *m);
    values.axisType = codeOf(&IMeasurement::get_XAxisType, *m);
    values.complex = complex != 0;
    m->get_CompressionFactor(&values.compressionFactor);
    readDimension(*m, &IMeasurement::get_XdDimension, values.xDimension, values.xUnit);
    readDimension(*m, &IMeasurement::get_YdDimension, values.yDimension, values.yUnit);

    std::vector<float> re(static_cast<std::size_t>(size)), im(values.complex ? re.size() : 0);
    if (FAILED(m->GetYValues(0, size, re.data(), values.complex ? im.data() : nullptr))) {
        error = "the values of measurement \"" + values.name + "\" cannot be read";
        return false;
    }
    values.real.assign(re.begin(), re.end());
    values.imag.assign(im.begin(), im.end());
    fillAbscissa(*m, values, size);
    return true;
}

}  // namespace nvdl::plot
