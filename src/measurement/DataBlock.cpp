#include "measurement/DataBlock.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "frame/ClassTable.h"
#include "frame/TextChecks.h"
#include "measurement/FlatRecord.h"
#include "measurement/Measurement.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.datablock", CLSID_CDataBlock, "Sonvara DataBlock", &CDataBlock::create}};

constexpr std::size_t kUnbounded = std::numeric_limits<std::size_t>::max();

}  // namespace

// The X vector is counted where a record stores one, on axes of arbitrary values and octaves: a
// record of categories carries none, and counting one would reach into the next record.
std::uint64_t packedRecordLength(const std::uint8_t* record, std::size_t available) {
    flat::Head head;
    if (!flat::decodeHead(record, available, head) || head.size < 0 || head.parameterBytes < 0) return 0;
    const std::uint64_t vectors = 1 + (flat::storesX(head) ? 1 : 0) + (head.complex != 0 ? 1 : 0);
    return flat::kHeadSize + static_cast<std::uint64_t>(head.parameterBytes) +
           static_cast<std::uint64_t>(head.size) * sizeof(float) * vectors;
}

void CDataBlock::clear() {
    m_image.reset();
    m_count = 0;
    m_imageSize = 0;
    m_stride = 0;
}

HRESULT CDataBlock::pack(LONG count, const std::uint8_t* records, const std::vector<std::size_t>& lengths) {
    const std::size_t stride = *std::max_element(lengths.begin(), lengths.end());
    if (stride > kUnbounded / static_cast<std::size_t>(count)) return E_FAIL;
    std::unique_ptr<std::uint8_t[]> image(new (std::nothrow) std::uint8_t[stride * static_cast<std::size_t>(count)]());
    if (!image) return E_FAIL;
    std::uint64_t total = 0;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        std::memcpy(image.get() + i * stride, records, lengths[i]);
        records += lengths[i];
        total += lengths[i];
    }
    m_image = std::move(image);
    m_count = count;
    m_imageSize = total;
    m_stride = stride;
    m_modified = -1;
    return S_OK;
}

// The records of the producer are trusted to be whole: their lengths come from their heads.
HRESULT CDataBlock::Initialize(LONG count, const std::uint8_t* records) {
    clear();
    if (count <= 0 || !records) return S_OK;
    std::vector<std::size_t> lengths;
    const std::uint8_t* at = records;
    for (LONG i = 0; i < count; ++i) {
        const std::uint64_t length = packedRecordLength(at, kUnbounded);
        if (length == 0 || length > kUnbounded) return E_FAIL;
        lengths.push_back(static_cast<std::size_t>(length));
        at += length;
    }
    return pack(count, records, lengths);
}

HRESULT CDataBlock::InitializeChecked(LONG count, std::span<const std::uint8_t> records) {
    clear();
    if (count <= 0 || records.empty()) return E_FAIL;
    std::vector<std::size_t> lengths;
    std::size_t at = 0;
    for (LONG i = 0; i < count; ++i) {
        const std::uint64_t length = packedRecordLength(records.data() + at, records.size() - at);
        if (length == 0 || length > records.size() - at) return E_FAIL;
        lengths.push_back(static_cast<std::size_t>(length));
        at += static_cast<std::size_t>(length);
    }
    return pack(count, records.data(), lengths);
}

HRESULT CDataBlock::Init_Create(LONG count) {
    if (count <= 0) return E_FAIL;
    ComPtr<CMeasurement> empty(CMeasurement::createMeasurement());
    const std::vector<std::uint8_t> record = flat::writeRecord(flat::recordOf(*empty));
    std::vector<std::uint8_t> records;
    records.reserve(record.size() * static_cast<std::size_t>(count));
    for (LONG i = 0; i < count; ++i) records.insert(records.end(), record.begin(), record.end());
    return InitializeChecked(count, records);
}

HRESULT CDataBlock::get_MeasurementsCount(LONG* count) {
    if (!count) return E_POINTER;
    *count = m_count;
    return S_OK;
}

HRESULT CDataBlock::get_Measurement(LONG index, IMeasurement** measurement) {
    if (!measurement) return E_POINTER;
    *measurement = nullptr;
    if (!m_image || m_stride == 0 || index < 0 || index >= m_count) return E_FAIL;
    CMeasurement* m = CMeasurement::createMeasurement();
    m->Initialize(m_image.get() + static_cast<std::size_t>(index) * m_stride, static_cast<std::size_t>(m_stride));
    *measurement = m;
    return S_OK;
}

// The name of a filled block is the kind of its first record: its name up to the first "(".
HRESULT CDataBlock::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    flat::Head head;
    std::string text = m_name;
    if (m_count > 0 && flat::decodeHead(m_image.get(), static_cast<std::size_t>(m_stride), head))
        text = head.name.substr(0, head.name.find('('));
    *name = allocBstrFromAnsi(text);
    return S_OK;
}

HRESULT CDataBlock::put_Name(BSTR name) {
    m_name = bstrToAnsi(name);
    static_cast<IDataBlock*>(this)->put_Modified(1);
    return S_OK;
}

HRESULT CDataBlock::get_Id(BSTR* id) {
    if (!id) return E_POINTER;
    if (m_id.empty()) CMeasurement::GenerateStaticUnicId(m_id);
    *id = allocBstrFromAnsi(m_id);
    return S_OK;
}

// Clone copies into a new, empty block: the target needs no image of its own.
HRESULT CDataBlock::Copy(IDataBlock* source, IDataBlock* target) {
    auto* from = dynamic_cast<CDataBlock*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CDataBlock*>(CFrameBase::of(target));
    if (!from || !to || !from->m_image || from->m_stride == 0) return E_FAIL;
    const std::size_t bytes = static_cast<std::size_t>(from->m_stride) * static_cast<std::size_t>(from->m_count);
    std::unique_ptr<std::uint8_t[]> image(new (std::nothrow) std::uint8_t[bytes]);
    if (!image) return E_FAIL;
    std::memcpy(image.get(), from->m_image.get(), bytes);
    ComPtr<IDispatch> parent;
    if (SUCCEEDED(source->get_Parent(parent.out()))) target->put_Parent(parent.get());
    to->m_name = from->m_name;
    to->m_image = std::move(image);
    to->m_count = from->m_count;
    to->m_imageSize = from->m_imageSize;
    to->m_stride = from->m_stride;
    to->m_modified = from->m_modified;
    return S_OK;
}

}  // namespace nvdl
