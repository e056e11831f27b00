#include "measurement/SignalRange.h"

#include <new>

#include "frame/LateBound.h"
#include "platform/MemberTable.h"

namespace nvdl {

namespace {

template <class T>
HRESULT give(T value, T* out) {
    if (!out) return E_POINTER;
    *out = value;
    return S_OK;
}

}  // namespace

CSignalRange::CSignalRange() : CObjectFrame(IID_ISignalRange) {}

CSignalRange::CSignalRange(Detached) : CSignalRange() { m_detached = true; }

CSignalRange& CSignalRange::operator=(const CSignalRange& other) {
    if (this != &other) Copy(const_cast<CSignalRange*>(&other), this);
    return *this;
}

ULONG CSignalRange::AddRef() {
    if (m_detached) return CObjectFrame::AddRef();
    return m_host ? m_host->AddRef() : 1;
}

ULONG CSignalRange::Release() {
    if (m_detached) return CObjectFrame::Release();
    return m_host ? m_host->Release() : 1;
}

void CSignalRange::SetOwner(IDispatch* measurement) {
    if (!m_detached) m_host = measurement;
    m_owner.setOwner(measurement, !m_detached);
}

HRESULT CSignalRange::store(double& field, double value) {
    field = value;
    return put_Modified(-1);
}

HRESULT CSignalRange::get_Min(double* v) { return give(m_min, v); }
HRESULT CSignalRange::put_Min(double v) { return store(m_min, v); }
HRESULT CSignalRange::get_Max(double* v) { return give(m_max, v); }
HRESULT CSignalRange::put_Max(double v) { return store(m_max, v); }
HRESULT CSignalRange::get_OverallMin(double* v) { return give(m_overallMin, v); }
HRESULT CSignalRange::put_OverallMin(double v) { return store(m_overallMin, v); }
HRESULT CSignalRange::get_OverallMax(double* v) { return give(m_overallMax, v); }
HRESULT CSignalRange::put_OverallMax(double v) { return store(m_overallMax, v); }
HRESULT CSignalRange::get_Mean(double* v) { return give(m_mean, v); }
HRESULT CSignalRange::put_Mean(double v) { return store(m_mean, v); }
HRESULT CSignalRange::get_Rms(double* v) { return give(m_rms, v); }
HRESULT CSignalRange::put_Rms(double v) { return store(m_rms, v); }
HRESULT CSignalRange::get_StandardDeviation(double* v) { return give(m_standardDeviation, v); }
HRESULT CSignalRange::put_StandardDeviation(double v) { return store(m_standardDeviation, v); }
HRESULT CSignalRange::get_Factor(double* v) { return give(m_factor, v); }
HRESULT CSignalRange::put_Factor(double v) { return store(m_factor, v); }
HRESULT CSignalRange::get_UnitOffset(double* v) { return give(m_unitOffset, v); }
HRESULT CSignalRange::put_UnitOffset(double v) { return store(m_unitOffset, v); }
HRESULT CSignalRange::get_Range(float* v) { return give(m_range, v); }

HRESULT CSignalRange::put_Range(float v) {
    m_range = v;
    return put_Modified(-1);
}


// The flag is stored whatever the owner makes of it; only a set flag travels to the owner.
HRESULT CSignalRange::put_Modified(SHORT v) {
    m_modified = v;
    if (!v) return S_OK;
    if (IDispatch* owner = m_owner.get()) putModifiedThroughFirst(owner, kModifiedParents, v);
    return S_OK;
}

HRESULT CSignalRange::get_Measurement(IDispatch** v) {
    if (!v) return E_POINTER;
    *v = nullptr;
    if (m_owner.check() == WeakParent::State::Dead) return E_POINTER;
    if ((*v = m_owner.get())) (*v)->AddRef();
    return S_OK;
}

HRESULT CSignalRange::put_Measurement(IDispatch* v) {
    m_owner.set(v);
    return S_OK;
}

HRESULT CSignalRange::Copy(ISignalRange* target) {
    if (!target) return E_POINTER;
    return Copy(this, target);
}

// Reads and writes that fail are not reported: each value goes over on its own.
HRESULT CSignalRange::Copy(ISignalRange* source, ISignalRange* target) {
    ComPtr<IDispatch> owner;
    bool targetHasOwner = SUCCEEDED(target->get_Measurement(owner.out())) && owner;
    if (!targetHasOwner && SUCCEEDED(source->get_Measurement(owner.out())) && owner)
        target->put_Measurement(owner.get());
    using Get = HRESULT (ISignalRange::*)(double*);
    using Put = HRESULT (ISignalRange::*)(double);
    static constexpr struct {
        Get get;
        Put put;
    } kValues[] = {
        {&ISignalRange::get_Min, &ISignalRange::put_Min},
        {&ISignalRange::get_Max, &ISignalRange::put_Max},
        {&ISignalRange::get_OverallMin, &ISignalRange::put_OverallMin},
        {&ISignalRange::get_OverallMax, &ISignalRange::put_OverallMax},
        {&ISignalRange::get_Mean, &ISignalRange::put_Mean},
        {&ISignalRange::get_Rms, &ISignalRange::put_Rms},
        {&ISignalRange::get_StandardDeviation, &ISignalRange::put_StandardDeviation},
        {&ISignalRange::get_Factor, &ISignalRange::put_Factor},
        {&ISignalRange::get_UnitOffset, &ISignalRange::put_UnitOffset},
    };
    for (const auto& value : kValues) {
        double x = 0.0;
        if (SUCCEEDED((source->*value.get)(&x))) (target->*value.put)(x);
    }
    float range = 0.0f;
    if (SUCCEEDED(source->get_Range(&range))) target->put_Range(range);
    SHORT modified = 0;
    if (SUCCEEDED(source->get_Modified(&modified))) target->put_Modified(modified);
    return S_OK;
}

// A range that cannot be allocated is answered with no object and success.
HRESULT CSignalRange::Clone(ISignalRange** copy) {
    if (!copy) return E_POINTER;
    *copy = nullptr;
    CSignalRange* fresh = nullptr;
    try {
        fresh = new CSignalRange(Detached{});
    } catch (const std::bad_alloc&) {
        return S_OK;
    }
    Copy(this, fresh);
    *copy = fresh;
    return S_OK;
}



}  // namespace nvdl
