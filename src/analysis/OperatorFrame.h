// The common frame of the measurement operators: a result measurement copied from the operand, views
// of the operands' vectors for the da kernel, the kernel's output taken over into the result, and
// the dimension rules that settle a result's axes through the unit service.
#pragma once

#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "measurement/Measurement.h"
#include "platform/ComPtr.h"
#include "nvdl/daTypes.h"
#include "project/UnitClient.h"

namespace nvdl {

// Function type codes the operators tell apart.
enum OperatorFunctionCode : LONG {
    kFnTimeRecord = 1001,
    kFnSpectrum = 1002,
    kFnAutopower = 1003,
    kFnCrosspower = 1004,
    kFnPsd = 1005,
    kFnCrossSpectralDensity = 1006,
    kFnEsd = 1007,
    kFnCrossEsd = 1008,
    kFnAutocorrelation = 1009,
    kFnCrosscorrelation = 1010,
    kFnFrf = 1011,
    kFnImpulseResponse = 1012,
    kFnCoherence = 1013,
    kFnMultipleCoherence = 1014,
    kFnPartialCoherence = 1015,
    kFnVirtualCoherence = 1016,
    kFnHistogram = 1017,
    kFnProbDistribution = 1018,
    kFnProbDensity = 1019,
    kFnSoundPressure = 1023,
    kFnSoundPowerLevel = 1024,
    kFnSoundIntensity = 1025,
    kFnWindow = 1035,
    kFnWeighting = 1036,
    kFnSoundPower = 1038,
};
inline constexpr LONG kWindowHanning = 1302;
inline constexpr LONG kWindowForce = 1305;

// A kernel output record that frees what it still holds when it goes.
struct KernelOutput : daVector {
    KernelOutput() : daVector{nullptr, nullptr, 0} {}
    KernelOutput(const KernelOutput&) = delete;
    KernelOutput& operator=(const KernelOutput&) = delete;
    ~KernelOutput() {
        std::free(real);
        std::free(imag);
    }
};

class OperatorFrame {
public:
    // A new measurement carrying everything of `source`, header and vectors; null without memory.
    static CMeasurement* copyOf(CMeasurement& source);
    // The same copy for a result whose Y vectors the operator replaces: everything but the Y vectors.
    static CMeasurement* resultOf(CMeasurement& source);
    // The first n elements of the measurement's vectors as a kernel input (a view, not a copy).
    static daVector view(CMeasurement& m, LONG n);
    static daVector view(CMeasurement& m) { return view(m, m.m_size); }

    // Moves the kernel's output into `result` as its Y vectors and sets Size from the record. With
    // `setComplex` the Complex flag follows the record; otherwise it stays as copied. An X vector is
    // cut or grown to the new size.
    static void adopt(CMeasurement& result, KernelOutput& out, bool setComplex = true);
    // Gives `result` a real vector of these values, without an imaginary vector, Complex 0.
    static void setRealVector(CMeasurement& result, const std::vector<float>& values);
    // Sets the size bookkeeping after the vectors of `m` were replaced by n elements.
    static void settleSize(CMeasurement& m, LONG n);

    // The value of the X axis at element i: from XStart and XIncrement, or from the X vector.
    static double xAt(const CMeasurement& m, LONG i);

    // Dimension slots.
    static IDispatch*& yDimension(CMeasurement& m) { return m.m_ydDimension; }
    static IDispatch*& xDimension(CMeasurement& m) { return m.m_xdDimension; }
    // Replaces the dimension in `slot` by `value`, taking over the caller's reference.
    static void setDimension(IDispatch*& slot, IDispatch* value);
    // Shares `value` into `slot` (one more reference).
    static void shareDimension(IDispatch*& slot, IDispatch* value);
    // A dimension from ten exponents through the unit service.
    static IDispatch* dimensionFrom(const DimensionExponents& e);
    static IDispatch* zeroDimension() { return dimensionFrom(DimensionExponents{}); }
    static DimensionExponents exponentsOf(IDispatch* dimension);

    // The scale from the X axis to frequencies in Hz: 1 on a frequency axis, 1/2π (times a
    // meaningful Order) on a rotation axis. False when a known X dimension is plainly neither; the
    // test is lenient, one matching base exponent lets it pass.
    static bool frequencyFactor(const CMeasurement& m, double& factor);
    // Size frequencies of the axis, each times `factor`.
    static std::vector<float> frequencies(const CMeasurement& m, double factor);
    // Y dimension of `result` after multiplying `source` by (jω)^power: an unknown or missing Y
    // dimension stays, else an unknown or missing X dimension is taken, else Y + power·X.
    static void powerDimension(CMeasurement& result, CMeasurement& source, LONG power);
};

// Runs an operator body, turning exhausted memory into E_OUTOFMEMORY and any other failure into E_FAIL.
template <class Body>
HRESULT guardedOperator(Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception&) {
        return E_FAIL;
    }
}

// Hands a result to the caller: one reference goes with it.
inline HRESULT handOut(CMeasurement* result, IMeasurement** out) {
    *out = result;
    return S_OK;
}

// Case-insensitive comparison of 8-bit texts.
bool equalsIgnoringCase(const std::string& a, const std::string& b);

// Shows one of the operators' messages in a modal box.
void showOperatorMessage(const std::string& text);

}  // namespace nvdl
