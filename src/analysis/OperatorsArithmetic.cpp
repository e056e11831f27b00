// Measurement operators: arithmetic of two measurements and of a measurement with a scalar.
//
// Add, Subtract, Multiply and Divide set the result's Size but leave Complex as copied from this
// measurement, so a real one combined with a complex one carries an imaginary vector under a
// Complex of 0; callers of the system rely on that.
#include <cmath>

#include "analysis/OperatorFrame.h"
#include "nvdl/daArithmetic.h"
#include "nvdl/Variant.h"

namespace nvdl {

namespace {

// The operand behind an interface of this server; both references are checked first.
HRESULT operands(IMeasurement* other, IMeasurement** result, CMeasurement*& o) {
    if (!result) return E_POINTER;
    *result = nullptr;
    o = CMeasurement::from(other);
    return o ? S_OK : E_POINTER;
}

// Y dimension of a product (sign 1) or quotient (sign -1): an unknown or missing first dimension
// stays as copied; else an unknown or missing second one is taken; else the exponents combine, and
// the tenth is dropped when any of the nine base exponents remains.
void productDimension(CMeasurement& result, CMeasurement& a, CMeasurement& b, int sign) {
    IDispatch* da = OperatorFrame::yDimension(a);
    IDispatch* db = OperatorFrame::yDimension(b);
    if (DimensionIsUnknown(da)) return;
    if (DimensionIsUnknown(db)) {
        OperatorFrame::shareDimension(OperatorFrame::yDimension(result), db);
        return;
    }
    DimensionExponents e = OperatorFrame::exponentsOf(da);
    const DimensionExponents f = OperatorFrame::exponentsOf(db);
    bool anyBase = false;
    for (std::size_t i = 0; i < e.size(); ++i) {
        e[i] = static_cast<SHORT>(e[i] + sign * f[i]);
        if (i < 9 && e[i] != 0) anyBase = true;
    }
    if (anyBase) e[9] = 0;
    OperatorFrame::setDimension(OperatorFrame::yDimension(result), OperatorFrame::dimensionFrom(e));
}

// Dividing by a weighting takes its letters out of the weighting text `t` of the dividend; the
// result's text, copied from `t`, is settled here. "?" marks a weighting that cannot be undone.
void weightingAfterDivision(const std::string& t, const std::string& w, std::string& result) {
    if (t.empty()) {
        result.assign(1, '?');
    } else if (w.empty()) {
        // stays as copied
    } else if (t.size() == w.size()) {
        if (t == w) result.clear();
        else result.assign(1, '?');
    } else if (std::size_t at = t.rfind(w); at != std::string::npos) {
        result.erase(at, w.size());
    }
}

// Runs a two-operand kernel call on the first n elements and hands out the result.
template <class Kernel>
HRESULT binaryOperator(CMeasurement& self, CMeasurement& other, IMeasurement** result, Kernel kernel) {
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(self));
        if (!out) return E_OUTOFMEMORY;
        LONG n = 0, otherSize = 0;
        self.get_Size(&n);
        other.get_Size(&otherSize);
        n = std::min(n, otherSize);
        self.LoadFromDisk();
        other.LoadFromDisk();
        KernelOutput record;
        kernel(OperatorFrame::view(self, n), OperatorFrame::view(other, n), &record, *out.get());
        OperatorFrame::adopt(*out.get(), record, false);
        return handOut(out.release(), result);
    });
}

// Runs a one-operand kernel call within the common frame.
template <class Kernel>
HRESULT unaryOperator(CMeasurement& self, IMeasurement** result, Kernel kernel) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(self));
        if (!out) return E_OUTOFMEMORY;
        self.LoadFromDisk();
        KernelOutput record;
        kernel(OperatorFrame::view(self), &record);
        OperatorFrame::adopt(*out.get(), record);
        return handOut(out.release(), result);
    });
}

// Overwrites the first n elements by their amplitudes, with zero imaginary parts.
void toAmplitudes(daVector v) {
    for (long i = 0; i < v.length; ++i) {
        const double re = v.real[i];
        const double im = v.imag ? v.imag[i] : 0.0;
        v.real[i] = static_cast<float>(std::sqrt(re * re + im * im));
        if (v.imag) v.imag[i] = 0.0f;
    }
}

}  // namespace

