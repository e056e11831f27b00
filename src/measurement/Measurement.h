// CMeasurement: the central record of the system. A header of descriptive properties, a real sample
// vector, an optional imaginary vector and, on axes that need one, an X vector; its parameters,
// sub-measurements, data blocks and signal range.
#pragma once

#include <string>
#include <vector>

#include "frame/EnumTable.h"
#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "measurement/Field.h"
#include "measurement/MeasurementDataStream.h"
#include "measurement/MeasurementLog.h"
#include "measurement/MeasurementPersistHelpers.h"
#include "measurement/SampleVector.h"
#include "measurement/SignalRange.h"
#include "nvdl/IMeasurement.h"

namespace nvdl {

// Codes of the enumerated header properties.
enum MeasurementCode : LONG {
    kWeightingOff = 105,
    kFunctionNone = 1000,
    kFunctionAutopower = 1003,
    kAxisEquidistant = 1100,
    kAxisLogarithmic = 1101,
    kAxisCategories = 1102,
    kAxisOctaves = 1103,
    kAxisArbitrary = 1104,
    kAveragingNone = 1200,
    kWindowNone = 1300,
};

const EnumTable& measurementEnumTable();
// Whether a function type names one channel ("Autopower(resp)") or two ("FRF(resp,ref)").
bool isOneChannelFunction(LONG code);
// Axes that carry an X vector.
inline bool axisHasXVector(LONG axis) { return axis >= kAxisCategories && axis <= kAxisArbitrary; }

class CMeasurement final : public CObjectFrame<IMeasurement> {
public:
    // Every operator makes a new measurement, and a block-wise analysis runs operators on each
    // block: their memory is recycled.
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

    static IDispatch* create();
    static CMeasurement* createMeasurement();
    // A measurement without samples, to be filled by a copy (the copy constructor's start).
    static CMeasurement* createForCopy();
    // The measurement behind an interface of this server, or null.
    static CMeasurement* from(IMeasurement* m);

