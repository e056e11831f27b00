// CMeasurementBlockWriter: header, calibrated sample blocks, parameters.
#include "measurement/MeasurementBlockWriter.h"

#include <algorithm>
#include <bit>
#include <ctime>
#include <vector>

#include "frame/ObjectCount.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementHeaderRecord.h"
#include "measurement/MeasurementStreamFormat.h"
#include "nvdl/IParameter.h"
#include "platform/CodePage.h"
#include "nvdl/Date.h"
#include "platform/LittleEndian.h"
#include "project/UnitClient.h"

namespace nvdl {

namespace {

constexpr std::size_t kBlock1Size = kHeaderSize[kHeader20021112];
constexpr std::size_t kBlock2Size = kPagingSize;
constexpr DWORD kCreateMode = STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE;

// Where the fields that Finish completes lie.
std::uint64_t headerOffset(auto member) {
    return static_cast<std::uint64_t>(record::offsetOf(headerFields(), kHeader20021112, member));
}
std::uint64_t pagingOffset(auto member) { return static_cast<std::uint64_t>(record::offsetOf(pagingFields(), 0, member)); }

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y)); });
}

DATE localNow() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return dateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

// The index the record keeps for the dimension of a unit, and that unit's scale and offset.
LONG dimensionOfUnit(const std::string& unit, double* scale = nullptr, double* offset = nullptr) {
    if (unit.empty()) return 0;
    IDimension* dimension = DimensionFromText(unit, false);
    if (!dimension) return 0;
    LONG index = DimensionTableIndex(dimension);
    if (scale && offset) {
        IUnit* found = UnitOfDimension(dimension, unit);
        GetUnitScaleAndOffset(found, *scale, *offset);
        if (*scale == 0.0) *scale = 1.0;
        if (found) found->Release();
    }
    dimension->Release();
    return index;
}

// A parameter's value by name from a measurement's parameters; E_POINTER when there is none.
HRESULT parameterText(ICollection* parameters, const char16_t* name, std::string& value) {
    Variant key = Variant::fromString(name);
    IDispatch* item = nullptr;
    if (FAILED(parameters->Item(key, &item)) || !item) return E_POINTER;
    IParameter* parameter = nullptr;
    HRESULT h = item->QueryInterface(IID_IParameter, reinterpret_cast<void**>(&parameter));
    item->Release();
    if (FAILED(h) || !parameter) return E_POINTER;
    Bstr text;
    h = parameter->get_Value(text.out());
    parameter->Release();
    if (FAILED(h)) return E_POINTER;
    value = text.ansi();
    return S_OK;
}

}  // namespace

// The paging and location block of a template record, taken over for a record of `samples` samples
// whose vectors begin at `dataOffset`.
void CMeasurementBlockWriter::pagingBlockOf(const CMeasurement& source, std::uint8_t* block, std::int64_t samples, std::uint64_t dataOffset) {
    MeasurementPagingRecord p = MeasurementStreamFormat::pagingRecord(source);
    p.tag = kTemplateTag;
    p.fileSamples = static_cast<std::int32_t>(samples);
    p.longFileFeature = source.m_longFileFeature;
    p.dataOffset = static_cast<std::int32_t>(dataOffset);
    record::encode(pagingFields(), 0, p, block);
}

CMeasurementBlockWriter::CMeasurementBlockWriter() { ++g_nObjects; }

CMeasurementBlockWriter::~CMeasurementBlockWriter() {
    releaseStream();
    if (m_storage) m_storage->Release();
    --g_nObjects;
}

CMeasurementBlockWriter* CMeasurementBlockWriter::create() { return new CMeasurementBlockWriter; }

HRESULT CMeasurementBlockWriter::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IMeasurementBlockWriter) return E_NOINTERFACE;
    *ppv = static_cast<IMeasurementBlockWriter*>(this);
    AddRef();
    return S_OK;
}

ULONG CMeasurementBlockWriter::AddRef() { return ++m_cRef; }

ULONG CMeasurementBlockWriter::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

HRESULT CMeasurementBlockWriter::SetStorage(IStorage* storage) {
    if (storage) storage->AddRef();
    if (m_storage) m_storage->Release();
    m_storage = storage;
    return S_OK;
}

HRESULT CMeasurementBlockWriter::Create(IStorage* storage, BSTR name) {
    if (!storage) storage = m_storage;
    if (!storage || !name) return E_POINTER;
    releaseStream();
    std::u16string wide(bstrView(name));
    return storage->CreateStream(wide.c_str(), kCreateMode, 0, 0, &m_stream);
}

