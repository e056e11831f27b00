// Hermitian eigenvalues, singular values with the Moore-Penrose inverse, and the complex matrix
// product, against numpy.linalg on random and singular matrices.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>

#include "NumpyReference.h"
#include "analysis/ComplexMatrix.h"

using nvdl::test::runNumpy;

namespace {

using Matrix = std::vector<d_complex>;

Matrix randomMatrix(long rows, long cols, unsigned seed)
{
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    Matrix m(static_cast<size_t>(rows * cols));
    for (d_complex& z : m)
        z = {normal(generator), normal(generator)};
    return m;
}

Matrix multiply(long ar, long ac, const Matrix& a, long bc, const Matrix& b)
{
    Matrix x(static_cast<size_t>(ar * bc));
    EXPECT_TRUE(imsl_z_mat_mul_rect(ar, ac, a.data(), ac, bc, b.data(), x.data()));
    return x;
}

// Interleaved re, im doubles, as numpy's complex128 view reads them.
std::vector<double> flatten(const Matrix& m)
{
    std::vector<double> flat;
    for (const d_complex& z : m) {
        flat.push_back(z.re);
        flat.push_back(z.im);
    }
    return flat;
}

void expectClose(const Matrix& actual, const std::vector<double>& reference, double tolerance, const char* what)
{
    ASSERT_EQ(reference.size(), 2 * actual.size()) << what;
    for (size_t i = 0; i < actual.size(); ++i) {
        EXPECT_NEAR(actual[i].re, reference[2 * i], tolerance) << what << " element " << i;
        EXPECT_NEAR(actual[i].im, reference[2 * i + 1], tolerance) << what << " element " << i;
    }
}

// A rank-2 4×3 matrix: the product of a 4×2 and a 2×3 random matrix.
Matrix singularMatrix() { return multiply(4, 2, randomMatrix(4, 2, 7), 3, randomMatrix(2, 3, 8)); }

}  // namespace

TEST(MatrixOperations, HermitianEigenvaluesDescendingAndFromTheLowerTriangle)
{
    const long n = 5;
    Matrix m = randomMatrix(n, n, 1);
    Matrix h(static_cast<size_t>(n * n));
    for (long i = 0; i < n; ++i)
        for (long j = 0; j < n; ++j) {
            const d_complex& a = m[static_cast<size_t>(i * n + j)];
            const d_complex& b = m[static_cast<size_t>(j * n + i)];
            h[static_cast<size_t>(i * n + j)] = {a.re + b.re, a.im - b.im};  // M + M^H
        }
    std::vector<double> reference =
        runNumpy("result = np.linalg.eigvalsh(inputs[0].view(np.complex128).reshape(5, 5))[::-1]", {flatten(h)});

    // Everything above the diagonal is garbage: only the lower triangle may be read.
    for (long i = 0; i < n; ++i)
        for (long j = i + 1; j < n; ++j)
            h[static_cast<size_t>(i * n + j)] = {std::numeric_limits<double>::quiet_NaN(), 1e300};
    std::vector<double> values(n);
    ASSERT_TRUE(imsl_z_eig_herm(n, h.data(), values.data()));
    ASSERT_EQ(reference.size(), values.size());
    for (long k = 0; k < n; ++k)
        EXPECT_NEAR(values[static_cast<size_t>(k)], reference[static_cast<size_t>(k)], 1e-10) << k;
}

TEST(MatrixOperations, SingularValuesAndMoorePenroseInverseOfFullRankAndSingularMatrices)
{
    const struct {
        const char* what;
        long rows;
        long cols;
        Matrix a;
    } cases[] = {{"full rank 3x5", 3, 5, randomMatrix(3, 5, 2)}, {"rank 2 4x3", 4, 3, singularMatrix()}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Matrix result(static_cast<size_t>(std::min(c.rows, c.cols) + c.rows * c.cols));
        d_complex* inverse = result.data() + std::min(c.rows, c.cols);
        ASSERT_TRUE(imsl_z_lin_svd_gen(c.rows, c.cols, c.a.data(), result.data(), inverse));
        const std::vector<double> reference = runNumpy(
            "a = inputs[0].view(np.complex128).reshape(" + std::to_string(c.rows) + ", " + std::to_string(c.cols) +
                ")\n"
                "s = np.linalg.svd(a, compute_uv=False).astype(complex)\n"
                "result = np.concatenate([s, np.linalg.pinv(a, rcond=1e-10).ravel()]).view(np.float64)",
            {flatten(c.a)});
        expectClose(result, reference, 1e-9, "singular values, then the inverse");
    }

    // The zero matrix's pseudo-inverse is zero.
    Matrix zero(6, d_complex{0, 0});
    Matrix zeroInverse(6, d_complex{5, 5});
    ASSERT_TRUE(imsl_z_lin_svd_gen(2, 3, zero.data(), nullptr, zeroInverse.data()));
    for (const d_complex& z : zeroInverse) {
        EXPECT_EQ(z.re, 0.0);
        EXPECT_EQ(z.im, 0.0);
    }
}

TEST(MatrixOperations, ProductMatchesNumpyAndChecksItsShapes)
{
    Matrix a = randomMatrix(2, 3, 3);
    Matrix b = randomMatrix(3, 4, 4);
    Matrix x = multiply(2, 3, a, 4, b);
    std::vector<double> reference = runNumpy(
        "a = inputs[0].view(np.complex128).reshape(2, 3)\n"
        "b = inputs[1].view(np.complex128).reshape(3, 4)\n"
        "result = (a @ b).view(np.float64)",
        {flatten(a), flatten(b)});
    expectClose(x, reference, 1e-12, "product");

    Matrix out(4);
    EXPECT_FALSE(imsl_z_mat_mul_rect(2, 3, a.data(), 4, 2, b.data(), out.data()));
    EXPECT_FALSE(imsl_z_eig_herm(-1, a.data(), nullptr));
}
