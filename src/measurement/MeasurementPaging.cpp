// CMeasurement: paging a long record through its backing stream. At most one block of samples is held
// in memory: either a run of samples taken straight, or, for a span longer than a block, a min/max
// envelope of the span in the block's length.
#include <algorithm>
#include <bit>

#include "measurement/FloatExtremes.h"
#include "measurement/Measurement.h"
#include "nvdl/SafeArray.h"

namespace nvdl {

namespace {

// Samples per stream read: bounds the scratch memory of a read whatever the span's length, and keeps
// the piece (512 KiB) in the processor's second-level cache while it is reduced.
constexpr std::size_t kReadRunSamples = std::size_t{1} << 17;
// Valid block data ends this far into a block's last part, so that a forward reader keeps a margin.
constexpr double kBlockMarginPercent = 110.0;

// Reads `count` little-endian floats from the stream's position. False on a failed or short read.
bool readFloats(IStream* stream, float* out, std::size_t count) {
    while (count > 0) {
        std::size_t piece = std::min(count, kReadRunSamples);
        ULONG wanted = static_cast<ULONG>(piece * sizeof(float));
        ULONG got = 0;
        if (FAILED(stream->Read(out, wanted, &got)) || got != wanted) return false;
        if constexpr (std::endian::native == std::endian::big) {
            for (std::size_t i = 0; i < piece; ++i) {
                std::uint32_t v = std::bit_cast<std::uint32_t>(out[i]);
                v = (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
                out[i] = std::bit_cast<float>(v);
            }
        }
        out += piece;
        count -= piece;
    }
    return true;
}

bool seekTo(IStream* stream, long long position) {
    return position >= 0 && SUCCEEDED(stream->Seek(position, STREAM_SEEK_SET, nullptr));
}

// The min/max envelope of `chunks` consecutive chunks of `chunkSize` samples from the stream's position,
// appended to `out` from `position` on: each chunk gives its minimum, then its maximum. The stream is
// read in order with one scratch buffer of bounded size.
bool readEnvelope(IStream* stream, std::size_t chunks, std::size_t chunkSize, std::vector<float>& out, LONG& position) {
    const LONG outSize = static_cast<LONG>(out.size());
    if (chunkSize <= kReadRunSamples) {
        const std::size_t perRead = std::min(chunks, kReadRunSamples / chunkSize);
        std::vector<float> run(perRead * chunkSize);
        for (std::size_t done = 0; done < chunks;) {
            const std::size_t now = std::min(perRead, chunks - done);
            if (!readFloats(stream, run.data(), now * chunkSize)) return false;
            for (std::size_t i = 0; i < now; ++i)
                if (FAILED(CMeasurement::ComputeMinMax(run.data() + i * chunkSize, static_cast<LONG>(chunkSize), out.data(),
                                                       outSize, position)))
                    return false;
            done += now;
        }
        return true;
    }
    // A chunk longer than the scratch buffer: its extremes are gathered piece by piece, from the
    // same start values as a chunk taken whole.
    std::vector<float> run(kReadRunSamples);
    for (std::size_t chunk = 0; chunk < chunks; ++chunk) {
        float lowest = 2147483648.0f, highest = -2147483648.0f;
        for (std::size_t done = 0; done < chunkSize;) {
            const std::size_t now = std::min(kReadRunSamples, chunkSize - done);
            if (!readFloats(stream, run.data(), now)) return false;
            floatExtremes(run.data(), now, lowest, highest);
            done += now;
        }
        if (position < 0 || position + 2 > outSize) return false;
        out[static_cast<std::size_t>(position)] = lowest;
        out[static_cast<std::size_t>(position) + 1] = highest;
        position += 2;
    }
    return true;
}

// A float array in a variant, for YArray and put_XArray.
bool toArray(const std::vector<float>& values, Variant& v) {
    v.vt = VT_ARRAY | VT_R4;
    v.parray = makeFloatArray(values);
    if (v.parray) return true;
    v.vt = VT_EMPTY;
    return false;
}

}  // namespace

HRESULT CMeasurement::ComputeMinMax(const float* in, LONG n, float* out, LONG outSize, LONG& position) {
    if (!in || !out || n <= 0 || outSize <= 0) return E_INVALIDARG;
    if (position < 0 || position > outSize - 2) return E_INVALIDARG;
    float highest = -2147483648.0f;
    float lowest = 2147483648.0f;
    floatExtremes(in, static_cast<std::size_t>(n), lowest, highest);
    out[position] = lowest;
    out[position + 1] = highest;
    position += 2;
    return S_OK;
}

HRESULT CMeasurement::ReadData(LONG start, LONG count) {
    if (HRESULT h = LoadFromDisk(); FAILED(h)) return h;
    return InternalReadData(start, count, nullptr);
}

HRESULT CMeasurement::InternalReadData(LONG start, LONG count, IStream* stream) {
    if (m_longFileFeature && m_clsidLoader != GUID_NULL) return ExternalReadFormat(start, count);
    return InternalReadFormat(start, count, stream);
}

IStream* CMeasurement::GetDataStream() {
    return m_dataStream.open({m_locationFile, m_locationInDataStorage, m_locationSubStorage, m_locationStream});
}

void CMeasurement::CloseDataStream() { m_dataStream.close(); }

HRESULT CMeasurement::takeBlock(LONG block, std::vector<float>& re, std::vector<float>& im, std::vector<float>& x,
                                bool hasX) {
    if (hasX) {
        Variant xArray;
        if (!toArray(x, xArray)) return E_OUTOFMEMORY;
        x = {};
        const LONG uncompleted = m_isUncompleted;
        m_isUncompleted = 0;
        HRESULT h = put_XArray(xArray);
        m_isUncompleted = uncompleted;
        if (FAILED(h)) return h;
    }
    Variant reArray, imArray;
    if (!toArray(re, reArray) || (m_complex && !toArray(im, imArray))) return E_OUTOFMEMORY;
    re = {};
    im = {};
    Bstr dimension{std::string_view{m_yDimensionText}};
    if (!dimension.get()) dimension = Bstr(std::string_view("1"));
    return YArray(&reArray, block, m_complex ? &imArray : nullptr, dimension.get());
}

HRESULT CMeasurement::InternalReadFormat(LONG start, LONG count, IStream* stream) {
    // Records older than paged reading keep everything in memory.
    if (m_formatVersion < 19991006) return S_OK;
    if (start < 0 || start >= m_fileSamples || count <= 0) return E_FAIL;
    // A span running past the end is shortened by its start, not to the true remainder: callers
    // have always been given this length.
    LONG n = static_cast<long long>(start) + count > m_fileSamples ? count - start : count;
    LONG block = m_maxBlockSize;
    if (n <= 0 || block <= 0) return E_FAIL;

    if (m_dataLoaded && m_fileSamples <= block) return S_OK;
    if (m_dataLoaded && m_currentBlock != -1 && m_isUsefullData && GetBlockNumber(start) == m_currentBlock) {
        const double b = block;
        const long long validEnd = static_cast<long long>(m_currentBlock * b - (b * kBlockMarginPercent * 0.01 - b));
        if (validEnd > 0 && static_cast<long long>(start) + n <= validEnd) return S_OK;
    }

    if (m_fileSamples < block) block = m_maxBlockSize = m_fileSamples;
    m_dataLoaded = 0;
    // The vectors take the block's length; the record's length and Modified stay as they are.
    if (block != m_size)
        if (HRESULT h = resizeBlock(block); FAILED(h)) return h;
    m_isUncompleted = block < m_fileSamples ? 1 : 0;
    m_isUsefullData = block < n ? 0 : 1;

    // The stream being read holds the same bytes as the backing stream and is open already: a
    // workspace of many long records then opens its file once, not once per record.
    IStream* source = stream;
    if (source) source->AddRef();
    else if (m_isUncompleted) source = GetDataStream();
    struct Leave {
        CMeasurement& self;
        IStream*& source;
        ~Leave() {
            if (source) source->Release();
            self.CloseDataStream();
        }
    } leave{*this, source};
    // Without a stream only a record held whole in memory is complete; a paged record whose file
    // cannot be opened has nothing valid in memory, and saying so beats handing out old samples.
    if (!source) return m_isUncompleted ? E_FAIL : S_OK;

    STATSTG stat;
    if (FAILED(source->Stat(&stat, STATFLAG_NONAME))) return E_FAIL;
    if (m_dataOffset <= 0 || static_cast<std::uint64_t>(m_dataOffset) >= stat.cbSize) return E_FAIL;
    long long first = start;
    if (static_cast<long long>(m_fileSamples) - start < block) first = static_cast<long long>(m_fileSamples) - block;
    first = std::max(first, 0LL);

    const bool straight = !m_isUncompleted || m_isUsefullData;
    const std::size_t chunks = static_cast<std::size_t>(block / 2);
    if (!straight && chunks == 0) return E_FAIL;
    const std::size_t chunkSize = straight ? 0 : static_cast<std::size_t>(n) / chunks;
    m_compressionFactor = 1.0f;
    if (!straight) m_compressionFactor = static_cast<float>(static_cast<double>(n) / block);

    const long long samples = m_fileSamples;
    auto readRun = [&](long long offset, std::vector<float>& into) {
        if (!seekTo(source, m_dataOffset + offset * 4)) return false;
        into.assign(static_cast<std::size_t>(block), 0.0f);
        if (straight) return readFloats(source, into.data(), into.size());
        LONG position = 0;
        return readEnvelope(source, chunks, chunkSize, into, position);
    };
    std::vector<float> re, im, x;
    if (!readRun(first, re)) return E_FAIL;
    if (m_complex && !readRun(samples + first, im)) return E_FAIL;
    const bool hasX = axisHasXVector(m_xAxisType);
    if (hasX && !readRun(first + samples * (m_complex ? 2 : 1), x)) return E_FAIL;

    if (HRESULT h = takeBlock(block, re, im, x, hasX); FAILED(h)) return h;

    m_currentBlock = -1;
    if (!m_isUncompleted && n <= block) m_firstBlockRead = 0;
    if (!m_firstBlockRead) m_currentBlock = GetBlockNumber(start);
    m_dataLoaded = 1;
    // The block in memory begins at the sample read first, which near the end of the record lies
    // before `start`: measuring the offset from there maps every index of the block to its own sample.
    m_blockStartOffset = static_cast<LONG>(first - static_cast<long long>(m_currentBlock - 1) * block);
    m_firstBlockRead = 0;
    return S_OK;
}

}  // namespace nvdl
