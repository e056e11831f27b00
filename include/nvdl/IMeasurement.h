// IMeasurement: one function of one variable (a time record, a spectrum, a coherence), its header
// of descriptive properties, its samples, and the operators that make new measurements from it.
// The members stand in the interface's slot order.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/ICollection.h"
#include "nvdl/IField.h"
#include "nvdl/ISignalRange.h"
#include "nvdl/Members.h"

#define NVDL_IMEASUREMENT_MEMBERS(M) \
    M(put, Name, (BSTR v))                                                                                                                \
    M(get, Name, (BSTR* v))                                                                                                               \
    M(get, FunctionType, (VARIANT* v))                                                                                                    \
    M(put, FunctionType, (VARIANT v))                                                                                                     \
    M(get, Response, (BSTR* v))                                                                                                           \
    M(put, Response, (BSTR v))                                                                                                            \
    M(get, ResponseChannel, (LONG* v))                                                                                                    \
    M(put, ResponseChannel, (LONG v))                                                                                                     \
    M(get, Reference, (BSTR* v))                                                                                                          \
    M(put, Reference, (BSTR v))                                                                                                           \
    M(get, ReferenceChannel, (LONG* v))                                                                                                   \
    M(put, ReferenceChannel, (LONG v))                                                                                                    \
    M(get, XAxisType, (VARIANT* v))                                                                                                       \
    M(put, XAxisType, (VARIANT v))                                                                                                        \
    M(get, XStart, (float* v))                                                                                                            \
    M(put, XStart, (float v))                                                                                                             \
    M(get, XIncrement, (float* v))                                                                                                        \
    M(put, XIncrement, (float v))                                                                                                         \
    M(get, XDimension, (BSTR* v))                                                                                                         \
    M(put, XDimension, (BSTR v))                                                                                                          \
    M(get, YDimension, (BSTR* v))                                                                                                         \
    M(put, YDimension, (BSTR v))                                                                                                          \
    M(get, StorageUnitX, (BSTR* v))                                                                                                       \
    M(put, StorageUnitX, (BSTR v))                                                                                                        \
    M(get, StorageUnitY, (BSTR* v))                                                                                                       \
    M(put, StorageUnitY, (BSTR v))                                                                                                        \
    M(get, X, (LONG index, float* v))                                                                                                     \
    M(put, X, (LONG index, float v))                                                                                                      \
    M(get, XArray, (VARIANT* v))                                                                                                          \
    M(put, XArray, (VARIANT v))                                                                                                           \
    M(get, YReal, (LONG index, float* v))                                                                                                 \
    M(put, YReal, (LONG index, float v))                                                                                                  \
    M(get, YImag, (LONG index, float* v))                                                                                                 \
    M(put, YImag, (LONG index, float v))                                                                                                  \
    M(get, Amplitude, (LONG index, float* v))                                                                                             \
    M(get, Phase, (LONG index, float* v))                                                                                                 \
    M(get, YRealArray, (VARIANT* v))                                                                                                      \
    M(get, YImagArray, (VARIANT* v))                                                                                                      \
    M(call, YArray, (VARIANT* re, LONG size, VARIANT* im, BSTR dimension), optional("im"), optional("dimension"))                         \
    M(get, XInUserUnit, (LONG index, float* v))                                                                                           \
    M(put, XInUserUnit, (LONG index, float v))                                                                                            \
    M(get, XArrayInUserUnit, (VARIANT* v))                                                                                                \
    M(put, XArrayInUserUnit, (VARIANT v))                                                                                                 \
    M(get, YRealInUserUnit, (LONG index, float* v))                                                                                       \
    M(put, YRealInUserUnit, (LONG index, float v))                                                                                        \
    M(get, YRealArrayInUserUnit, (VARIANT* v))                                                                                            \
    M(put, YRealArrayInUserUnit, (VARIANT v))                                                                                             \
    M(get, Size, (LONG* v))                                                                                                               \
    M(get, Complex, (SHORT* v), typed(VT_BOOL))                                                                                           \
    M(put, Complex, (SHORT v), typed(VT_BOOL))                                                                                            \
    M(get, AveragingType, (VARIANT* v))                                                                                                   \
    M(put, AveragingType, (VARIANT v))                                                                                                    \
    M(get, AveragingParameter, (float* v))                                                                                                \
    M(put, AveragingParameter, (float v))                                                                                                 \
    M(get, Averages, (LONG* v))                                                                                                           \
    M(put, Averages, (LONG v))                                                                                                            \
    M(get, Overlap, (float* v))                                                                                                           \
    M(put, Overlap, (float v))                                                                                                            \
    M(get, WindowType, (VARIANT* v))                                                                                                      \
    M(put, WindowType, (VARIANT v))                                                                                                       \
    M(get, WindowParameter, (float* v))                                                                                                   \
    M(put, WindowParameter, (float v))                                                                                                    \
    M(get, MeasurementTime, (double* v))                                                                                                  \
    M(put, MeasurementTime, (double v))                                                                                                   \
    M(get, TestId, (BSTR* v))                                                                                                             \
    M(put, TestId, (BSTR v))                                                                                                              \
    M(get, FunctionQualifier, (BSTR* v))                                                                                                  \
    M(put, FunctionQualifier, (BSTR v))                                                                                                   \
    M(get, AcousticWeighting, (BSTR* v))                                                                                                  \
    M(put, AcousticWeighting, (BSTR v))                                                                                                   \
    M(get, Environment, (BSTR* v))                                                                                                        \
    M(put, Environment, (BSTR v))                                                                                                         \
    M(get, UserId, (BSTR* v))                                                                                                             \
    M(put, UserId, (BSTR v))                                                                                                              \
    M(get, Parameters, (ICollection** v))                                                                                                 \
    M(get, Property, (BSTR name, BSTR* value))                                                                                      \
    M(call, PropertyPut, (BSTR name, BSTR value))                                                                                         \
    M(get, PropertiesCount, (LONG* v))                                                                                              \
    M(get, PropertyName, (LONG index, BSTR* name))                                                                                  \
    M(call, Translate, (LONG code, BSTR* text))                                                                                           \
    M(call, Clip, (BSTR format, BSTR* text))                                                                                              \
    M(get, Parent, (IDispatch** v))                                                                                                       \
    M(put, Parent, (IDispatch* v))                                                                                                        \
    M(frame_get, Modified, (SHORT* v))                                                                                                    \
    M(put, Modified, (SHORT v))                                                                                                           \
    M(call, Clone, (IMeasurement** copy))                                                                                                 \
    /* Operators. */                                                                                                                      \
    M(call, Add, (IMeasurement* other, VARIANT* mode, IMeasurement** result), optional("mode"))                                           \
    M(call, Subtract, (IMeasurement* other, IMeasurement** result))                                                                       \
    M(call, Multiply, (IMeasurement* other, IMeasurement** result))                                                                       \
    M(call, Divide, (IMeasurement* other, IMeasurement** result))                                                                         \
    M(call, Fft, (IMeasurement** result))                                                                                                 \
    M(call, ComplexConjugate, (IMeasurement** result))                                                                                    \
    M(call, Psd, (IMeasurement* other, IMeasurement** result))                                                                            \
    M(call, Frf, (IMeasurement* other, VARIANT estimator, IMeasurement** result), optional("estimator"))                                  \
    M(call, Coherence, (IMeasurement* auto1, IMeasurement* auto2, IMeasurement** result))                                                 \
    M(call, Window, (IMeasurement** result))                                                                                              \
    M(call, WhiteNoise, (IMeasurement** result))                                                                                          \
    M(call, ScalarMultiply, (float value, IMeasurement** result))                                                                         \
    M(call, ScalarAdd, (float value, IMeasurement** result))                                                                              \
    M(call, ComplexMultiply, (float real, float imag, IMeasurement** result))                                                             \
    M(call, ComplexAdd, (float real, float imag, IMeasurement** result))                                                                  \
    M(call, Integrate, (IMeasurement** result))                                                                                           \
    M(call, Differentiate, (IMeasurement** result))                                                                                       \
    M(call, Rms, (float* rms))                                                                                                            \
    M(call, Histogram, (LONG classes, float minimum, float maximum, IMeasurement** result))                                               \
    M(call, HistogramAdd, (IMeasurement* other))                                                                                          \
    M(put, Size, (LONG v))                                                                                                                \
    M(get, XdDimension, (IDispatch** v))                                                                                                  \
    M(put, XdDimension, (IDispatch* v))                                                                                                   \
    M(get, YdDimension, (IDispatch** v))                                                                                                  \
    M(put, YdDimension, (IDispatch* v))                                                                                                   \
    M(call, SumIntegrate, (IMeasurement** result))                                                                                        \
    M(call, SumDifferentiate, (IMeasurement** result))                                                                                    \
    M(call, jwn, (LONG power, IMeasurement** result))                                                                                     \
    M(call, AcousticIntensity, (float a, float b, IMeasurement** result))                                                                 \
    M(get, Order, (float* v))                                                                                                             \
    M(put, Order, (float v))                                                                                                              \
    M(get, RPM, (float* v))                                                                                                               \
    M(put, RPM, (float v))                                                                                                                \
    M(get, Z, (float* v))                                                                                                                 \
    M(put, Z, (float v))                                                                                                                  \
    M(get, ZdDimension, (IDispatch** v))                                                                                                  \
    M(put, ZdDimension, (IDispatch* v))                                                                                                   \
    M(get, ZDimension, (BSTR* v))                                                                                                         \
    M(put, ZDimension, (BSTR v))                                                                                                          \
    M(put, BandwidthCorrectionFactor, (float v))                                                                                          \
    M(get, BandwidthCorrectionFactor, (float* v))                                                                                         \
    M(call, WeightingFunction, (BSTR weighting, IMeasurement** result))                                                                   \
    M(get, Power, (LONG* v))                                                                                                              \
    M(put, Power, (LONG v))                                                                                                               \
    M(get, Fields, (IFields** v))                                                                                                         \
    M(call, InPlaceEnergySpectralDensity, ())                                                                                             \
    M(call, InPlaceProbabilityDensity, ())                                                                                                \
    M(call, InPlaceComplexFourierTransform, ())                                                                                           \
    M(call, InPlaceComplexMultiply, (float real, float imag))                                                                             \
    /* Block copies for C++ clients: buffers of `count` floats (not reachable late-bound). */                                             \
    M(native, SetYValues, (LONG start, LONG count, const float* re, const float* im))                                                     \
    M(native, GetYValues, (LONG start, LONG count, float* re, float* im))                                                                 \
    M(call, Copy, (IMeasurement* target))                                                                                                 \
    M(call, ReadData, (LONG start, LONG count))                                                                                           \
    M(get, IsUncompleted, (SHORT* v), typed(VT_BOOL))                                                                                     \
    M(get, FileSamples, (LONG* v))                                                                                                        \
    M(call, Location, (BSTR file, SHORT inDataStorage, BSTR subStorage, BSTR stream, LONG version), declaredAs("inDataStorage", VT_BOOL)) \
    M(call, Optimize, ())                                                                                                                 \
    M(get, IsUsefullData, (SHORT* v), typed(VT_BOOL))                                                                                     \
    M(get, CompressionFactor, (float* v))                                                                                                 \
    M(get, Measurements, (ICollection** v))                                                                                               \
    M(get, Overload, (LONG* v))                                                                                                           \
    M(put, Overload, (LONG v))                                                                                                            \
    M(get, SignalRange, (ISignalRange** v))                                                                                               \
    M(call, Rms2, (LONG first, LONG last, float* rms))                                                                                    \
    M(native, ReadYRealArray, (float* buffer, LONG count, LONG start))                                                                    \
    M(native, WriteYRealArray, (const float* buffer, LONG count, LONG start))                                                             \
    M(put, FileSamples, (LONG v))                                                                                                         \
    M(get, ClsidLoader, (BSTR* v))                                                                                                        \
    M(put, ClsidLoader, (BSTR v))                                                                                                         \
    M(get, ChannelFileID, (BSTR* v))                                                                                                      \
    M(put, ChannelFileID, (BSTR v))                                                                                                       \
    M(put, CompressionFactor, (float v))                                                                                                  \
    M(put, IsUsefullData, (SHORT v), typed(VT_BOOL))                                                                                      \
    M(put, IsUncompleted, (SHORT v), typed(VT_BOOL))                                                                                      \
    M(get, CheckOnUnicId, (SHORT* v), typed(VT_BOOL))                                                                                     \
    M(put, CheckOnUnicId, (SHORT v), typed(VT_BOOL))                                                                                      \
    M(get, DataBlocks, (ICollection** v))                                                                                                 \
    M(get, Id, (BSTR* v))                                                                                                                 \
    M(native, SetXValues, (LONG start, LONG count, const float* x))                                                                       \
    M(native, GetXValues, (LONG start, LONG count, float* x))                                                                             \
    M(call, Octave, (LONG bands, IMeasurement** result))                                                                                  \
    M(get, Workspace, (BSTR* v))                                                                                                          \
    M(get, Tag, (BSTR* v))                                                                                                                \
    M(put, Tag, (BSTR v))                                                                                                                 \
    M(call, CopyHeader, (IMeasurement* target))                                                                                           \
    M(get, MeasShmLink, (BSTR* v))                                                                                                        \
    M(call, sqr, (IMeasurement** result))                                                                                                 \
    M(call, Rms3, (LONG first, LONG last, LONG code, float* rms))                                                                         \
    M(get, Usage, (LONG* v))                                                                                                              \
    M(put, Usage, (LONG v))                                                                                                               \
    M(put, MeasShmLink, (BSTR v))                                                                                                         \
    M(get, SoftwareRevision, (BSTR* v))                                                                                                   \
    M(put, SoftwareRevision, (BSTR v))                                                                                                    \
    M(call, Concatenate, (IMeasurement* other, IMeasurement** result))                                                                    \
    M(call, Compress, (LONG points, IMeasurement** result))                                                                               \
    M(get, LinearUnitYd, (IDispatch** unit))                                                                                              \
    M(get, LinearUnitY, (BSTR* name))                                                                                                     \
    M(get, YRealSectionArray, (LONG first, LONG count, VARIANT* v))                                                                       \
    M(get, YImagSectionArray, (LONG first, LONG count, VARIANT* v))                                                                       \
    M(get, XSectionArray, (LONG first, LONG count, VARIANT* v))                                                                           \
    M(call, CloneHeaderOnly, (IMeasurement** copy))                                                                                       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IMeasurement, NVDL_IMEASUREMENT_MEMBERS);
