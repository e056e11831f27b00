#include "project/SmallStreams.h"

#include "platform/ComPtr.h"
#include "setup/SectionRecord.h"

namespace nvdl {

HRESULT readSmallStream(IStorage* storage, const std::u16string& name, std::size_t limit, std::string& text) {
    ComPtr<IStream> stream;
    HRESULT h = storage->OpenStream(name.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.out());
    if (FAILED(h)) return h;
    text.assign(limit, '\0');
    ULONG read = 0;
    h = stream->Read(text.data(), static_cast<ULONG>(limit), &read);
    if (FAILED(h)) return h;
    text.resize(read);
    return S_OK;
}

HRESULT writeSmallStream(IStorage* storage, const std::u16string& name, const void* bytes, std::size_t size) {
    ComPtr<IStream> stream;
    HRESULT h = storage->CreateStream(name.c_str(), STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, 0, 0, stream.out());
    return FAILED(h) ? h : section::writeAll(stream.get(), static_cast<const std::uint8_t*>(bytes), size);
}

HRESULT writeTextStream(IStorage* storage, const std::u16string& name, const std::string& text) {
    return writeSmallStream(storage, name, text.c_str(), text.size() + 1);
}

HRESULT readTextStream(IStorage* storage, const std::u16string& name, std::size_t limit, std::string& text) {
    HRESULT h = readSmallStream(storage, name, limit, text);
    if (SUCCEEDED(h)) text = text.c_str();
    return h;
}

}  // namespace nvdl
