// CMeasurement: the four in-place members that the system defines as doing nothing. The signal
// operators themselves live with the analysis code (src/analysis/Operator*.cpp).
#include "measurement/Measurement.h"

namespace nvdl {

HRESULT CMeasurement::InPlaceEnergySpectralDensity() { return S_OK; }
HRESULT CMeasurement::InPlaceProbabilityDensity() { return S_OK; }
HRESULT CMeasurement::InPlaceComplexFourierTransform() { return S_OK; }
HRESULT CMeasurement::InPlaceComplexMultiply(float, float) { return S_OK; }

}  // namespace nvdl
