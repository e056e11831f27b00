#include "Common/Source/Mimo.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <new>

#include "analysis/LapackRoutines.h"
#include "platform/Host.h"

namespace nvdl {

using mimo::RecordBytes;
using mimo::RecordLayout;
using mimo::RecordView;

namespace {

constexpr const char* kUnit = "Mimo";

// The largest allocation asked for: beyond it a request is refused before it is made.
constexpr double kMaxAllocation = 1ULL << 46;

d_complex toWork(std::complex<double> z) { return {z.real(), z.imag()}; }
std::complex<double> fromWork(d_complex z) { return {z.re, z.im}; }

// A coherence limited to 0..1 (a value that is not a number counts as 0).
double limitedCoherence(double c) { return c > 1.0 ? 1.0 : c > 0.0 ? c : 0.0; }

}  // namespace

void CMimo::show(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    m_lastMessage = text;
    host::messageBox(m_lastMessage, "Sonvara", host::MB_OK);
}

template <class T>
bool CMimo::allocate(std::vector<T>& into, std::initializer_list<long> factors, int line) {
    double bytes = sizeof(T);
    for (long f : factors) bytes *= static_cast<double>(f);
    if (bytes <= kMaxAllocation) {
        try {
            std::size_t count = 1;
            for (long f : factors) count *= static_cast<std::size_t>(f);
            into.assign(count, T{});
            return true;
        } catch (const std::bad_alloc&) {
        }
    }
    show("Allocation of %.0f bytes failed {%s,%d}", bytes, kUnit, line);
    return false;
}

// --- Counts and input arrays ---

void CMimo::SetInputs(long inputs) {
    if (inputs > 0) m_inputs = inputs;
}

void CMimo::SetResponses(long responses) {
    if (responses > 0) m_responses = responses;
}

void CMimo::SetLines(long lines) {
    if (lines > 0) m_lines = lines;
}

void CMimo::append(std::vector<Input>& to, std::span<const RecordView> records) {
    for (RecordView record : records) to.push_back({record, mimo::locate(record)});
}

void CMimo::AddGff(std::span<const RecordView> records) { append(m_gff, records); }
void CMimo::AddGxf(std::span<const RecordView> records) { append(m_gxf, records); }
void CMimo::AddGxx(std::span<const RecordView> records) { append(m_gxx, records); }

// --- Entries and values ---

bool CMimo::inRange(const char* matrix, long row, long rows, long col, long cols) {
    if (row < 1 || row > rows) {
        show("%s : Row %ld out of range [1,%ld]", matrix, row, rows);
        return false;
    }
    if (col < 1 || col > cols) {
        show("%s : Column %ld out of range [1,%ld]", matrix, col, cols);
        return false;
    }
    return true;
}

bool CMimo::lineInRange(const char* matrix, long line) {
    if (line >= 0 && line < m_lines) return true;
    show("%s : Frequency Index %ld out of range [0,%ld]", matrix, line, m_lines - 1);
    return false;
}

const CMimo::Input* CMimo::entry(const std::vector<Input>& array, long row, long rows, long col) {
    // row and col are in range, so the position is below rows·cols, which the array bounds.
    const std::size_t column = static_cast<std::size_t>(col - 1);
    const std::size_t height = static_cast<std::size_t>(rows);
    if (column > 0 && array.size() / column < height) return nullptr;
    const std::size_t at = column * height + static_cast<std::size_t>(row - 1);
    return at < array.size() ? &array[at] : nullptr;
}

std::complex<double> CMimo::valueOf(const Input* input, const char* matrix, long row, long col, long line) {
    const std::int32_t size = input && input->layout ? input->layout->values : 0;
    if (line < size) return mimo::valueAt(input->bytes, *input->layout, static_cast<std::int32_t>(line));
    if (col > 0)
        show("%s(%ld,%ld) : Frequency Index %ld >= size %d", matrix, row, col, line, size);
    else
        show("%s(%ld) : Frequency Index %ld >= size %d", matrix, row, line, size);
    return {};
}

const RecordView* CMimo::Gff(long row, long col) {
    if (!inRange("Gff", row, m_inputs, col, m_inputs)) return nullptr;
    const Input* input = entry(m_gff, row, m_inputs, col);
    return input ? &input->bytes : nullptr;
}

const RecordView* CMimo::Gxf(long row, long col) {
    if (!inRange("Gxf", row, m_responses, col, m_inputs)) return nullptr;
    const Input* input = entry(m_gxf, row, m_responses, col);
    return input ? &input->bytes : nullptr;
}

const RecordView* CMimo::Gxx(long row) {
    if (!inRange("Gxf", row, m_responses, 1, 1)) return nullptr;  // a bad row shows the Gxf row message
    const Input* input = entry(m_gxx, row, m_responses, 1);
    return input ? &input->bytes : nullptr;
}

std::complex<double> CMimo::Gff(long row, long col, long line) {
    if (!inRange("Gff", row, m_inputs, col, m_inputs) || !lineInRange("Gff", line)) return {};
    return valueOf(entry(m_gff, row, m_inputs, col), "Gff", row, col, line);
}

std::complex<double> CMimo::Gxf(long row, long col, long line) {
    if (!inRange("Gxf", row, m_responses, col, m_inputs) || !lineInRange("Gxf", line)) return {};
    return valueOf(entry(m_gxf, row, m_responses, col), "Gxf", row, col, line);
}

double CMimo::Gxx(long row, long line) {
    if (!inRange("Gxf", row, m_responses, 1, 1) || !lineInRange("Gxx", line)) return 0.0;
    return valueOf(entry(m_gxx, row, m_responses, 1), "Gxx", row, 0, line).real();
}

// --- The per-line decomposition ---

long CMimo::AnalyzeGff(long mode, std::span<d_complex> out) {
    const long n = m_inputs;
    if (n <= 0 || m_lines <= 0 || !analysis::isLapackDimension(n)) return -1;
    if (mode != kSingularValues && mode != kEigenvalues && mode != kGeneralizedInverse) return -1;
    const std::size_t perLine = static_cast<std::size_t>(mode == kGeneralizedInverse ? n * n : n);
    if (out.size() / perLine < static_cast<std::size_t>(m_lines)) return -1;
    std::vector<d_complex> a(static_cast<std::size_t>(n * n));
    std::vector<double> eigenvalues(static_cast<std::size_t>(n));
    for (long line = 0; line < m_lines; ++line) {
        for (long r = 1; r <= n; ++r)
            for (long c = 1; c <= n; ++c) a[static_cast<std::size_t>((r - 1) * n + c - 1)] = toWork(Gff(r, c, line));
        d_complex* at = out.data() + static_cast<std::size_t>(line) * perLine;
        bool done = false;
        if (mode == kSingularValues) {
            done = imsl_z_lin_svd_gen(n, n, a.data(), at, nullptr);
        } else if (mode == kEigenvalues) {
            done = imsl_z_eig_herm(n, a.data(), eigenvalues.data());
            for (long k = 0; k < n; ++k) at[k] = {eigenvalues[static_cast<std::size_t>(k)], 0.0};
        } else {
            done = imsl_z_lin_svd_gen(n, n, a.data(), nullptr, at);
        }
        if (!done) return -1;
    }
    return 0;
}

// --- Analyses ---

bool CMimo::checkInputs(int line) {
    if (m_inputs > 0) return true;
    show("# inputs %ld (i.e. # references) should be positive {%s,%d}", m_inputs, kUnit, line);
    return false;
}

bool CMimo::checkResponses(int line) {
    if (m_responses > 0) return true;
    show("# inputs %ld (i.e. # responses) should be positive {%s,%d}", m_responses, kUnit, line);
    return false;
}

bool CMimo::checkLines(int line) {
    if (m_lines > 0) return true;
    show("# frequency lines (%ld) should be positive {%s,%d}", m_lines, kUnit, line);
    return false;
}

bool CMimo::checkGff(int line) {
    if (!m_gff.empty()) return true;
    show("Gff measurement collection is unspecified {%s,%d}", kUnit, line);
    return false;
}

bool CMimo::checkGxf(int line) {
    if (!m_gxf.empty()) return true;
    show("Gxf measurement collection is unspecified {%s,%d}", kUnit, line);
    return false;
}

bool CMimo::cloneInto(const Input* source, bool complex, RecordBytes& clone, RecordLayout& layout, int line) {
    std::optional<RecordBytes> made = source ? mimo::CloneRecord(source->bytes, -1, complex) : std::nullopt;
    std::optional<RecordLayout> where = made ? mimo::locate(*made) : std::nullopt;
    if (!where) {
        show("Measurement cloning failed {%s,%d}", kUnit, line);
        return false;
    }
    clone = std::move(*made);
    layout = *where;
    return true;
}

void CMimo::applyDimensions(RecordLayout& layout, const std::vector<DimensionIndexes>& dimensions,
                            std::size_t position) {
    if (position >= dimensions.size()) return;  // not prepared: the source's indexes stay
    layout.head.xDimension = dimensions[position].x;
    layout.head.yDimension = dimensions[position].y;
}

bool CMimo::PrincipalComponents() {
    if (!checkInputs(__LINE__) || !checkLines(__LINE__) || !checkGff(__LINE__)) return false;
    const long n = m_inputs;
    std::vector<d_complex> eigenvalues;
    if (!allocate(eigenvalues, {m_lines, n}, __LINE__)) return false;
    if (AnalyzeGff(kEigenvalues, eigenvalues) < 0) {
        show("AnalyzeGff failed {%s,%d}", kUnit, __LINE__);
        return false;
    }
    m_principal.clear();
    for (long k = 1; k <= n; ++k) {
        RecordBytes record;
        RecordLayout layout;
        if (!cloneInto(entry(m_gff, k, n, k), false, record, layout, __LINE__)) return false;
        layout.head.functionType = "Principal component";
        layout.head.complex = 0;
        layout.head.responseChannel = static_cast<std::int16_t>(k);
        layout.head.referenceChannel = static_cast<std::int16_t>(n);
        mimo::rewriteHead(record, layout.head);
        const long count = std::min<long>(m_lines, layout.values);
        for (long line = 0; line < count; ++line)
            mimo::putValue(record, layout, static_cast<std::int32_t>(line),
                           fromWork(eigenvalues[static_cast<std::size_t>(line * n + k - 1)]));
        m_principal.push_back(std::move(record));
    }
    return true;
}

bool CMimo::FrequencyResponses() {
    if (!checkInputs(__LINE__) || !checkResponses(__LINE__) || !checkLines(__LINE__) || !checkGff(__LINE__) ||
        !checkGxf(__LINE__))
        return false;
    const long n = m_inputs;
    const long m = m_responses;
    std::vector<d_complex> inverses, g, a, h;
    std::vector<double> coherences;
    if (!allocate(inverses, {m_lines, n, n}, __LINE__) || !allocate(g, {m, n}, __LINE__) ||
        !allocate(a, {n, n}, __LINE__) || !allocate(h, {m_lines, m, n}, __LINE__) ||
        !allocate(coherences, {m_lines, m}, __LINE__))
        return false;
    if (AnalyzeGff(kGeneralizedInverse, inverses) < 0) {
        show("AnalyzeGff failed {%s,%d}", kUnit, __LINE__);
        return false;
    }
    const auto at = [](long r, long c, long columns) { return static_cast<std::size_t>(r * columns + c); };
    for (long line = 0; line < m_lines; ++line) {
        for (long r = 0; r < m; ++r)
            for (long c = 0; c < n; ++c) g[at(r, c, n)] = toWork(Gxf(r + 1, c + 1, line));
        d_complex* hLine = h.data() + static_cast<std::size_t>(line * m * n);
        imsl_z_mat_mul_rect(m, n, g.data(), n, n, inverses.data() + static_cast<std::size_t>(line * n * n), hLine);
        for (long r = 0; r < n; ++r)
            for (long c = 0; c < n; ++c) a[at(r, c, n)] = toWork(Gff(r + 1, c + 1, line));
        // The coherent output power of each response, h·A·h^H over the row h of H.
        for (long j = 0; j < m; ++j) {
            const d_complex* row = hLine + j * n;
            double power = 0.0;
            for (long i = 0; i < n; ++i) {
                power += a[at(i, i, n)].re * std::norm(fromWork(row[i]));
                for (long k = i + 1; k < n; ++k)
                    power += 2.0 * (std::conj(fromWork(row[i])) * fromWork(row[k]) * std::conj(fromWork(a[at(i, k, n)]))).real();
            }
            const double gxx = Gxx(j + 1, line);
            coherences[at(line, j, m)] = gxx > 0.0 ? limitedCoherence(power / gxx) : 0.0;
        }
    }
    m_frf.clear();
    m_coherence.clear();
    for (long i = 1; i <= n; ++i)
        for (long j = 1; j <= m; ++j) {
            RecordBytes record;
            RecordLayout layout;
            if (!cloneInto(entry(m_gxf, j, m, i), true, record, layout, __LINE__)) return false;
            layout.head.functionType = "FRF";
            applyDimensions(layout, m_frfDimensions, static_cast<std::size_t>((i - 1) * m + j - 1));
            mimo::rewriteHead(record, layout.head);
            const long count = std::min<long>(m_lines, layout.values);
            for (long line = 0; line < count; ++line)
                mimo::putValue(record, layout, static_cast<std::int32_t>(line),
                               fromWork(h[static_cast<std::size_t>(line * m * n) + at(j - 1, i - 1, n)]));
            m_frf.push_back(std::move(record));
        }
    for (long j = 1; j <= m; ++j) {
        RecordBytes record;
        RecordLayout layout;
        if (!cloneInto(entry(m_gxx, j, m, 1), false, record, layout, __LINE__)) return false;
        layout.head.functionType = "Multiple coherence";
        layout.head.complex = 0;
        applyDimensions(layout, m_coherenceDimensions, static_cast<std::size_t>(j - 1));
        mimo::rewriteHead(record, layout.head);
        const long count = std::min<long>(m_lines, layout.values);
        for (long line = 0; line < count; ++line)
            mimo::putValue(record, layout, static_cast<std::int32_t>(line), coherences[at(line, j - 1, m)]);
        m_coherence.push_back(std::move(record));
    }
    return true;
}

bool CMimo::InputInverse() {
    if (!checkInputs(__LINE__) || !checkLines(__LINE__) || !checkGff(__LINE__)) return false;
    const long n = m_inputs;
    std::vector<d_complex> inverses;
    if (!allocate(inverses, {m_lines, n, n}, __LINE__)) return false;
    if (AnalyzeGff(kGeneralizedInverse, inverses) < 0) {
        show("AnalyzeGff failed {%s,%d}", kUnit, __LINE__);
        return false;
    }
    m_inverse.clear();
    for (long col = 1; col <= n; ++col)
        for (long row = 1; row <= n; ++row) {
            RecordBytes record;
            RecordLayout layout;
            if (!cloneInto(entry(m_gff, row, n, col), true, record, layout, __LINE__)) return false;
            const long element = (col - 1) * n + row - 1;
            applyDimensions(layout, m_inverseDimensions, static_cast<std::size_t>(element));
            mimo::rewriteHead(record, layout.head);
            // Line l takes the element at position element·l of the inverse array, a product and
            // not the offset l·n² of its layout: line 0 reads the first element throughout.
            const long count = std::min<long>(m_lines, layout.values);
            for (long line = 0; line < count; ++line)
                mimo::putValue(record, layout, static_cast<std::int32_t>(line),
                               fromWork(inverses[static_cast<std::size_t>(element * line)]));
            m_inverse.push_back(std::move(record));
        }
    return true;
}

}  // namespace nvdl
