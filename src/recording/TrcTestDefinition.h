// The test definition of a recording: one file, written by the caller's application, embedded whole.
// At its section offset stand a table of two entries (header, data), the 2156-byte header block
// with the file's name and size, the header's own table (always empty), then the file's bytes.
// Opening reads the table and the header; the embedded bytes are read and written by position.
#pragma once

#include <cstdint>
#include <string>

#include "recording/TrcBaseSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;

class CTrcTestDefSectionHeader final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = 20060713;
    static constexpr std::int64_t kBlockSize = 2156;
    static constexpr std::size_t kFilenameSize = 100;

    CTrcTestDefSectionHeader() { Init(); }
    int Init();

    // The name and extension of the embedded file, without its folder; at most 99 characters.
    void SetFilename(const char* name);
    const char* GetFilename() const { return m_block.filename.c_str(); }
    int GetFilename(char* target, unsigned long length) const;  // at most length - 1 characters
    void SetDataSize(std::uint32_t size) { m_block.dataSize = static_cast<std::int32_t>(size); }
    std::uint32_t GetDataSize() const { return static_cast<std::uint32_t>(m_block.dataSize); }

    std::int64_t GetSectionSize() override { return kBlockSize + tocSize(0); }
    CTrcTableManagment* GetToc() override { return &m_toc; }
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int Update();  // writes again with the owner and file of the last Read or Write

    struct Block {
        std::int32_t version = kVersion;
        std::string filename;
        std::int32_t dataSize = 0;  // unsigned on disk
    };

private:
    Block m_block;
    CTrcTableManagment m_toc;
    CTrcBaseSection* m_lastOwner = nullptr;
    CTrcFile* m_lastFile = nullptr;
};

class CTrcTestDefSection;

class CTrcTestDefSectionData final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = 20060713;

    explicit CTrcTestDefSectionData(CTrcTestDefSection& owner) : m_owner(owner) { Init(); }
    int Init();

    std::int64_t GetSectionSize() override;  // the header's DataSize
    // Bytes of the embedded file at `position`; the span must lie inside the section.
    int Write(std::int64_t position, const unsigned char* buffer, std::int64_t size);
    int Read(std::int64_t position, unsigned char* buffer, std::int64_t size);

private:
    bool spanInside(std::int64_t position, std::int64_t size);
    CTrcTestDefSection& m_owner;
};

class CTrcTestDefSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = 20050713;

    CTrcTestDefSection() : m_data(*this) { Init(nullptr, nullptr); }
    int Init(CTrcFile* file, CTrcBaseSection* root);

    CTrcTestDefSectionHeader& GetHeader() { return m_header; }
    CTrcTestDefSectionData& GetData() { return m_data; }
    CTrcFile* GetFile() const { return m_file; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    int UpdateTocSections();
    int Write();  // the table and the header; the data are written through GetData()
    int Read();   // the table and the header, once
    int IsRead() const { return m_read; }

private:
    CTrcFile* m_file = nullptr;
    CTrcBaseSection* m_root = nullptr;
    CTrcTableManagment m_toc;
    CTrcTestDefSectionHeader m_header;
    CTrcTestDefSectionData m_data;
    int m_read = 0;
};

}  // namespace nvdl::trc
