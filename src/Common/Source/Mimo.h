// CMimo: analysis of several reference inputs and several responses together, line by line in
// frequency. It takes the input spectral matrix Gff (n×n), the cross matrix Gxf (m×n) and the
// response autopowers Gxx (m) as flat measurement records, and makes principal components,
// frequency response functions with their multiple coherences, and the inverse of the input
// matrix, again as flat records.
//
// Matrix layouts of the input arrays (rows and columns count from 1):
//   Gff(row, col), 1..n × 1..n, at position (col - 1)·n + (row - 1)
//   Gxf(row, col), 1..m × 1..n, at position (col - 1)·m + (row - 1)
//   Gxx(k), 1..m, at position k - 1
// Working matrices are complex doubles, row by row: element (r, c) at (r - 1)·columns + (c - 1).
//
// The input records belong to the caller and must outlive the analysis; the output records belong
// to the object and are rebuilt from nothing at each analysis. Every failure shows a message
// (host::messageBox) and ends the operation; a value that cannot be read shows a range message and
// counts as zero, and the analysis goes on. One object is used by one thread.
#pragma once

#include <complex>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Common/Source/MimoRecord.h"
#include "analysis/ComplexMatrix.h"
#include "nvdl/IUnitService.h"

namespace nvdl {

class CMimo {
public:
    // Modes of AnalyzeGff: per line, what is made of the n×n input matrix.
    enum AnalyzeMode : long {
        kSingularValues = 10001,    // n values at l·n + k
        kEigenvalues = 10002,       // n values at l·n + k, imaginary part 0, largest first
        kGeneralizedInverse = 10003 // n² values at l·n² + e
    };

    // The X and Y dimension indexes an output record is to carry.
    struct DimensionIndexes {
        std::int32_t x = 0;
        std::int32_t y = 0;
    };

    CMimo() = default;
    CMimo(const CMimo&) = delete;
    CMimo& operator=(const CMimo&) = delete;

    // Each stores the value only when it is above 0.
    void SetInputs(long inputs);
    void SetResponses(long responses);
    void SetLines(long lines);
    long Inputs() const { return m_inputs; }
    long Responses() const { return m_responses; }
    long Lines() const { return m_lines; }

    // Append each record of the array.
    void AddGff(std::span<const mimo::RecordView> records);
    void AddGxf(std::span<const mimo::RecordView> records);
    void AddGxx(std::span<const mimo::RecordView> records);

    // The record at a matrix entry; null after a range message, or when the array has no record there.
    const mimo::RecordView* Gff(long row, long col);
    const mimo::RecordView* Gxf(long row, long col);
    const mimo::RecordView* Gxx(long row);
    // The value at a frequency line; zero after a range message.
    std::complex<double> Gff(long row, long col, long line);
    std::complex<double> Gxf(long row, long col, long line);
    double Gxx(long row, long line);

    // Runs over all lines with the work matrix A(r, c) = Gff(r, c, line). `out` is the caller's
    // (Lines·n values for the first two modes, Lines·n² for the inverse). 0 on success; negative for
    // an unknown mode, too small an output, no inputs or lines, or a line the routine failed on.
    long AnalyzeGff(long mode, std::span<d_complex> out);

    // Each returns true when its output lists are complete.
    bool PrincipalComponents();
    bool FrequencyResponses();
    bool InputInverse();

    // Fills the dimension arrays with the service's dimensions: FRF (j, i) carries the exponents of
    // Gxf(j, i) less those of Gff(1, 1), a multiple coherence none, inverse (r, c) those of Gff(r, c)
    // negated; each output keeps its source's X dimension. False (and empty arrays, so that outputs
    // keep their sources' indexes) when the service or its dimensions cannot be had.
    bool PrepareDimensions(IUnitService* units);

    // The outputs: principal components 1..n; FRFs at (i - 1)·m + (j - 1) for input i and response
    // j; multiple coherences 1..m; the inverse entries in the layout of Gff.
    const std::vector<mimo::RecordBytes>& PrincipalComponentRecords() const { return m_principal; }
    const std::vector<mimo::RecordBytes>& FrfRecords() const { return m_frf; }
    const std::vector<mimo::RecordBytes>& CoherenceRecords() const { return m_coherence; }
    const std::vector<mimo::RecordBytes>& InverseRecords() const { return m_inverse; }
    const std::vector<DimensionIndexes>& FrfDimensions() const { return m_frfDimensions; }
    const std::vector<DimensionIndexes>& CoherenceDimensions() const { return m_coherenceDimensions; }
    const std::vector<DimensionIndexes>& InverseDimensions() const { return m_inverseDimensions; }

    // The text of the last message shown; empty when none was.
    const std::string& LastMessage() const { return m_lastMessage; }

private:
    void show(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // Sizes `into` to the product of `factors` elements of T; false after the allocation message
    // when the size is beyond reach or memory is short. `line` is the source line for the message.
    template <class T>
    bool allocate(std::vector<T>& into, std::initializer_list<long> factors, int line);
    // The checks at the start of an analysis, in order, each with its message.
    bool checkInputs(int line);
    bool checkResponses(int line);
    bool checkLines(int line);
    bool checkGff(int line);
    bool checkGxf(int line);
    // An input record with its layout, found once when it is added (none when it cannot be read).
    struct Input {
        mimo::RecordView bytes;
        std::optional<mimo::RecordLayout> layout;
    };
    static void append(std::vector<Input>& to, std::span<const mimo::RecordView> records);
    // Range checks with their messages, and the entries they guard (null when the array is short).
    bool inRange(const char* matrix, long row, long rows, long col, long cols);
    bool lineInRange(const char* matrix, long line);
    static const Input* entry(const std::vector<Input>& array, long row, long rows, long col);
    // The value at a line of an entry; zero after the size message, which names the entry as
    // "matrix(row,col)", or "matrix(row)" when col is 0.
    std::complex<double> valueOf(const Input* input, const char* matrix, long row, long col, long line);
    // A clone of `source` with its own size and its layout; false after the cloning message.
    bool cloneInto(const Input* source, bool complex, mimo::RecordBytes& clone, mimo::RecordLayout& layout, int line);
    // Sets the head's dimension indexes from a prepared dimension array.
    static void applyDimensions(mimo::RecordLayout& layout, const std::vector<DimensionIndexes>& dimensions,
                                std::size_t position);

    long m_inputs = 0;
    long m_responses = 0;
    long m_lines = 0;
    std::vector<Input> m_gff, m_gxf, m_gxx;
    std::vector<mimo::RecordBytes> m_principal, m_frf, m_coherence, m_inverse;
    std::vector<DimensionIndexes> m_frfDimensions, m_coherenceDimensions, m_inverseDimensions;
    std::string m_lastMessage;
};

}  // namespace nvdl
