#include "geometry/ModeCoeff.h"

#include <cmath>

#include "frame/ClassTable.h"
#include "frame/Clip.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.modecoeff", CLSID_CModeCoeff, "Sonvara ModeCoeff", &CModeCoeff::create}};

constexpr double kDegreesPerRadian = 57.29577951471995;
constexpr double kRadiansPerDegree = 0.017453292519444445;

}  // namespace

HRESULT CModeCoeff::put_Direction(VARIANT direction) {
    LONG code = 0;
    if (HRESULT h = modeCodeOf(direction, code); FAILED(h)) return h;
    return storeField(m_fields.Direction, code);
}

// The names are kept even when the direction is refused.
HRESULT CModeCoeff::Location(BSTR component, BSTR node, VARIANT direction) {
    m_fields.Component = bstrToAnsi(component);
    m_fields.Node = bstrToAnsi(node);
    static_cast<IModeCoeff*>(this)->put_Modified(1);
    return put_Direction(direction);
}

// Leaves the Modified flag as it is.
HRESULT CModeCoeff::SetAmplitudePhase(float amplitude, float phase) {
    const double radians = phase * kRadiansPerDegree;
    m_fields.Real = static_cast<float>(amplitude * std::cos(radians));
    m_fields.Imaginary = static_cast<float>(amplitude * std::sin(radians));
    return S_OK;
}

HRESULT CModeCoeff::Amplitude(float* amplitude) {
    if (!amplitude) return E_POINTER;
    const double re = m_fields.Real, im = m_fields.Imaginary;
    const double squares = re * re + im * im;
    *amplitude = squares > 0 ? static_cast<float>(std::sqrt(squares)) : 0.0f;
    return S_OK;
}

// In degrees, within -180 to 180. The turn is tested on the value as handed out, so that -1 + j0
// gives 180 although the conversion factor is a little above 180 / pi.
HRESULT CModeCoeff::Phase(float* phase) {
    if (!phase) return E_POINTER;
    float degrees = static_cast<float>(
        std::atan2(static_cast<double>(m_fields.Imaginary), static_cast<double>(m_fields.Real)) * kDegreesPerRadian);
    if (degrees > 180) degrees -= 360;
    else if (degrees < -180) degrees += 360;
    *phase = degrees;
    return S_OK;
}

HRESULT CModeCoeff::Translate(LONG code, BSTR* text) { return modeEnumTable().translate(code, text); }

// The point, the text of the direction, and two zeros where the values would stand.
HRESULT CModeCoeff::Clip(BSTR format, BSTR* text) {
    const MessageArg inserts[] = {m_fields.Component, m_fields.Node, modeCodeText(m_fields.Direction), 0, 0};
    return clip(format, inserts, text);
}

HRESULT CModeCoeff::Copy(IModeCoeff* source, IModeCoeff* target) {
    auto* from = dynamic_cast<CModeCoeff*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CModeCoeff*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    to->m_fields = from->m_fields;
    to->m_modified = from->m_modified;
    to->m_parent = from->m_parent;
    return S_OK;
}

}  // namespace nvdl
