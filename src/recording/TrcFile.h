// CTrcFile: the one door of a recording (.trc) file to the disk. It holds one file descriptor
// behind 64-bit positions (recordings above 4 GiB are the normal case) and three facts about the
// open file: its name, the descriptor and whether it was opened read only. Every read and write
// moves exactly the block the caller asks for at the current position, with pread/pwrite; the
// position is kept here, so a seek costs no system call. Operations answer 0 on failure and
// non-zero on success; only Write and SetFileSize speak to the user, through the host's message box.
// One thread uses an object at a time, except for ReadAt, which several threads may call at once;
// the file may be read by other objects while it is written.
#pragma once

#include <cstdint>

namespace nvdl::trc {

class CTrcFile {
public:
    static constexpr int kNameSize = 600;

    CTrcFile() { Init(); }
    ~CTrcFile() { Close(); }
    CTrcFile(const CTrcFile&) = delete;
    CTrcFile& operator=(const CTrcFile&) = delete;

    int Init();

    // Creates or truncates (read and write); `version` is accepted and not used: the file stays
    // empty until the table of sections is written.
    int Create(const char* name, long version);
    int Open(const char* name);    // read only; the file must exist
    int ReOpen(const char* name);  // read and write; the file must exist and keeps its contents
    int Close();                   // always 1

    int IsOpened() const { return m_fd >= 0; }
    int IsReadOnly() const { return m_readOnly; }
    char* GetFilename() { return m_name; }
    int GetHandle() const { return m_fd; }

    // method 0 from the beginning, 1 from the current position, 2 from the end.
    int Seek(std::int64_t distance, int method);
    std::int64_t GetPosition() const { return IsOpened() ? m_position : 0; }
    int MoveTo(std::int64_t position);

    // Both move `size` bytes at the current position and advance it; 1 only when all of them moved.
    int Write(const unsigned char* buffer, std::int64_t size);
    int Read(unsigned char* buffer, std::int64_t size);
    // `size` bytes from `offset`, leaving the position alone; 1 only when all of them came.
    int ReadAt(std::int64_t offset, unsigned char* buffer, std::int64_t size) const;

    long GetFileVersion();  // the first four bytes, -1 when they cannot be read; leaves the position at 0
    std::int64_t GetFileSize() const;  // -1 when closed
    int SetFileSize(std::int64_t size);  // only ever lengthens
    int WriteDummyData(std::int64_t size);

protected:
    static int ConvertLongFilenameToShortFilename(const char* source, char* target, unsigned long targetLength);

private:
    enum class Access { Create, ReadWrite, ReadOnly };
    int openAs(const char* name, Access access);

    char m_name[kNameSize];
    int m_fd;
    int m_readOnly;
    std::int64_t m_position;
};

}  // namespace nvdl::trc