    HRESULT put_Name(BSTR v) override;
    HRESULT get_Name(BSTR* v) override;
    HRESULT get_FunctionType(VARIANT* v) override;
    HRESULT put_FunctionType(VARIANT v) override;
    HRESULT get_Response(BSTR* v) override;
    HRESULT put_Response(BSTR v) override;
    HRESULT get_ResponseChannel(LONG* v) override;
    HRESULT put_ResponseChannel(LONG v) override;
    HRESULT get_Reference(BSTR* v) override;
    HRESULT put_Reference(BSTR v) override;
    HRESULT get_ReferenceChannel(LONG* v) override;
    HRESULT put_ReferenceChannel(LONG v) override;
    HRESULT get_XAxisType(VARIANT* v) override;
    HRESULT put_XAxisType(VARIANT v) override;
    HRESULT get_XStart(float* v) override;
    HRESULT put_XStart(float v) override;
    HRESULT get_XIncrement(float* v) override;
    HRESULT put_XIncrement(float v) override;
    HRESULT get_XDimension(BSTR* v) override;
    HRESULT put_XDimension(BSTR v) override;
    HRESULT get_YDimension(BSTR* v) override;
    HRESULT put_YDimension(BSTR v) override;
    HRESULT get_StorageUnitX(BSTR* v) override;
    HRESULT put_StorageUnitX(BSTR v) override;
    HRESULT get_StorageUnitY(BSTR* v) override;
    HRESULT put_StorageUnitY(BSTR v) override;
    HRESULT get_X(LONG index, float* v) override;
    HRESULT put_X(LONG index, float v) override;
    HRESULT get_XArray(VARIANT* v) override;
    HRESULT put_XArray(VARIANT v) override;
    HRESULT get_YReal(LONG index, float* v) override;
    HRESULT put_YReal(LONG index, float v) override;
    HRESULT get_YImag(LONG index, float* v) override;
    HRESULT put_YImag(LONG index, float v) override;
    HRESULT get_Amplitude(LONG index, float* v) override;
    HRESULT get_Phase(LONG index, float* v) override;
    HRESULT get_YRealArray(VARIANT* v) override;
    HRESULT get_YImagArray(VARIANT* v) override;
    HRESULT YArray(VARIANT* re, LONG size, VARIANT* im, BSTR dimension) override;
    HRESULT get_XInUserUnit(LONG index, float* v) override;
    HRESULT put_XInUserUnit(LONG index, float v) override;
    HRESULT get_XArrayInUserUnit(VARIANT* v) override;
    HRESULT put_XArrayInUserUnit(VARIANT v) override;
    HRESULT get_YRealInUserUnit(LONG index, float* v) override;
    HRESULT put_YRealInUserUnit(LONG index, float v) override;
    HRESULT get_YRealArrayInUserUnit(VARIANT* v) override;
    HRESULT put_YRealArrayInUserUnit(VARIANT v) override;
    HRESULT get_Size(LONG* v) override;
    HRESULT get_Complex(SHORT* v) override;
    HRESULT put_Complex(SHORT v) override;
    HRESULT get_AveragingType(VARIANT* v) override;
    HRESULT put_AveragingType(VARIANT v) override;
    HRESULT get_AveragingParameter(float* v) override;
    HRESULT put_AveragingParameter(float v) override;
    HRESULT get_Averages(LONG* v) override;
    HRESULT put_Averages(LONG v) override;
    HRESULT get_Overlap(float* v) override;
    HRESULT put_Overlap(float v) override;
    HRESULT get_WindowType(VARIANT* v) override;
    HRESULT put_WindowType(VARIANT v) override;
    HRESULT get_WindowParameter(float* v) override;
    HRESULT put_WindowParameter(float v) override;
    HRESULT get_MeasurementTime(double* v) override;
    HRESULT put_MeasurementTime(double v) override;
    HRESULT get_TestId(BSTR* v) override;
    HRESULT put_TestId(BSTR v) override;
    HRESULT get_FunctionQualifier(BSTR* v) override;
    HRESULT put_FunctionQualifier(BSTR v) override;
    HRESULT get_AcousticWeighting(BSTR* v) override;
    HRESULT put_AcousticWeighting(BSTR v) override;
    HRESULT get_Environment(BSTR* v) override;
    HRESULT put_Environment(BSTR v) override;
    HRESULT get_UserId(BSTR* v) override;
    HRESULT put_UserId(BSTR v) override;
    HRESULT get_Parameters(ICollection** v) override;
    HRESULT get_Property(BSTR name, BSTR* value) override;
    HRESULT PropertyPut(BSTR name, BSTR value) override;
    HRESULT get_PropertiesCount(LONG* v) override;
    HRESULT get_PropertyName(LONG index, BSTR* name) override;
    HRESULT Translate(LONG code, BSTR* text) override;
    HRESULT Clip(BSTR format, BSTR* text) override;
    HRESULT get_Parent(IDispatch** v) override;
    HRESULT put_Parent(IDispatch* v) override;
    HRESULT get_Modified(SHORT* v) override;
    HRESULT put_Modified(SHORT v) override;
    HRESULT Clone(IMeasurement** copy) override;
    HRESULT Add(IMeasurement* other, VARIANT* mode, IMeasurement** result) override;
    HRESULT Subtract(IMeasurement* other, IMeasurement** result) override;
    HRESULT Multiply(IMeasurement* other, IMeasurement** result) override;
    HRESULT Divide(IMeasurement* other, IMeasurement** result) override;
    HRESULT Fft(IMeasurement** result) override;
    HRESULT ComplexConjugate(IMeasurement** result) override;
    HRESULT Psd(IMeasurement* other, IMeasurement** result) override;
    HRESULT Frf(IMeasurement* other, VARIANT estimator, IMeasurement** result) override;
    HRESULT Coherence(IMeasurement* auto1, IMeasurement* auto2, IMeasurement** result) override;
    HRESULT Window(IMeasurement** result) override;
    HRESULT WhiteNoise(IMeasurement** result) override;
    HRESULT ScalarMultiply(float value, IMeasurement** result) override;
    HRESULT ScalarAdd(float value, IMeasurement** result) override;
    HRESULT ComplexMultiply(float real, float imag, IMeasurement** result) override;
    HRESULT ComplexAdd(float real, float imag, IMeasurement** result) override;
    HRESULT Integrate(IMeasurement** result) override;
    HRESULT Differentiate(IMeasurement** result) override;
    HRESULT Rms(float* rms) override;
    HRESULT Histogram(LONG classes, float minimum, float maximum, IMeasurement** result) override;
    HRESULT HistogramAdd(IMeasurement* other) override;
    HRESULT put_Size(LONG v) override;
    HRESULT get_XdDimension(IDispatch** v) override;
    HRESULT put_XdDimension(IDispatch* v) override;
    HRESULT get_YdDimension(IDispatch** v) override;
    HRESULT put_YdDimension(IDispatch* v) override;
    HRESULT SumIntegrate(IMeasurement** result) override;
    HRESULT SumDifferentiate(IMeasurement** result) override;
    HRESULT jwn(LONG power, IMeasurement** result) override;
    HRESULT AcousticIntensity(float a, float b, IMeasurement** result) override;
    HRESULT get_Order(float* v) override;
    HRESULT put_Order(float v) override;
    HRESULT get_RPM(float* v) override;
    HRESULT put_RPM(float v) override;
    HRESULT get_Z(float* v) override;
    HRESULT put_Z(float v) override;
    HRESULT get_ZdDimension(IDispatch** v) override;
    HRESULT put_ZdDimension(IDispatch* v) override;
    HRESULT get_ZDimension(BSTR* v) override;
    HRESULT put_ZDimension(BSTR v) override;
    HRESULT put_BandwidthCorrectionFactor(float v) override;
    HRESULT get_BandwidthCorrectionFactor(float* v) override;
    HRESULT WeightingFunction(BSTR weighting, IMeasurement** result) override;
    HRESULT get_Power(LONG* v) override;
    HRESULT put_Power(LONG v) override;
    HRESULT get_Fields(IFields** v) override;
    HRESULT InPlaceEnergySpectralDensity() override;
    HRESULT InPlaceProbabilityDensity() override;
    HRESULT InPlaceComplexFourierTransform() override;
    HRESULT InPlaceComplexMultiply(float real, float imag) override;
    HRESULT SetYValues(LONG start, LONG count, const float* re, const float* im) override;
    HRESULT GetYValues(LONG start, LONG count, float* re, float* im) override;
    HRESULT Copy(IMeasurement* target) override;
    HRESULT ReadData(LONG start, LONG count) override;
    HRESULT get_IsUncompleted(SHORT* v) override;
    HRESULT get_FileSamples(LONG* v) override;
    HRESULT Location(BSTR file, SHORT inDataStorage, BSTR subStorage, BSTR stream, LONG version) override;
    HRESULT Optimize() override;
    HRESULT get_IsUsefullData(SHORT* v) override;
    HRESULT get_CompressionFactor(float* v) override;
    HRESULT get_Measurements(ICollection** v) override;
    HRESULT get_Overload(LONG* v) override;
    HRESULT put_Overload(LONG v) override;
    HRESULT get_SignalRange(ISignalRange** v) override;
    HRESULT Rms2(LONG first, LONG last, float* rms) override;
    HRESULT ReadYRealArray(float* buffer, LONG count, LONG start) override;
    HRESULT WriteYRealArray(const float* buffer, LONG count, LONG start) override;
    HRESULT put_FileSamples(LONG v) override;
    HRESULT get_ClsidLoader(BSTR* v) override;
    HRESULT put_ClsidLoader(BSTR v) override;
    HRESULT get_ChannelFileID(BSTR* v) override;
    HRESULT put_ChannelFileID(BSTR v) override;
    HRESULT put_CompressionFactor(float v) override;
    HRESULT put_IsUsefullData(SHORT v) override;
    HRESULT put_IsUncompleted(SHORT v) override;
    HRESULT get_CheckOnUnicId(SHORT* v) override;
    HRESULT put_CheckOnUnicId(SHORT v) override;
    HRESULT get_DataBlocks(ICollection** v) override;
    HRESULT get_Id(BSTR* v) override;
    HRESULT SetXValues(LONG start, LONG count, const float* x) override;
    HRESULT GetXValues(LONG start, LONG count, float* x) override;
    HRESULT Octave(LONG bandsPerOctave, IMeasurement** result) override;
    HRESULT get_Workspace(BSTR* v) override;
    HRESULT get_Tag(BSTR* v) override;
    HRESULT put_Tag(BSTR v) override;
    HRESULT CopyHeader(IMeasurement* target) override;
    HRESULT get_MeasShmLink(BSTR* v) override;
    HRESULT sqr(IMeasurement** result) override;
    HRESULT Rms3(LONG first, LONG last, LONG code, float* rms) override;
    HRESULT get_Usage(LONG* v) override;
    HRESULT put_Usage(LONG v) override;
    HRESULT put_MeasShmLink(BSTR v) override;
    HRESULT get_SoftwareRevision(BSTR* v) override;
    HRESULT put_SoftwareRevision(BSTR v) override;
    HRESULT Concatenate(IMeasurement* other, IMeasurement** result) override;
    HRESULT Compress(LONG points, IMeasurement** result) override;
    HRESULT get_LinearUnitYd(IDispatch** unit) override;
    HRESULT get_LinearUnitY(BSTR* name) override;
    HRESULT get_YRealSectionArray(LONG first, LONG count, VARIANT* v) override;
    HRESULT get_YImagSectionArray(LONG first, LONG count, VARIANT* v) override;
    HRESULT get_XSectionArray(LONG first, LONG count, VARIANT* v) override;
    HRESULT CloneHeaderOnly(IMeasurement** copy) override;

