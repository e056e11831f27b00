// CMeasurement: the operators. The signal mathematics on measurements is not built yet: each
// operator checks its references and answers E_NOTIMPL. The four in-place members do nothing and
// succeed by design.
#include "measurement/Measurement.h"

namespace nvdl {

namespace {

template <class... Outputs>
HRESULT notYet(Outputs*... outputs) {
    if (((outputs == nullptr) || ...)) return E_POINTER;
    return E_NOTIMPL;
}

}  // namespace

HRESULT CMeasurement::Add(IMeasurement* other, VARIANT* mode, IMeasurement** result) {
    return notYet(other, mode, result);
}
HRESULT CMeasurement::Subtract(IMeasurement* other, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Multiply(IMeasurement* other, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Divide(IMeasurement* other, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Fft(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::ComplexConjugate(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Psd(IMeasurement* other, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Frf(IMeasurement* other, VARIANT, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Coherence(IMeasurement* auto1, IMeasurement* auto2, IMeasurement** result) {
    return notYet(auto1, auto2, result);
}
HRESULT CMeasurement::Window(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::WhiteNoise(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::ScalarMultiply(float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::ScalarAdd(float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::ComplexMultiply(float, float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::ComplexAdd(float, float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Integrate(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Differentiate(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Rms(float* rms) { return notYet(rms); }
HRESULT CMeasurement::Histogram(LONG, float, float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::HistogramAdd(IMeasurement* other) { return notYet(other); }
HRESULT CMeasurement::SumIntegrate(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::SumDifferentiate(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::jwn(LONG, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::AcousticIntensity(float, float, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::WeightingFunction(BSTR, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Rms2(LONG, LONG, float* rms) { return notYet(rms); }
HRESULT CMeasurement::Octave(LONG, IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::sqr(IMeasurement** result) { return notYet(result); }
HRESULT CMeasurement::Rms3(LONG, LONG, LONG, float* rms) { return notYet(rms); }
HRESULT CMeasurement::Concatenate(IMeasurement* other, IMeasurement** result) { return notYet(other, result); }
HRESULT CMeasurement::Compress(LONG, IMeasurement** result) { return notYet(result); }

// Members that the system defines as doing nothing.
HRESULT CMeasurement::InPlaceEnergySpectralDensity() { return S_OK; }
HRESULT CMeasurement::InPlaceProbabilityDensity() { return S_OK; }
HRESULT CMeasurement::InPlaceComplexFourierTransform() { return S_OK; }
HRESULT CMeasurement::InPlaceComplexMultiply(float, float) { return S_OK; }

}  // namespace nvdl
