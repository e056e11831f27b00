// CTrcMeasurementHeaderSection: the description of one stored measurement or sub-measurement: a
// 5080-byte block with the fields of the measurement object (name, function, channels, axes, size,
// averaging, window, time stamp, storage units, loader and state), then a table of one entry and
// the measurement's parameter list. The block's values pass through unchanged: enumerations are
// kept as numbers, texts hold at most their field's size minus one characters.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/RecordLayout.h"
#include "recording/TrcBaseSection.h"
#include "recording/TrcParameters.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

// The fields of the block, by their names in the measurement object.
struct MeasurementHeaderBlock {
    std::int32_t version = 0;
    std::string Name;
    std::int32_t FunctionType = 0;
    std::int16_t ResponseChannel = 0;
    std::string Response;
    std::int16_t ReferenceChannel = 0;
    std::string Reference;
    std::int32_t XAxisType = 0;
    float XStart = 0;
    float XIncrement = 0;
    std::string XDimension;
    std::int32_t Size = 0;
    std::int32_t Complex = 0;
    std::string YDimension;
    std::int32_t AveragingType = 0;
    float AveragingParameter = 0;
    std::int32_t Averages = 0;
    float Overlap = 0;
    std::int32_t WindowType = 0;
    float WindowParameter = 0;
    double MeasurementTime = 0;
    std::string TestId;
    std::string FunctionQualifier;
    std::string AcousticWeighting;
    std::string Environment;
    std::string UserId;
    float Order = 0;
    float RPM = 0;
    float Z = 0;
    float BandwidthCorrectionFactor = 0;
    std::int32_t Power = 0;
    std::int32_t Overload = 0;
    std::string StorageUnitX;
    std::string StorageUnitY;
    std::string ClsidLoader;
    std::string ChannelFileID;
    std::int32_t IsUncompleted = 0;
    std::int32_t IsUsefullData = 0;
    float CompressionFactor = 0;
    std::int32_t CheckOnUnicId = 0;
    std::int32_t FileSamples = 0;
    std::string ZDimension;
    std::int32_t Usage = 0;
    std::string SoftwareRevision;

    bool operator==(const MeasurementHeaderBlock&) const = default;
};

std::span<const record::Field<MeasurementHeaderBlock, 1>> measurementHeaderFields();

class CTrcMeasurementHeaderSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 5080;

    CTrcMeasurementHeaderSection() { Init(); }
    int Init();  // an empty block of the current version, no parameters

    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setText(m_block.Name, value, 50); }
    long GetFunctionType() const { return m_block.FunctionType; }
    void SetFunctionType(long value) { m_block.FunctionType = static_cast<std::int32_t>(value); }
    // Channels are stored in 16 bits: a larger number loses its high half.
    long GetResponseChannel() const { return m_block.ResponseChannel; }
    void SetResponseChannel(long value) { m_block.ResponseChannel = static_cast<std::int16_t>(value); }
    const char* GetResponse() const { return m_block.Response.c_str(); }
    void SetResponse(const char* value) { setText(m_block.Response, value, 50); }
    long GetReferenceChannel() const { return m_block.ReferenceChannel; }
    void SetReferenceChannel(long value) { m_block.ReferenceChannel = static_cast<std::int16_t>(value); }
    const char* GetReference() const { return m_block.Reference.c_str(); }
    void SetReference(const char* value) { setText(m_block.Reference, value, 50); }
    long GetXAxisType() const { return m_block.XAxisType; }
    void SetXAxisType(long value) { m_block.XAxisType = static_cast<std::int32_t>(value); }
    float GetXStart() const { return m_block.XStart; }
    void SetXStart(float value) { m_block.XStart = value; }
    float GetXIncrement() const { return m_block.XIncrement; }
    void SetXIncrement(float value) { m_block.XIncrement = value; }
    const char* GetXDimension() const { return m_block.XDimension.c_str(); }
    void SetXDimension(const char* value) { setText(m_block.XDimension, value, 50); }
    long GetSize() const { return m_block.Size; }  // values per curve
    void SetSize(long value) {
        if (value >= 0) m_block.Size = static_cast<std::int32_t>(value);
    }
    int GetComplex() const { return m_block.Complex; }
    void SetComplex(int value) { m_block.Complex = value; }
    const char* GetYDimension() const { return m_block.YDimension.c_str(); }
    void SetYDimension(const char* value) { setText(m_block.YDimension, value, 50); }
    long GetAveragingType() const { return m_block.AveragingType; }
    void SetAveragingType(long value) { m_block.AveragingType = static_cast<std::int32_t>(value); }
    float GetAveragingParameter() const { return m_block.AveragingParameter; }
    void SetAveragingParameter(float value) { m_block.AveragingParameter = value; }
    long GetAverages() const { return m_block.Averages; }
    void SetAverages(long value) { m_block.Averages = static_cast<std::int32_t>(value); }
    float GetOverlap() const { return m_block.Overlap; }
    void SetOverlap(float value) { m_block.Overlap = value; }
    long GetWindowType() const { return m_block.WindowType; }
    void SetWindowType(long value) { m_block.WindowType = static_cast<std::int32_t>(value); }
    float GetWindowParameter() const { return m_block.WindowParameter; }
    void SetWindowParameter(float value) { m_block.WindowParameter = value; }
    double GetMeasurementTime() const { return m_block.MeasurementTime; }  // a date value
    void SetMeasurementTime(double value) { m_block.MeasurementTime = value; }
    const char* GetTestId() const { return m_block.TestId.c_str(); }
    void SetTestId(const char* value) { setText(m_block.TestId, value, 50); }
    const char* GetFunctionQualifier() const { return m_block.FunctionQualifier.c_str(); }
    void SetFunctionQualifier(const char* value) { setText(m_block.FunctionQualifier, value, 50); }
    const char* GetAcousticWeighting() const { return m_block.AcousticWeighting.c_str(); }
    void SetAcousticWeighting(const char* value) { setText(m_block.AcousticWeighting, value, 50); }
    const char* GetEnvironment() const { return m_block.Environment.c_str(); }
    void SetEnvironment(const char* value) { setText(m_block.Environment, value, 50); }
    const char* GetUserId() const { return m_block.UserId.c_str(); }
    void SetUserId(const char* value) { setText(m_block.UserId, value, 100); }
    float GetOrder() const { return m_block.Order; }
    void SetOrder(float value) { m_block.Order = value; }
    float GetRPM() const { return m_block.RPM; }
    void SetRPM(float value) { m_block.RPM = value; }
    float GetZ() const { return m_block.Z; }
    void SetZ(float value) { m_block.Z = value; }
    float GetBandwidthCorrectionFactor() const { return m_block.BandwidthCorrectionFactor; }
    void SetBandwidthCorrectionFactor(float value) { m_block.BandwidthCorrectionFactor = value; }
    long GetPower() const { return m_block.Power; }
    void SetPower(long value) { m_block.Power = static_cast<std::int32_t>(value); }
    long GetOverload() const { return m_block.Overload; }
    void SetOverload(long value) { m_block.Overload = static_cast<std::int32_t>(value); }
    const char* GetStorageUnitX() const { return m_block.StorageUnitX.c_str(); }
    void SetStorageUnitX(const char* value) { setText(m_block.StorageUnitX, value, 50); }
    const char* GetStorageUnitY() const { return m_block.StorageUnitY.c_str(); }
    void SetStorageUnitY(const char* value) { setText(m_block.StorageUnitY, value, 50); }
    const char* GetClsidLoader() const { return m_block.ClsidLoader.c_str(); }
    void SetClsidLoader(const char* value) { setText(m_block.ClsidLoader, value, 50); }
    const char* GetChannelFileID() const { return m_block.ChannelFileID.c_str(); }
    void SetChannelFileID(const char* value) { setText(m_block.ChannelFileID, value, 50); }
    int GetIsUncompleted() const { return m_block.IsUncompleted; }
    void SetIsUncompleted(int value) { m_block.IsUncompleted = value; }
    int GetIsUsefullData() const { return m_block.IsUsefullData; }
    void SetIsUsefullData(int value) { m_block.IsUsefullData = value; }
    float GetCompressionFactor() const { return m_block.CompressionFactor; }
    void SetCompressionFactor(float value) { m_block.CompressionFactor = value; }
    int GetCheckOnUnicId() const { return m_block.CheckOnUnicId; }
    void SetCheckOnUnicId(int value) { m_block.CheckOnUnicId = value; }
    long GetFileSamples() const { return m_block.FileSamples; }
    void SetFileSamples(long value) { m_block.FileSamples = static_cast<std::int32_t>(value); }
    const char* GetZDimension() const { return m_block.ZDimension.c_str(); }
    void SetZDimension(const char* value) { setText(m_block.ZDimension, value, 50); }
    long GetUsage() const { return m_block.Usage; }
    void SetUsage(long value) { m_block.Usage = static_cast<std::int32_t>(value); }
    const char* GetSoftwareRevision() const { return m_block.SoftwareRevision.c_str(); }
    void SetSoftwareRevision(const char* value) { setText(m_block.SoftwareRevision, value, 10); }

    // Axis types 1102, 1103 and 1104 are those whose X values are stored as a table of `Size` floats.
    bool HasXTable() const;
    CTrcParametersSection& GetParameters() { return m_parameters; }
    const MeasurementHeaderBlock& GetBlock() const { return m_block; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // The parameter list goes behind the block and the table.
    int UpdateTocSections();

    // The owner is the measurement or sub-measurement whose table holds this header's entry.
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int InternWrite(CTrcFile* file);  // block, table and parameters at the section offset
    int InternRead(CTrcFile* file);
    int Copy(CTrcMeasurementHeaderSection& target) const;  // block and parameters, not the place

private:
    static void setText(std::string& field, const char* value, std::size_t size);

    MeasurementHeaderBlock m_block;
    CTrcTableManagment m_toc;
    CTrcParametersSection m_parameters;
};

}  // namespace nvdl::trc
