// Helpers of the stored-setup tests: a stand-in owner, a setup written alone into a file behind its
// owner's table of one entry, raw access to the file's bytes, and blocks filled with a distinct
// value in every field.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcSetupSection.h"

namespace nvdl::trc::test {

namespace le = nvdl::le;

// Owns a table, as the setups section or the recorder header would.
class Owner final : public CTrcBaseSection {
public:
    explicit Owner(std::int64_t size = 0) : m_size(size) {}
    std::int64_t GetSectionSize() override { return m_size; }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;

private:
    std::int64_t m_size;
};

// Where a setup written by writeSetup starts: behind its owner's table of one entry.
inline constexpr std::int64_t kSetupAt = 96 + 168;

inline bool writeSetup(const std::string& name, CTrcSetupSection& setup) {
    CTrcFile file;
    if (!file.Create(name.c_str(), 0)) return false;
    setup.SetSectionOffset(kSetupAt);
    setup.UpdateTocSections();
    Owner owner(kSetupAt + setup.GetSectionSize());
    owner.toc.Add(setup);
    return file.Seek(0, 0) && owner.toc.Write(&file, &owner) && setup.Write(&owner, &file);
}

inline int readSetup(const std::string& name, CTrcSetupSection& setup) {
    CTrcFile file;
    Owner owner;
    if (!file.Open(name.c_str()) || !owner.toc.Read(&file)) return 0;
    setup.SetSectionIndex(0);
    return setup.Read(&owner, &file);
}

inline std::vector<unsigned char> bytesOf(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void putBytes(const std::string& name, const std::vector<unsigned char>& bytes) {
    std::ofstream(name, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

inline std::string textAt(const std::vector<unsigned char>& b, std::int64_t at) {
    return reinterpret_cast<const char*>(&b[static_cast<std::size_t>(at)]);
}

// Gives every field of a block but its version a value no other field has (seed upwards).
template <class R>
void fillDistinct(TrcFixedSection<R>& section, int& seed) {
    R block = section.GetBlock();
    for (const auto& field : section.GetFields().subspan(1)) {
        std::visit(
            [&](auto member) {
                auto& value = block.*member;
                using T = std::remove_cvref_t<decltype(value)>;
                ++seed;
                if constexpr (sizeof(T) > sizeof(R)) return;  // no such member; keeps -Warray-bounds quiet
                else if constexpr (std::is_same_v<T, std::string>) value = "t" + std::to_string(seed);
                else if constexpr (std::is_same_v<T, std::vector<float>>)
                    for (std::size_t i = 0; i < value.size(); ++i) value[i] = static_cast<float>(seed) + 0.25f * i;
                else value = static_cast<T>(seed) + static_cast<T>(std::is_floating_point_v<T> ? 0.5 : 0);
            },
            field.value.member);
    }
    section.SetBlock(block);
}

template <class R>
void expectSameFields(const TrcFixedSection<R>& read, const TrcFixedSection<R>& written) {
    for (const auto& field : written.GetFields()) {
        std::visit(
            [&](auto member) { EXPECT_EQ(read.GetBlock().*member, written.GetBlock().*member) << field.offset[0]; },
            field.value.member);
    }
}

}  // namespace nvdl::trc::test