HRESULT CMeasurementBlockWriter::IsOpen(SHORT* open) {
    if (!open) return E_POINTER;
    *open = m_stream ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CMeasurementBlockWriter::BeginTimeRecord(LONG blocks, LONG blockSize, double sampleFrequency, float xStart,
                                                 BSTR xUnit, BSTR yUnit, BSTR response, BSTR sensitivityUnit,
                                                 double sensitivity, double gain, IMeasurement* templateRecord) {
    if (blocks <= 0 || blockSize <= 0 || !(sampleFrequency > 0.0)) return E_FAIL;
    if (!m_stream) return E_FAIL;
    const std::int64_t samples = static_cast<std::int64_t>(blocks) * blockSize;
    if (samples > 0x7FFFFFFF) return E_INVALIDARG;
    CMeasurement* source = CMeasurement::from(templateRecord);

    const std::string xUnitText = bstrToAnsi(xUnit), yUnitText = bstrToAnsi(yUnit);
    std::vector<std::uint8_t> header(kBlock1Size + (source ? kBlock2Size : 0), 0);
    MeasurementHeaderRecord r;
    r.tag = source ? kTemplateTag : kTag;
    r.name = m_name;
    r.functionType = "Time block";
    r.responseChannel = -1;
    r.response = bstrToAnsi(response);
    r.referenceChannel = -1;
    r.xAxisType = "Equidistant";
    r.xStart = xStart;
    r.xIncrement = static_cast<float>(1.0 / sampleFrequency);
    r.xDimension = dimensionOfUnit(xUnitText);
    r.storageUnitX = xUnitText;
    r.size = static_cast<std::int32_t>(samples);
    double scale = 1.0, offset = 0.0;
    r.yDimension = dimensionOfUnit(yUnitText, &scale, &offset);
    r.storageUnitY = yUnitText;
    r.averages = -1;
    r.windowParameter = 1.0f;
    r.measurementTime = localNow();
    r.acousticWeighting = "Off";
    r.bandwidthCorrectionFactor = 1.0f;
    r.power = 1;
    std::uint8_t* b = header.data();
    record::encode(headerFields(), kHeader20021112, r, b);
    if (source) pagingBlockOf(*source, b + kBlock1Size, samples, header.size());

    double factor = 1.0;
    if (equalsIgnoringCase(bstrToAnsi(sensitivityUnit), "mV/EU")) factor = sensitivity != 0.0 ? 1000.0 / sensitivity : 1.0;
    if (gain != 0.0) factor /= gain;
    m_scale = scale;
    m_offset = offset;
    m_calibrationFactor = factor * scale;

    if (FAILED(m_stream->SetSize(0))) return E_FAIL;
    if (HRESULT h = writeAt(0, header.data(), header.size()); FAILED(h)) return h;
    m_blockSize = blockSize;
    m_written = 0;
    m_headerSize = header.size();
    m_hasPagingBlock = source != nullptr;
    return S_OK;
}

HRESULT CMeasurementBlockWriter::BeginFromParameters(IMeasurement* source) {
    if (!source) return E_POINTER;
    ICollection* parameters = nullptr;
    if (FAILED(source->get_Parameters(&parameters)) || !parameters) return E_POINTER;
    std::string blockSize, frequency, xUnit, yUnit;
    HRESULT h = parameterText(parameters, u"Blocksize", blockSize);
    if (SUCCEEDED(h)) h = parameterText(parameters, u"SampleFrequency", frequency);
    if (SUCCEEDED(h)) h = parameterText(parameters, u"X-Unit", xUnit);
    if (SUCCEEDED(h)) h = parameterText(parameters, u"Y-Unit", yUnit);
    parameters->Release();
    if (FAILED(h)) return h;
    const long size = std::atol(blockSize.c_str());
    const double rate = std::atof(frequency.c_str());
    if (size < 1 || !(rate > 0.0)) return E_FAIL;
    Bstr x{std::string_view{xUnit}}, y{std::string_view{yUnit}}, none{std::string_view{}};
    return BeginTimeRecord(1, static_cast<LONG>(size), rate, 0.0f, x.get(), y.get(), none.get(), none.get(), 0.0, 0.0,
                           nullptr);
}

HRESULT CMeasurementBlockWriter::WriteBlock(const float* samples, LONG count, SHORT useCalibration) {
    if (!m_stream || m_blockSize <= 0) return E_FAIL;
    if (!samples) return E_POINTER;
    if (count < 1 || count > m_blockSize) return E_INVALIDARG;
    if (m_written + count > 0x7FFFFFFF) return E_FAIL;
    const std::size_t n = static_cast<std::size_t>(count);
    const float* out = samples;
    // Uncalibrated samples go out as they are, on a host that stores floats little-endian; otherwise
    // each becomes factor times sample plus offset, in double precision, in one pass the compiler
    // vectorises, through a scratch buffer that lives for this call only.
    std::vector<float> scratch;
    const bool calibrated = useCalibration == VARIANT_TRUE;
    if (calibrated || std::endian::native != std::endian::little) {
        scratch.resize(n);
        const double factor = calibrated ? m_calibrationFactor : 1.0, offset = calibrated ? m_offset : 0.0;
        for (std::size_t i = 0; i < n; ++i) scratch[i] = static_cast<float>(factor * samples[i] + offset);
        if constexpr (std::endian::native != std::endian::little)
            for (float& v : scratch) le::putF32(reinterpret_cast<std::uint8_t*>(&v), v);
        out = scratch.data();
    }
    if (FAILED(m_stream->Seek(0, STREAM_SEEK_END, nullptr))) return E_FAIL;
    ULONG written = 0;
    const ULONG bytes = static_cast<ULONG>(n * sizeof(float));
    if (FAILED(m_stream->Write(out, bytes, &written)) || written != bytes) return E_FAIL;
    m_written += count;
    return m_stream->Commit(STGC_DEFAULT);
}

HRESULT CMeasurementBlockWriter::Finish(ICollection* parameters) {
    if (!m_stream || m_blockSize <= 0) return E_FAIL;
    std::string text;
    LONG count = 0;
    if (parameters) {
        LONG items = 0;
        if (FAILED(parameters->get_Count(&items))) return E_FAIL;
        for (LONG i = 0; i < items; ++i) {
            IDispatch* item = nullptr;
            if (FAILED(parameters->Item(Variant::fromLong(i), &item)) || !item) return E_FAIL;
            IParameter* parameter = nullptr;
            HRESULT h = item->QueryInterface(IID_IParameter, reinterpret_cast<void**>(&parameter));
            item->Release();
            if (FAILED(h) || !parameter) return E_FAIL;
            Bstr name, value;
            h = parameter->get_Name(name.out());
            if (SUCCEEDED(h)) h = parameter->get_Value(value.out());
            parameter->Release();
            if (FAILED(h)) return E_FAIL;
            text += name.ansi();
            text += '\0';
            text += value.ansi();
            text += '\0';
            ++count;
        }
    }
    // The header tells the samples written, and the parameters that follow them.
    std::uint8_t field[4];
    le::put32(field, static_cast<std::uint32_t>(m_written));
    if (HRESULT h = writeAt(headerOffset(&MeasurementHeaderRecord::size), field, 4); FAILED(h)) return h;
    if (m_hasPagingBlock)
        if (HRESULT h = writeAt(kBlock1Size + pagingOffset(&MeasurementPagingRecord::fileSamples), field, 4); FAILED(h))
            return h;
    le::put32(field, static_cast<std::uint32_t>(text.size()));
    if (HRESULT h = writeAt(headerOffset(&MeasurementHeaderRecord::parameterTextLength), field, 4); FAILED(h)) return h;
    le::put32(field, static_cast<std::uint32_t>(count));
    if (HRESULT h = writeAt(headerOffset(&MeasurementHeaderRecord::parameterCount), field, 4); FAILED(h)) return h;
    const std::uint64_t end = m_headerSize + static_cast<std::uint64_t>(m_written) * 4;
    if (FAILED(m_stream->SetSize(end))) return E_FAIL;
    if (!text.empty())
        if (HRESULT h = writeAt(end, text.data(), text.size()); FAILED(h)) return h;
    return m_stream->Commit(STGC_DEFAULT);
}

HRESULT CMeasurementBlockWriter::Close() {
    releaseStream();
    m_scale = 1.0;
    m_offset = 0.0;
    m_calibrationFactor = 1.0;
    m_blockSize = 0;
    return E_FAIL;
}

HRESULT CMeasurementBlockWriter::writeAt(std::uint64_t position, const void* bytes, std::size_t size) {
    if (FAILED(m_stream->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, nullptr))) return E_FAIL;
    ULONG written = 0;
    if (FAILED(m_stream->Write(bytes, static_cast<ULONG>(size), &written)) || written != size) return E_FAIL;
    return S_OK;
}

void CMeasurementBlockWriter::releaseStream() {
    if (m_stream) m_stream->Release();
    m_stream = nullptr;
}

}  // namespace nvdl
