// IProcessing: what a setup computes from the data taken: the function, its averaging and windows,
// the reaction to an overload and the hammer test's roving mode.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IPROCESSING_MEMBERS(M)                               \
    M(field_get, MeasurementFunction, (LONG* value))              \
    M(field_put, MeasurementFunction, (LONG value))               \
    M(field_get, AverageType, (LONG* value))                      \
    M(field_put, AverageType, (LONG value))                       \
    M(field_get, AverageNumber, (LONG* value))                    \
    M(field_put, AverageNumber, (LONG value))                     \
    M(field_get, AverageParameter, (float* value))                \
    M(field_put, AverageParameter, (float value))                 \
    M(field_get, OverlapPercent, (float* value))                  \
    M(field_put, OverlapPercent, (float value))                   \
    M(field_get, Offset, (float* value))                          \
    M(field_put, Offset, (float value))                           \
    M(field_get, NbClasses, (LONG* value))                        \
    M(field_put, NbClasses, (LONG value))                         \
    M(field_get, ExtremalClass, (LONG* value))                    \
    M(field_put, ExtremalClass, (LONG value))                     \
    M(field_get, ResponseWindowType, (LONG* value))               \
    M(field_put, ResponseWindowType, (LONG value))                \
    M(field_get, ResponseWindowParameter, (float* value))         \
    M(field_put, ResponseWindowParameter, (float value))          \
    M(field_get, ExcitationWindowType, (LONG* value))             \
    M(field_put, ExcitationWindowType, (LONG value))              \
    M(field_get, ExcitationWindowParameter, (float* value))       \
    M(field_put, ExcitationWindowParameter, (float value))        \
    M(field_get, OverloadAction, (LONG* value))                   \
    M(field_put, OverloadAction, (LONG value))                    \
    M(field_get, OverloadRetryCount, (LONG* value))               \
    M(field_put, OverloadRetryCount, (LONG value))                \
    M(field_get, DisplayRefreshCount, (LONG* value))              \
    M(field_put, DisplayRefreshCount, (LONG value))               \
    M(field_get, RovingMode, (LONG* value))                       \
    M(field_put, RovingMode, (LONG value))                        \
    M(field_get, DoubleHitDetectionEnabled, (SHORT* value))       \
    M(field_put, DoubleHitDetectionEnabled, (SHORT value))        \
    M(field_get, DoubleHitAutoCorrect, (SHORT* value))            \
    M(field_put, DoubleHitAutoCorrect, (SHORT value))             \
    M(field_get, DoubleHitToleranceFactor, (float* value))        \
    M(field_put, DoubleHitToleranceFactor, (float value))         \
    M(field_get, CorrectDC, (SHORT* value))                       \
    M(field_put, CorrectDC, (SHORT value))                        \
    M(field_get, ComputeAverageNumber, (LONG* value))             \
    M(field_put, ComputeAverageNumber, (LONG value))              \
    M(field_get, AverageCalculation, (LONG* value))               \
    M(field_put, AverageCalculation, (LONG value))                \
    M(field_get, RealTime, (SHORT* value))                        \
    M(field_put, RealTime, (SHORT value))                         \
    M(frame_call, Copy, (IProcessing* target))                    \
    M(frame_get, Modified, (SHORT* modified))                     \
    M(frame_put, Modified, (SHORT modified))                      \
    M(frame_get, Setup, (IDispatch** setup))                      \
    M(frame_put, Setup, (IDispatch* setup))                       \
    M(frame_call, Clone, (IProcessing** copy))                    \
    M(call, Translate, (LONG code, BSTR* text))                   \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IProcessing, NVDL_IPROCESSING_MEMBERS);
