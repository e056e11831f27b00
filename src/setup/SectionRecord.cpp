#include "setup/SectionRecord.h"

#include <cstdlib>
#include <string>

#include "platform/LittleEndian.h"

namespace nvdl::section {

HRESULT readExactly(IStream* stream, std::uint8_t* bytes, std::size_t size) {
    if (size == 0) return S_OK;
    ULONG read = 0;
    HRESULT h = stream->Read(bytes, static_cast<ULONG>(size), &read);
    if (FAILED(h)) return h;
    return read == size ? S_OK : STG_E_READFAULT;
}

HRESULT writeAll(IStream* stream, const std::uint8_t* bytes, std::size_t size) {
    ULONG written = 0;
    HRESULT h = stream->Write(bytes, static_cast<ULONG>(size), &written);
    if (FAILED(h)) return h;
    return written == size ? S_OK : STG_E_MEDIUMFULL;
}

std::int32_t tagOf(TagForm form, std::uint32_t tagOffset, const std::uint8_t* bytes) {
    switch (form) {
        case TagForm::None: return 0;
        case TagForm::Long: return le::i32(bytes + tagOffset);
        case TagForm::Text: {
            const std::string text = le::text(bytes, kTextTagSize - 1);
            char* end = nullptr;
            const long tag = std::strtol(text.c_str(), &end, 10);
            return (end == text.c_str() || tag < 0 || tag > INT32_MAX) ? 0 : static_cast<std::int32_t>(tag);
        }
    }
    return 0;
}

void putTag(TagForm form, std::uint32_t tagOffset, std::int32_t tag, std::uint8_t* bytes) {
    if (form == TagForm::Long) le::put32(bytes + tagOffset, static_cast<std::uint32_t>(tag));
    if (form == TagForm::Text) le::putText(bytes, kTextTagSize, std::to_string(tag));
}

std::optional<std::size_t> generationOfTag(std::span<const Generation> generations, std::int32_t tag, bool exact) {
    for (std::size_t g = generations.size(); g-- > 0;) {
        if (exact ? tag == generations[g].tag : tag >= generations[g].tag) return g;
    }
    return std::nullopt;
}

}  // namespace nvdl::section