    // Non-interface operations.
    // Fills this measurement from the flat record of an outside producer: the 1,400-byte head and
    // its tail. False when the head cannot be read or a setter failed.
    bool Initialize(const std::uint8_t* record, std::size_t available);
    static HRESULT GenerateStaticUnicId(std::string& text);
    HRESULT LoadFromDisk() { return S_OK; }
    HRESULT StoreToDisk() { return S_OK; }
    void GenerateOptimizedArray();
    HRESULT CheckRegistryMaxBlockSize();
    LONG GetDataIndex(LONG index) const;
    LONG GetBlockNumber(LONG index) const;

    // Paging of long records through the backing stream.
    // Brings the span into memory from `stream`, the measurement's own stream or a recording file.
    HRESULT InternalReadData(LONG start, LONG count, IStream* stream);
    HRESULT InternalReadFormat(LONG start, LONG count, IStream* stream);
    HRESULT ExternalReadFormat(LONG start, LONG count);
    // Appends the minimum, then the maximum, of n samples to out at position, and moves position by two.
    static HRESULT ComputeMinMax(const float* in, LONG n, float* out, LONG outSize, LONG& position);
    // The backing stream with one reference for the caller, or null; CloseDataStream releases the chain.
    IStream* GetDataStream();
    void CloseDataStream();
    CMeasurementLog& log() { return m_log; }

