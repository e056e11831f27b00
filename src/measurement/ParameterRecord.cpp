#include "measurement/ParameterRecord.h"

#include <span>

#include "platform/RecordLayout.h"

namespace nvdl::parameter_record {

namespace {

using record::text;
using ParameterField = record::Field<ParameterRecord, 1>;
constexpr ParameterField kFields[] = {
    {text(&ParameterRecord::name, 100), {0}},
    {text(&ParameterRecord::value, 100), {100}},
};
constexpr std::span<const ParameterField> kTable(kFields);
static_assert(record::fitsAndDisjoint(kTable, 0, kSize));

}  // namespace

HRESULT read(IStream* stream, ParameterRecord& into) {
    if (!stream) return E_POINTER;
    std::uint8_t bytes[kSize];
    ULONG got = 0;
    if (FAILED(stream->Read(bytes, kSize, &got)) || got != kSize) return E_FAIL;
    record::decode(kTable, 0, bytes, into);
    return S_OK;
}

HRESULT write(IStream* stream, const ParameterRecord& from) {
    if (!stream) return E_POINTER;
    std::uint8_t bytes[kSize] = {};
    record::encode(kTable, 0, from, bytes);
    ULONG written = 0;
    HRESULT h = stream->Write(bytes, kSize, &written);
    if (FAILED(h)) return h;
    return written == kSize ? S_OK : STG_E_MEDIUMFULL;
}

}  // namespace nvdl::parameter_record
