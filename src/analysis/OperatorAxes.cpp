// The X axis as frequencies, and the dimension rule of (jω)^power, for the calculus operators and
// the weighting curve.
#include <cmath>

#include "analysis/OperatorFrame.h"

namespace nvdl {

namespace {

constexpr std::size_t kAngle = kPlaneAngle - 1;  // index of the plane angle in the exponent array

}  // namespace

bool OperatorFrame::frequencyFactor(const CMeasurement& m, double& factor) {
    factor = 1.0;
    if (DimensionIsUnknown(m.m_xdDimension)) return true;
    const DimensionExponents e = exponentsOf(m.m_xdDimension);
    // 1/s, with any plane angle: one matching exponent is enough.
    constexpr SHORT expected[] = {0, -1, 0, 0, 0, 0, 0, 0, 0, 0};
    bool anyMatch = false;
    for (std::size_t i = 0; i < e.size(); ++i)
        if (i != kAngle && e[i] == expected[i]) anyMatch = true;
    if (!anyMatch) return false;
    if (e[kAngle] == 1) {
        factor = 1.0 / (8.0 * std::atan(1.0));
        if (m.m_order > 0.0f && m.m_order < 1000.0f) factor *= m.m_order;
    }
    return true;
}

std::vector<float> OperatorFrame::frequencies(const CMeasurement& m, double factor) {
    std::vector<float> f(static_cast<std::size_t>(std::max<LONG>(m.m_size, 0)));
    for (LONG i = 0; i < static_cast<LONG>(f.size()); ++i) f[static_cast<std::size_t>(i)] = static_cast<float>(xAt(m, i) * factor);
    return f;
}

void OperatorFrame::powerDimension(CMeasurement& result, CMeasurement& source, LONG power) {
    if (DimensionIsUnknown(source.m_ydDimension)) return;
    if (DimensionIsUnknown(source.m_xdDimension)) {
        shareDimension(result.m_ydDimension, source.m_xdDimension);
        return;
    }
    DimensionExponents y = exponentsOf(source.m_ydDimension);
    const DimensionExponents x = exponentsOf(source.m_xdDimension);
    for (std::size_t i = 0; i < y.size(); ++i) y[i] = static_cast<SHORT>(y[i] + power * x[i]);
    setDimension(result.m_ydDimension, dimensionFrom(y));
}

}  // namespace nvdl
