// Reading a measurement's header and values for the exchange writers.
#include "exchange/MeasurementData.h"

#include "nvdl/Identifiers.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/UnitClient.h"
#include "nvdl/Variant.h"

namespace nvdl::exchange {

namespace {

std::string text(IMeasurement* m, HRESULT (IMeasurement::*getter)(BSTR*)) {
    BSTR value = nullptr;
    if (FAILED((m->*getter)(&value)) || !value) return {};
    std::string result = narrow(bstrView(value));
    SysFreeString(value);
    return result;
}

// The unit values are kept in: the record's storage unit, else its dimension's default unit.
std::string unit(IMeasurement* m, HRESULT (IMeasurement::*storage)(BSTR*), HRESULT (IMeasurement::*dimension)(IDispatch**)) {
    std::string name = text(m, storage);
    if (!name.empty()) return name;
    ComPtr<IDispatch> d;
    if (SUCCEEDED((m->*dimension)(d.out())) && d) name = DimensionDefaultUnitName(d.get());
    return name;
}

LONG code(IMeasurement* m, HRESULT (IMeasurement::*getter)(VARIANT*), LONG fallback) {
    Variant v;
    if (FAILED((m->*getter)(&v)) || FAILED(v.changeType(VT_I4))) return fallback;
    return v.lVal;
}

}  // namespace

IMeasurement* measurementOf(IDispatch* object) {
    IMeasurement* m = nullptr;
    if (!object || FAILED(object->QueryInterface(IID_IMeasurement, reinterpret_cast<void**>(&m)))) return nullptr;
    return m;
}

bool readMeasurement(IMeasurement* m, MeasurementData& out, std::string& error) {
    out = MeasurementData{};
    out.name = text(m, &IMeasurement::get_Name);
    out.response = text(m, &IMeasurement::get_Response);
    out.reference = text(m, &IMeasurement::get_Reference);
    out.xDimension = text(m, &IMeasurement::get_XDimension);
    out.yDimension = text(m, &IMeasurement::get_YDimension);
    out.xUnit = unit(m, &IMeasurement::get_StorageUnitX, &IMeasurement::get_XdDimension);
    out.yUnit = unit(m, &IMeasurement::get_StorageUnitY, &IMeasurement::get_YdDimension);
    out.functionType = code(m, &IMeasurement::get_FunctionType, 1000);
    out.xAxisType = code(m, &IMeasurement::get_XAxisType, 1100);
    m->get_ResponseChannel(&out.responseChannel);
    m->get_ReferenceChannel(&out.referenceChannel);
    float start = 0, increment = 1;
    m->get_XStart(&start);
    m->get_XIncrement(&increment);
    out.xStart = start;
    out.xIncrement = increment;
    SHORT complex = 0;
    m->get_Complex(&complex);
    out.complex = complex != 0;

    LONG count = 0;
    if (FAILED(m->get_FileSamples(&count)) || count <= 0) {
        error = "the measurement \"" + out.name + "\" has no values";
        return false;
    }
    const auto n = static_cast<std::size_t>(count);
    out.x.resize(n);
    out.re.resize(n);
    if (out.complex) out.im.resize(n);
    for (LONG i = 0; i < count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (FAILED(m->get_X(i, &out.x[k])) || FAILED(m->get_YReal(i, &out.re[k])) ||
            (out.complex && FAILED(m->get_YImag(i, &out.im[k])))) {
            error = "value " + std::to_string(i) + " of the measurement \"" + out.name + "\" cannot be read";
            return false;
        }
    }
    return true;
}

}  // namespace nvdl::exchange
