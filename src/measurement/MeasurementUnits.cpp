// CMeasurement: the dimensions of its axes through the unit service, values in the user's units,
// and the linear unit of a squared quantity.
#include <algorithm>

#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/UnitClient.h"

namespace nvdl {

namespace {

HRESULT giveText(const std::string& text, BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstrFromAnsi(text);
    return S_OK;
}

void replace(IDispatch*& slot, IDispatch* value) {
    if (slot) slot->Release();
    slot = value;
}

HRESULT giveObject(IDispatch* object, IDispatch** v) {
    if (!v) return E_POINTER;
    *v = object;
    if (object) object->AddRef();
    return S_OK;
}

// The unit name of a linear quantity from that of its square: "(m/s²)²" gives "m/s²", "V^2" gives "V".
std::string linearUnitName(std::string name) {
    const std::string squared = "\xb2";  // the superscript two of the system code page
    std::size_t at;
    if ((at = name.find("^2")) != std::string::npos || (at = name.find("^" + squared)) != std::string::npos) {
        name.erase(at);
    } else if ((at = name.find(")2")) != std::string::npos || (at = name.find(")" + squared)) != std::string::npos) {
        name.erase(at + 1);
    } else if ((at = name.find('2')) != std::string::npos || (at = name.find(squared)) != std::string::npos) {
        name.erase(at, 1);
    }
    if (name.find(')') != std::string::npos) {
        std::size_t open = name.rfind('(');
        std::size_t close = name.find(')');
        std::size_t from = open == std::string::npos ? 0 : open + 1;
        if (close > from) name = name.substr(from, close - from);
    }
    return name;
}

}  // namespace

void CMeasurement::releaseDimensions() {
    replace(m_xdDimension, nullptr);
    replace(m_ydDimension, nullptr);
    replace(m_zdDimension, nullptr);
}

HRESULT CMeasurement::dimensionName(IDispatch* dimension, BSTR* name) const {
    return giveText(dimension ? DimensionName(dimension) : std::string(), name);
}

HRESULT CMeasurement::setDimensionFromText(IDispatch*& slot, BSTR text, bool allowNewFromText) {
    replace(slot, nullptr);
    IDimension* found = DimensionFromText(bstrToAnsi(text), allowNewFromText);
    if (!found) return E_INVALIDARG;
    if (!DimensionIsValid(found)) {
        found->Release();
        return E_INVALIDARG;
    }
    slot = found;
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::setDimensionByIndex(IDispatch*& slot, LONG index) {
    replace(slot, DimensionAtIndex(index));
    return S_OK;
}

HRESULT CMeasurement::get_XDimension(BSTR* v) { return dimensionName(m_xdDimension, v); }
HRESULT CMeasurement::put_XDimension(BSTR v) { return setDimensionFromText(m_xdDimension, v, false); }
HRESULT CMeasurement::get_YDimension(BSTR* v) { return dimensionName(m_ydDimension, v); }
HRESULT CMeasurement::put_YDimension(BSTR v) {
    m_yDimensionText.clear();
    HRESULT h = setDimensionFromText(m_ydDimension, v, true);
    if (SUCCEEDED(h)) m_yDimensionText = bstrToAnsi(v);
    return h;
}
// The Z dimension is taken as resolved, without the validity test of the two axes.
HRESULT CMeasurement::get_ZDimension(BSTR* v) { return dimensionName(m_zdDimension, v); }
HRESULT CMeasurement::put_ZDimension(BSTR v) {
    replace(m_zdDimension, DimensionFromText(bstrToAnsi(v), false));
    return m_zdDimension ? put_Modified(VARIANT_TRUE) : E_INVALIDARG;
}

HRESULT CMeasurement::get_XdDimension(IDispatch** v) { return giveObject(m_xdDimension, v); }
HRESULT CMeasurement::get_YdDimension(IDispatch** v) { return giveObject(m_ydDimension, v); }
HRESULT CMeasurement::get_ZdDimension(IDispatch** v) { return giveObject(m_zdDimension, v); }

namespace {

// The dimension interface of the object given; null for null or for an object that is no dimension.
IDispatch* dimensionOf(IDispatch* object) {
    if (!object) return nullptr;
    IDimension* dimension = nullptr;
    if (FAILED(object->QueryInterface(IID_IDimension, reinterpret_cast<void**>(&dimension)))) return nullptr;
    return dimension;
}

}  // namespace

HRESULT CMeasurement::put_XdDimension(IDispatch* v) {
    replace(m_xdDimension, dimensionOf(v));
    return put_Modified(VARIANT_TRUE);
}
HRESULT CMeasurement::put_YdDimension(IDispatch* v) {
    replace(m_ydDimension, dimensionOf(v));
    return put_Modified(VARIANT_TRUE);
}
HRESULT CMeasurement::put_ZdDimension(IDispatch* v) {
    replace(m_zdDimension, dimensionOf(v));
    return put_Modified(VARIANT_TRUE);
}

// The scale and offset between the stored values and the user's unit of a dimension: the storage
// unit when it belongs to this dimension, else the dimension's default unit. Without a service the
// values are taken as they are.
bool CMeasurement::userUnitScale(IDispatch* dimension, const std::string& storageUnit, double& scale, double& offset) const {
    scale = 1.0;
    offset = 0.0;
    const ComPtr<IUnitService> service(GetUnitService());
    if (!dimension || !service) return false;
    IDispatch* unit = nullptr;
    if (!storageUnit.empty()) {
        IDimension* owner = DimensionFromText(storageUnit, false);
        if (owner && DimensionName(owner) == DimensionName(dimension)) unit = UnitOfDimension(owner, storageUnit);
        if (owner) owner->Release();
    }
    if (!unit) unit = UnitOfDimension(dimension, DimensionDefaultUnitName(dimension));
    bool found = GetUnitScaleAndOffset(unit, scale, offset);
    if (unit) unit->Release();
    if (scale == 0.0) scale = 1.0;
    return found;
}

namespace {

float toUser(float stored, double scale, double offset) { return static_cast<float>((stored - offset) / scale); }
float fromUser(float value, double scale, double offset) {
    double v = value;
    if (scale != 1.0) v *= scale;
    if (offset != 0.0) v += offset;
    return static_cast<float>(v);
}

HRESULT giveConverted(const SampleVector& values, std::size_t count, double scale, double offset, VARIANT* v) {
    std::vector<float> converted(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(std::min(count, values.size())));
    for (float& x : converted) x = toUser(x, scale, offset);
    VariantClear(v);
    v->vt = VT_ARRAY | VT_R4;
    v->parray = makeFloatArray(converted);
    return v->parray ? S_OK : E_OUTOFMEMORY;
}

std::span<float> floatsIn(const VARIANT& v) {
    if (v.vt == (VT_ARRAY | VT_R4)) return floatArrayData(v.parray);
    if (v.vt == (VT_BYREF | VT_VARIANT) && v.pvarVal) return floatsIn(*v.pvarVal);
    return {};
}

}  // namespace

HRESULT CMeasurement::get_XInUserUnit(LONG index, float* v) {
    if (!v) return E_POINTER;
    if (m_x.empty()) return E_POINTER;
    if (index < 0 || index >= static_cast<LONG>(m_x.size())) return E_INVALIDARG;
    double scale, offset;
    userUnitScale(m_xdDimension, m_storageUnitX, scale, offset);
    *v = toUser(m_x[static_cast<std::size_t>(index)], scale, offset);
    return S_OK;
}

HRESULT CMeasurement::put_XInUserUnit(LONG index, float v) {
    if (m_x.empty()) return E_POINTER;
    if (index < 0 || index >= static_cast<LONG>(m_x.size())) return E_INVALIDARG;
    double scale, offset;
    userUnitScale(m_xdDimension, m_storageUnitX, scale, offset);
    m_x[static_cast<std::size_t>(index)] = fromUser(v, scale, offset);
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::get_XArrayInUserUnit(VARIANT* v) {
    if (!v) return E_POINTER;
    if (m_x.empty()) return E_POINTER;
    double scale, offset;
    userUnitScale(m_xdDimension, m_storageUnitX, scale, offset);
    return giveConverted(m_x, m_x.size(), scale, offset, v);
}

HRESULT CMeasurement::put_XArrayInUserUnit(VARIANT v) {
    if (m_x.empty()) return E_POINTER;
    std::span<float> values = floatsIn(v);
    if (values.size() != m_x.size()) return E_INVALIDARG;
    double scale, offset;
    userUnitScale(m_xdDimension, m_storageUnitX, scale, offset);
    for (std::size_t i = 0; i < values.size(); ++i) m_x[i] = fromUser(values[i], scale, offset);
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::get_YRealInUserUnit(LONG index, float* v) {
    if (!v) return E_POINTER;
    float stored = 0;
    if (HRESULT h = get_YReal(index, &stored); FAILED(h)) return h;
    double scale, offset;
    userUnitScale(m_ydDimension, m_storageUnitY, scale, offset);
    *v = toUser(stored, scale, offset);
    return S_OK;
}

HRESULT CMeasurement::put_YRealInUserUnit(LONG index, float v) {
    double scale, offset;
    userUnitScale(m_ydDimension, m_storageUnitY, scale, offset);
    return put_YReal(index, fromUser(v, scale, offset));
}

HRESULT CMeasurement::get_YRealArrayInUserUnit(VARIANT* v) {
    if (!v) return E_POINTER;
    double scale, offset;
    userUnitScale(m_ydDimension, m_storageUnitY, scale, offset);
    return giveConverted(m_yReal, static_cast<std::size_t>(std::max<LONG>(m_size, 0)), scale, offset, v);
}

HRESULT CMeasurement::put_YRealArrayInUserUnit(VARIANT v) {
    std::span<float> values = floatsIn(v);
    if (static_cast<LONG>(values.size()) != m_size || m_yReal.size() < values.size()) return E_FAIL;
    double scale, offset;
    userUnitScale(m_ydDimension, m_storageUnitY, scale, offset);
    for (std::size_t i = 0; i < values.size(); ++i) m_yReal[i] = fromUser(values[i], scale, offset);
    return put_Modified(VARIANT_TRUE);
}

// The unit in which the square root of the Y values would stand: the Y dimension's own unit for
// plain quantities, half the exponents for auto and cross powers, half of Y plus X for densities.
HRESULT CMeasurement::get_LinearUnitYd(IDispatch** unit) {
    if (!unit) return E_POINTER;
    *unit = nullptr;
    if (!m_ydDimension) return E_FAIL;
    const LONG f = m_functionType;
    const bool power = f == 1003 || f == 1004 || f == 1044;
    const bool density = f >= 1005 && f <= 1008;
    std::string storage = m_storageUnitY.empty() ? DimensionDefaultUnitName(m_ydDimension) : m_storageUnitY;
    if (!power && !density) {
        IUnit* own = UnitOfDimension(m_ydDimension, storage);
        if (!own) own = UnitOfDimension(m_ydDimension, DimensionDefaultUnitName(m_ydDimension));
        *unit = own;
        return own ? S_OK : E_FAIL;
    }
    IDimension* linear = nullptr;
    if (power) {
        linear = SquareRootDimension(m_ydDimension);
    } else {
        DimensionExponents y{}, x{};
        GetDimensionExponents(m_ydDimension, y);
        GetDimensionExponents(m_xdDimension, x);
        for (std::size_t i = 0; i < y.size(); ++i) y[i] = static_cast<SHORT>((y[i] + x[i]) / 2);
        linear = DimensionWithExponents(y);
    }
    if (!linear) return E_FAIL;
    IUnit* found = UnitOfDimension(linear, linearUnitName(storage));
    if (!found) found = UnitOfDimension(linear, DimensionDefaultUnitName(linear));
    linear->Release();
    *unit = found;
    return found ? S_OK : E_FAIL;
}

HRESULT CMeasurement::get_LinearUnitY(BSTR* name) {
    if (!name) return E_POINTER;
    IDispatch* unit = nullptr;
    HRESULT h = get_LinearUnitYd(&unit);
    if (FAILED(h)) return h;
    *name = allocBstrFromAnsi(UnitName(unit));
    unit->Release();
    return S_OK;
}

}  // namespace nvdl