HRESULT CMeasurement::Add(IMeasurement* other, VARIANT* mode, IMeasurement** result) {
    CMeasurement* o = nullptr;
    if (HRESULT h = operands(other, result, o); FAILED(h)) return h;
    if (!mode) return E_POINTER;
    LONG addMode = 0;
    Variant number;
    if (SUCCEEDED(VariantChangeType(&number, mode, 0, VT_I4)) && (number.lVal == 0 || number.lVal == 1))
        addMode = number.lVal;
    if (addMode == 0)
        return binaryOperator(*this, *o, result, [](daVector a, daVector b, daVector* out, CMeasurement&) {
            daAdd(a, b, out);
        });
    // Sum of amplitudes: this measurement's own vectors take its amplitudes, a clone of the other
    // one takes the other's.
    return binaryOperator(*this, *o, result, [o](daVector a, daVector, daVector* out, CMeasurement&) {
        IMeasurement* copy = nullptr;
        o->Clone(&copy);
        ComPtr<CMeasurement> clone(CMeasurement::from(copy));  // takes over the clone's reference
        toAmplitudes(a);
        daVector b = clone ? OperatorFrame::view(*clone.get(), a.length) : daVector{nullptr, nullptr, 0};
        toAmplitudes(b);
        daAdd(a, b, out);
    });
}

HRESULT CMeasurement::Subtract(IMeasurement* other, IMeasurement** result) {
    CMeasurement* o = nullptr;
    if (HRESULT h = operands(other, result, o); FAILED(h)) return h;
    return binaryOperator(*this, *o, result, [](daVector a, daVector b, daVector* out, CMeasurement&) {
        daLinearCombination(a, b, out, 1.0f, -1.0f);
    });
}

HRESULT CMeasurement::Multiply(IMeasurement* other, IMeasurement** result) {
    CMeasurement* o = nullptr;
    if (HRESULT h = operands(other, result, o); FAILED(h)) return h;
    return binaryOperator(*this, *o, result, [this, o](daVector a, daVector b, daVector* out, CMeasurement& r) {
        daMultiply(a, b, out);
        if (o->m_functionType == kFnWeighting) {
            if (equalsIgnoringCase(m_acousticWeighting, "off")) m_acousticWeighting.clear();
            if (m_acousticWeighting.find(o->m_acousticWeighting) == std::string::npos)
                r.m_acousticWeighting = m_acousticWeighting + o->m_acousticWeighting;
        } else if (o->m_functionType == kFnWindow) {
            r.m_windowType = o->m_windowType;
            r.m_windowParameter = o->m_windowParameter;
            r.m_bandwidthCorrectionFactor = o->m_bandwidthCorrectionFactor;
        }
        productDimension(r, *this, *o, 1);
    });
}

HRESULT CMeasurement::Divide(IMeasurement* other, IMeasurement** result) {
    CMeasurement* o = nullptr;
    if (HRESULT h = operands(other, result, o); FAILED(h)) return h;
    return binaryOperator(*this, *o, result, [this, o](daVector a, daVector b, daVector* out, CMeasurement& r) {
        daDivide(a, b, out);
        if (o->m_functionType == kFnWeighting)
            weightingAfterDivision(m_acousticWeighting, o->m_acousticWeighting, r.m_acousticWeighting);
        productDimension(r, *this, *o, -1);
    });
}

HRESULT CMeasurement::ComplexConjugate(IMeasurement** result) {
    return unaryOperator(*this, result, [](daVector a, daVector* out) { daComplexConjugate(a, out); });
}

HRESULT CMeasurement::ScalarAdd(float value, IMeasurement** result) {
    return unaryOperator(*this, result, [value](daVector a, daVector* out) { daAdd(value, a, out); });
}

HRESULT CMeasurement::ComplexMultiply(float real, float imag, IMeasurement** result) {
    return unaryOperator(*this, result, [=](daVector a, daVector* out) { daMultiply(daComplex{real, imag}, a, out); });
}

HRESULT CMeasurement::ComplexAdd(float real, float imag, IMeasurement** result) {
    return unaryOperator(*this, result, [=](daVector a, daVector* out) { daAdd(daComplex{real, imag}, a, out); });
}

// Starts from a whole clone; a factor of exactly 1 hands the clone out as it is.
HRESULT CMeasurement::ScalarMultiply(float value, IMeasurement** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return guardedOperator([&]() -> HRESULT {
        IMeasurement* copy = nullptr;
        Clone(&copy);
        ComPtr<CMeasurement> out(from(copy));  // takes over the clone's reference
        if (!out) return E_OUTOFMEMORY;
        if (value == 1.0f) return handOut(out.release(), result);
        LoadFromDisk();
        KernelOutput record;
        daMultiply(value, OperatorFrame::view(*this), &record);
        OperatorFrame::adopt(*out.get(), record);
        return handOut(out.release(), result);
    });
}

}  // namespace nvdl
