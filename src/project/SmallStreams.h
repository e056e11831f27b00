// The short streams of workspace and project files - tags, names, origins - read and written whole.
#pragma once

#include <string>

#include "nvdl/Storage.h"

namespace nvdl {

// The whole of a small stream, at most `limit` bytes of it.
HRESULT readSmallStream(IStorage* storage, const std::u16string& name, std::size_t limit, std::string& text);

// A new stream of `size` bytes, replacing an element of that name.
HRESULT writeSmallStream(IStorage* storage, const std::u16string& name, const void* bytes, std::size_t size);

// A text with its zero, and back: the text up to the first zero of at most `limit` bytes.
HRESULT writeTextStream(IStorage* storage, const std::u16string& name, const std::string& text);
HRESULT readTextStream(IStorage* storage, const std::u16string& name, std::size_t limit, std::string& text);

}  // namespace nvdl
