// The block size of an octave analysis: the smallest block that resolves the octave span, taken as
// many times as the analysed duration asks for.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "nvdl/Variant.h"
#include "setup/Octave.h"

namespace nvdl {

namespace {

// A property of an object reached by name, converted to the type wanted.
bool readProperty(IDispatch* object, std::u16string_view name, VARTYPE type, Variant& value) {
    return object && SUCCEEDED(latebound::get(object, name, &value)) && SUCCEEDED(value.changeType(type));
}

// A section of the setup, reached by name; null when the setup has none.
ComPtr<IDispatch> sectionOf(IDispatch* setup, std::u16string_view name) {
    Variant value;
    if (!readProperty(setup, name, VT_DISPATCH, value) || !value.pdispVal) return {};
    return ComPtr<IDispatch>::share(value.pdispVal);
}

// The whole part of a value as the block arithmetic has always taken it: printed with "%f" and
// read back as a long, so that it truncates towards zero; what does not print as a number is 0.
long wholeThroughText(double value) {
    char text[512];  // "%f" of the largest double takes 317 characters
    std::snprintf(text, sizeof text, "%f", value);
    return std::strtol(text, nullptr, 10);
}

}  // namespace

LONG COctave::GetMinOctaveBlocksize(IDispatch* setup) {
    ComPtr<IDispatch> octave = sectionOf(setup, u"Octave");
    Variant start, stop;
    if (!readProperty(octave.get(), u"StartFrequency", VT_R4, start) ||
        !readProperty(octave.get(), u"StopFrequency", VT_R4, stop))
        return 0;
    if (start.fltVal < 0 || stop.fltVal < 0 || stop.fltVal < start.fltVal) return 0;
    // The span in octaves, a tenth of a decade short, rounded; one block doubling per octave.
    const double x = std::log10(stop.fltVal) - std::log10(start.fltVal) - 0.1;
    if (!std::isfinite(x)) return 0;  // a span from 0 Hz has no octave count
    const double octaves = std::trunc(x / std::log10(2.0) + 0.5);
    if (octaves < 0) return 1;  // the count is raised to 1: a block of 2 to the power 0
    if (octaves >= 31) return 0;  // no block of that size fits a long
    return LONG{1} << static_cast<int>(octaves);
}

HRESULT COctave::get_OctaveTimeBlockSize(IDispatch* setup, float time, LONG* result) {
    if (!result) return E_POINTER;
    if (!setup) return E_FAIL;
    ComPtr<IDispatch> acquisition = sectionOf(setup, u"Acquisition");
    Variant sampleFrequency, computationBlocksize;
    if (!readProperty(acquisition.get(), u"SampleFrequency", VT_R4, sampleFrequency) ||
        !readProperty(acquisition.get(), u"ComputationBlocksize", VT_I4, computationBlocksize))
        return E_FAIL;
    if (!(time > 0) || !(sampleFrequency.fltVal > 0) || computationBlocksize.lVal <= 0) return E_FAIL;
    const LONG minimum = GetMinOctaveBlocksize(setup);
    if (minimum <= 0) return E_FAIL;

    const float product = sampleFrequency.fltVal * time;
    long count = wholeThroughText(product);
    if (count < minimum) count = minimum;
    // The division is in floating point, so that the half added rounds to the nearest block count.
    const long blocks = wholeThroughText(static_cast<double>(count) / minimum + 0.5);
    if (blocks <= 0) return E_FAIL;
    if (blocks > std::numeric_limits<LONG>::max() / minimum) return E_FAIL;  // beyond a long
    *result = static_cast<LONG>(minimum * blocks);
    return S_OK;
}

}  // namespace nvdl
