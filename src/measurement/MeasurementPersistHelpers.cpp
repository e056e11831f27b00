// The measurement's persistence helpers: the choice of a reader by tag, and the storage helper
// around the stream "Measurement".
#include "measurement/MeasurementPersistHelpers.h"

#include <cstdlib>

#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "nvdl/Storage.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

const IID* const kGenerationIids[8] = {
    &IID_IMeasurementPersistGeneration1, &IID_IMeasurementPersistGeneration2, &IID_IMeasurementPersistGeneration3,
    &IID_IMeasurementPersistGeneration4, &IID_IMeasurementPersistGeneration5, &IID_IMeasurementPersistGeneration6,
    &IID_IMeasurementPersistGeneration7, &IID_IMeasurementPersistGeneration8,
};

}  // namespace

int measurementGenerationOfTag(LONG t) {
    if (t <= k19951205) return 1;
    if (t <= k19960905) return 2;
    if (t <= k19970312) return 3;
    if (t <= k19970805) return 4;
    if (t < k19990222) return 5;
    if (t < k19991006) return 6;
    if (t < k20021112) return 7;
    return 8;
}

const IID& measurementPersistIidOfTag(LONG tag) { return *kGenerationIids[measurementGenerationOfTag(tag) - 1]; }

// Stream helper.

HRESULT CMeasurementPersistStream::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    const LONG tag = std::atol(m_tag.c_str());
    try {
        switch (int generation = measurementGenerationOfTag(tag)) {
            case 1: return MeasurementStreamFormat::readGeneration1(m_owner, stream, tag);
            case 2:
            case 3:
            case 4:
            case 5: return MeasurementStreamFormat::readGenerations2To5(m_owner, stream, generation, tag);
            case 6:
            case 7: return MeasurementStreamFormat::readGenerations6And7(m_owner, stream, generation, tag);
            default: return MeasurementStreamFormat::readGeneration8(m_owner, stream, tag);
        }
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CMeasurementPersistStream::Save(IStream* stream, int) {
    if (!stream) return E_POINTER;
    try {
        return MeasurementStreamFormat::write(m_owner, stream);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT CMeasurementPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = 0;
    return S_OK;
}

// Storage helper.

HRESULT CMeasurementPersistStorage::InitNew(IStorage*) { return STG_E_UNIMPLEMENTEDFUNCTION; }
HRESULT CMeasurementPersistStorage::HandsOffStorage() { return STG_E_UNIMPLEMENTEDFUNCTION; }
HRESULT CMeasurementPersistStorage::SaveCompleted(IStorage*) { return S_OK; }

HRESULT CMeasurementPersistStorage::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    IStream* stream = nullptr;
    HRESULT h = storage->OpenStream(kStreamName, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream);
    if (FAILED(h)) return h;
    h = m_standard.Load(stream);
    stream->Release();
    return h;
}

HRESULT CMeasurementPersistStorage::Save(IStorage* storage, int) {
    if (!storage) return E_POINTER;
    IStream* stream = nullptr;
    HRESULT h = storage->CreateStream(kStreamName, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream);
    if (FAILED(h)) return h;
    h = m_standard.Save(stream, 0);
    stream->Release();
    return h;
}

// All helpers.

MeasurementPersistHelpers::MeasurementPersistHelpers(CMeasurement& owner)
    : m_generations{{{owner, "19951205"},
                     {owner, "19960905"},
                     {owner, "19970312"},
                     {owner, "19970805"},
                     {owner, "19970819"},
                     {owner, "19990222"},
                     {owner, "19991006"},
                     {owner, "20021112"}}},
      m_storage(owner, m_generations[7]) {}

HRESULT MeasurementPersistHelpers::query(REFIID riid, void** ppv) {
    IUnknown* found = nullptr;
    if (riid == IID_IPersistStream || riid == IID_IPersist) found = static_cast<IPersistStream*>(&m_generations[7]);
    else if (riid == IID_IPersistStorage) found = static_cast<IPersistStorage*>(&m_storage);
    for (std::size_t i = 0; !found && i < m_generations.size(); ++i)
        if (riid == *kGenerationIids[i]) found = static_cast<IPersistStream*>(&m_generations[i]);
    if (!found) return E_NOINTERFACE;
    found->AddRef();
    *ppv = found;
    return S_OK;
}

}  // namespace nvdl
