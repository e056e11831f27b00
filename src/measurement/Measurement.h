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
#include "platform/SharedMemory.h"

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

class CMeasurement final : public CObjectFrame<CMeasurement, IMeasurement> {
public:
    static constexpr const char* kClassName = "CMeasurement";
    static constexpr const CLSID& kClassId = CLSID_CMeasurement;
    static constexpr IID kModifiedParents[] = {IID_IWorkspace};


    static IDispatch* create();
    static CMeasurement* createMeasurement();
    // A measurement without samples, to be filled by a copy (the copy constructor's start).
    static CMeasurement* createForCopy();
    // The measurement behind an interface of this server, or null.
    static CMeasurement* from(IMeasurement* m);

    NVDL_IMPLEMENTS(NVDL_IMEASUREMENT_MEMBERS)

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
    // A save wrote this record, in the newest generation, as `stream` of `file` (inside the data
    // storage `subStorage` when `inDataStorage` is -1): a record paged from a file pages from there
    // from now on, since the file it came from may just have been replaced. A record held whole in
    // memory has no file to follow, and one of a recording keeps its recording: both stay as they are.
    void followSave(const std::string& file, SHORT inDataStorage, const std::string& subStorage,
                    const std::string& stream, LONG version);
    CMeasurementLog& log() { return m_log; }

    const SampleVector& yReal() const { return m_yReal; }
    const SampleVector& yImag() const { return m_yImag; }
    const SampleVector& xValues() const { return m_x; }
    bool isComplex() const { return m_complex != 0; }
    ISignalRange& signalRange() { return m_signalRange; }

private:
    // `sized`: the default constructor's last act, put_Size(MaxBlockSize); a copy starts without samples.
    explicit CMeasurement(bool sized = true);
    ~CMeasurement() override;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;
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
    // A block just read into the vectors: X (when `hasX`) through put_XArray with the block's
    // incompleteness set aside for the call, then Y through YArray with the Y dimension's text.
    HRESULT takeBlock(LONG block, std::vector<float>& re, std::vector<float>& im, std::vector<float>& x, bool hasX);
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
    // The shared link (MeasurementLocation.cpp). A master parent: its workspace's project is a master.
    static bool IsMasterProjectParent(IDispatch* parent);
    // The link text a parent hands on: its MeasShmLink, else its ShmLink.
    static std::string linkOfParent(IDispatch* parent);
    // A record of this measurement's own, named by a new MeasShmLink, unless it has one.
    bool InitShmInfo();

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
    std::string m_linkName;
    std::string m_tag;
    std::string m_name;
    std::string m_id;
    SampleVector m_yReal, m_yImag, m_x;
    SampleVector m_optimizedYReal, m_optimizedYImag, m_optimizedX;
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
    CShmBlock m_shm;  // the record named by m_measShmLink, holding the workspace's link text
    MeasurementPersistHelpers m_persistHelpers{*this};
    MeasurementDataStream m_dataStream;
    CMeasurementLog m_log;
};

}  // namespace nvdl