    const SampleVector& yReal() const { return m_yReal; }
    const SampleVector& yImag() const { return m_yImag; }
    const SampleVector& xValues() const { return m_x; }
    bool isComplex() const { return m_complex != 0; }

private:
    // `sized`: the default constructor's last act, put_Size(MaxBlockSize); a copy starts without samples.
    explicit CMeasurement(bool sized = true);
    ~CMeasurement() override;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;
    HRESULT UpdateParentModifiedFlag(SHORT flag);
    HRESULT InitializeFields();
    HRESULT putEnumerated(LONG& field, const VARIANT& value);
    HRESULT setText(std::string& field, BSTR value);
    template <class T>
    HRESULT setValue(T& field, T value) {
        field = value;
        return put_Modified(VARIANT_TRUE);
    }
    HRESULT CanEditData() const { return m_isUncompleted ? E_FAIL : S_OK; }
    // New vectors of m floats for the vectors the record has, keeping what fits of the old ones.
    HRESULT resizeBlock(LONG m);
    void blockCopyRange(LONG start, LONG count, LONG& k, LONG& m) const;
    HRESULT copyEngine(CMeasurement& target, bool headerOnly);
    HRESULT sampleAt(const SampleVector& vector, LONG index, float* value);
    HRESULT sectionArray(const SampleVector& vector, LONG first, VARIANT* value) const;
    void releaseDimensions();
    HRESULT setDimensionFromText(IDispatch*& slot, BSTR text, bool allowNewFromText);
    // The dimension of the units table at `index`; an index the table does not have leaves none.
    HRESULT setDimensionByIndex(IDispatch*& slot, LONG index);
    HRESULT dimensionName(IDispatch* dimension, BSTR* name) const;
    bool userUnitScale(IDispatch* dimension, const std::string& storageUnit, double& scale, double& offset) const;

