// ISignalRange: the statistics of a signal as measured during acquisition, in the unit of the
// storage; each measurement carries one. The members stand in the interface's slot order.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Dispatch.h"

struct ISignalRange : IDispatch {
    static constexpr const IID& iid = IID_ISignalRange;

    virtual HRESULT get_Min(double* v) = 0;
    virtual HRESULT put_Min(double v) = 0;
    virtual HRESULT get_Max(double* v) = 0;
    virtual HRESULT put_Max(double v) = 0;
    virtual HRESULT get_OverallMin(double* v) = 0;
    virtual HRESULT put_OverallMin(double v) = 0;
    virtual HRESULT get_OverallMax(double* v) = 0;
    virtual HRESULT put_OverallMax(double v) = 0;
    virtual HRESULT get_Mean(double* v) = 0;
    virtual HRESULT put_Mean(double v) = 0;
    virtual HRESULT get_Rms(double* v) = 0;
    virtual HRESULT put_Rms(double v) = 0;
    virtual HRESULT get_StandardDeviation(double* v) = 0;
    virtual HRESULT put_StandardDeviation(double v) = 0;
    virtual HRESULT get_Factor(double* v) = 0;
    virtual HRESULT put_Factor(double v) = 0;
    virtual HRESULT get_UnitOffset(double* v) = 0;
    virtual HRESULT put_UnitOffset(double v) = 0;
    virtual HRESULT get_Range(float* v) = 0;
    virtual HRESULT put_Range(float v) = 0;
    // Copies this range's values into the target.
    virtual HRESULT Copy(ISignalRange* target) = 0;
    virtual HRESULT get_Modified(SHORT* v) = 0;
    virtual HRESULT put_Modified(SHORT v) = 0;
    virtual HRESULT get_Measurement(IDispatch** v) = 0;
    virtual HRESULT put_Measurement(IDispatch* v) = 0;
    virtual HRESULT Clone(ISignalRange** copy) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT get_Property(BSTR name, BSTR* value) = 0;
    virtual HRESULT put_Property(BSTR name, BSTR value) = 0;

protected:
    ~ISignalRange() = default;
};
