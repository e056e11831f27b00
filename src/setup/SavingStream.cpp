// The stream of the saving section, its layout fixed by the files in the field: a record of 12, 24
// or 284 bytes by the tag at offset 8, then the text of the MeasFunctions names and, in the newest
// generation, the text of the TimeHistoryFunctions names. The record gives each text's length in
// bytes (its zero included; 0 for an empty list, which writes no text) and the number of names.
#include <span>

#include "setup/SaveFunctionList.h"
#include "setup/Saving.h"
#include "setup/SectionRecord.h"

namespace nvdl {

namespace {

struct SavingRecord : SavingFields {
    std::int32_t measTextLength = 0;
    std::int32_t measCount = 0;
    std::int32_t historyTextLength = 0;
    std::int32_t historyCount = 0;
};

using R = SavingRecord;
using F = SavingFields;
using namespace record;
constexpr Field<R, 3> kSavingFields[] = {
    {i16<R>(&F::SaveToDisk), {0, 0, 0}},
    {i32(&R::measTextLength), {4, 4, 4}},
    {i32(&R::measCount), {-1, 12, 12}},
    {i16<R>(&F::EveryAverages), {-1, 16, 16}},
    {i32<R>(&F::DelayTime), {-1, 20, 20}},
    {i16<R>(&F::CreateTimeHistory), {-1, -1, 24}},
    {i32(&R::historyTextLength), {-1, -1, 28}},
    {i32(&R::historyCount), {-1, -1, 32}},
    {i16<R>(&F::SaveTimeHistoryToDisk), {-1, -1, 36}},
    {i16<R>(&F::SaveTimeHistoryToWorkspace), {-1, -1, 38}},
    {i16<R>(&F::SaveBlockDataToWorkspace), {-1, -1, 40}},
    {i16<R>(&F::SaveBlockDataToDisk), {-1, -1, 42}},
    {f32<R>(&F::Percentile), {-1, -1, 44}},
};
constexpr std::span<const Field<R, 3>> kTable(kSavingFields);
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Long, 8, {{{20030822, 12}, {20070219, 24}, {20080417, 284}}}, kTable};
static_assert(section::wellFormed(kLayout));

// Far more than any list of functions needs; a longer text is a damaged stream.
constexpr std::int32_t kMaxTextLength = 1 << 20;

// The names of a text of `length` bytes that must end with its zero.
HRESULT readNames(IStream* stream, std::int32_t length, std::vector<std::string>& names) {
    names.clear();
    if (length == 0) return S_OK;
    if (length < 0 || length > kMaxTextLength) return E_FAIL;
    std::vector<std::uint8_t> text(static_cast<std::size_t>(length));
    if (HRESULT h = section::readExactly(stream, text.data(), text.size()); FAILED(h)) return h;
    if (text.back() != 0) return E_FAIL;
    names = save_functions::namesOf(text);
    return S_OK;
}

struct ListTexts {
    std::vector<std::string> meas, history;
    std::string measText, historyText;
};

ListTexts textsOf(const CObjectCollection& meas, const CObjectCollection& history) {
    ListTexts t{save_functions::namesIn(meas), save_functions::namesIn(history), {}, {}};
    t.measText = save_functions::textOf(t.meas);
    t.historyText = save_functions::textOf(t.history);
    return t;
}

SavingRecord recordOf(const SavingFields& fields, const ListTexts& t) {
    SavingRecord stored;
    static_cast<SavingFields&>(stored) = fields;
    stored.measTextLength = static_cast<std::int32_t>(t.measText.size());
    stored.measCount = static_cast<std::int32_t>(t.meas.size());
    stored.historyTextLength = static_cast<std::int32_t>(t.historyText.size());
    stored.historyCount = static_cast<std::int32_t>(t.history.size());
    return stored;
}

}  // namespace

// Everything is read before anything changes: a damaged stream leaves the section as it was. The
// lists are filled through their Add, which marks the section modified as any Add does.
HRESULT CSavingPersistStream::Load(IStream* stream) {
    SavingRecord read;
    static_cast<SavingFields&>(read) = m_owner.m_fields;
    std::size_t generation = 0;
    if (HRESULT h = section::read(stream, kLayout, read, &generation); FAILED(h)) return h;
    std::vector<std::string> meas, history;
    if (HRESULT h = readNames(stream, read.measTextLength, meas); FAILED(h)) return h;
    const bool hasHistory = record::stores(kTable, generation, &R::historyTextLength);
    if (hasHistory) {
        if (HRESULT h = readNames(stream, read.historyTextLength, history); FAILED(h)) return h;
    }
    m_owner.m_fields = read;
    save_functions::refill(m_owner.m_measFunctions, meas);
    if (hasHistory) save_functions::refill(m_owner.m_timeHistoryFunctions, history);
    return S_OK;
}

// What a reader would refuse is not written.
HRESULT CSavingPersistStream::Save(IStream* stream, int clearDirty) {
    if (!stream) return E_POINTER;
    const ListTexts t = textsOf(m_owner.m_measFunctions, m_owner.m_timeHistoryFunctions);
    if (t.measText.size() > kMaxTextLength || t.historyText.size() > kMaxTextLength) return E_FAIL;
    const SavingRecord stored = recordOf(m_owner.m_fields, t);
    HRESULT h = section::write(stream, kLayout, stored);
    for (const std::string* text : {&t.measText, &t.historyText}) {
        if (SUCCEEDED(h) && !text->empty())
            h = section::writeAll(stream, reinterpret_cast<const std::uint8_t*>(text->data()), text->size());
    }
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

HRESULT CSavingPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    const ListTexts t = textsOf(m_owner.m_measFunctions, m_owner.m_timeHistoryFunctions);
    *size = kLayout.newest().size + t.measText.size() + t.historyText.size();
    return S_OK;
}

}  // namespace nvdl