    friend class MeasurementRecordReader;
    friend class CMeasurementBlockWriter;  // a template record's paging block
    friend struct MeasurementStreamFormat;  // the stored record: paging and location fields
    friend class OperatorFrame;  // the signal operators: vectors in and out of the kernel

    LONG m_formatVersion = -1;
    LONG m_reservedLong = -1;
    LONG m_checkOnUnicId = 1;
    LONG m_isUncompleted = 0;
    float m_compressionFactor = 1.0f;
    float m_optimizedCompressionFactor = 1.0f;
    LONG m_isUsefullData = 1;
    LONG m_currentBlock = -1;
    LONG m_blockStartOffset = 0;
    LONG m_firstBlockRead = 1;
    SHORT m_locationInDataStorage = 0;
    std::string m_locationSubStorage, m_locationFile, m_locationStream;
    LONG m_functionType = kFunctionNone;
    std::string m_response;
    LONG m_responseChannel = -1;
    std::string m_reference;
    LONG m_referenceChannel = -1;
    LONG m_xAxisType = kAxisEquidistant;
    float m_xStart = 0.0f;
    float m_optimizedXStart = 0.0f;
    float m_xIncrement = 1.0f;
    IDispatch* m_xdDimension = nullptr;
    LONG m_size = 0;
    LONG m_complex = 0;
    IDispatch* m_ydDimension = nullptr;
    LONG m_averagingType = kAveragingNone;
    float m_averagingParameter = 0.0f;
    LONG m_averages = -1;
    float m_overlap = 0.0f;
    LONG m_windowType = kWindowNone;
    float m_windowParameter = 1.0f;
    double m_measurementTime = 0.0;
    std::string m_testId, m_functionQualifier, m_acousticWeighting = "Off", m_environment, m_userId;
    float m_order = 0.0f, m_rpm = 0.0f, m_z = 0.0f;
    IDispatch* m_zdDimension = nullptr;
    float m_bandwidthCorrectionFactor = 1.0f;
    LONG m_power = 1;
    std::string m_storageUnitX, m_storageUnitY;
    WeakParent m_parent;
    std::string m_linkName;
    std::string m_tag;
    std::string m_name;
    std::string m_id;
    SampleVector m_yReal, m_yImag, m_x;
    SampleVector m_optimizedYReal, m_optimizedYImag, m_optimizedX;
    LONG m_modified = 1;
    LONG m_fileSamples = 0;
    LONG m_maxBlockSize = 32768;
    LONG m_longFileFeature = 0;
    LONG m_dataOffset = 0;
    LONG m_dataLoaded = 0;
    std::string m_yDimensionText;
    CObjectCollection m_parameters{IID_IParameters};
    CFields* m_fields = nullptr;
    CObjectCollection m_measurements{IID_IMeasurements};
    CObjectCollection m_dataBlocks{IID_IDataBlocks};
    CSignalRange m_signalRange;
    LONG m_overload = 0;
    LONG m_usage = 0;
    std::string m_softwareRevision;
    std::string m_workspaceName;
    GUID m_clsidLoader{};
    std::string m_channelFileID;
    std::string m_measShmLink;
    MeasurementPersistHelpers m_persistHelpers{*this};
    MeasurementDataStream m_dataStream;
    CMeasurementLog m_log;
};

}  // namespace nvdl
