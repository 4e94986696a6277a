// Matrix operations: products bit for bit against plain triple loops summing in the same order
// from the same start, moves bit for bit, element-wise operations in place, rotation-block
// shapes that ignore the fourth row and column, and empty row-pointer counts.
#include <Eigen/Dense>

#include <limits>
#include <vector>

#include "QZMatrix.h"
#include "test_util.h"

namespace {

using qztest::SameBits;

constexpr double kSentinel = -777.25;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

enum class From { kFirstProduct, kZero };

// Out[i][j] = sum over k of A[i][k] * B[k][j] with explicit strides, one element at a time.
void RefMul(int m, int kk, int p, const double *A, int lda, const double *B, int ldb, double *Out,
            From from) {
    for (int i = 0; i < m; ++i) {
        for (int j = 0; j < p; ++j) {
            double s = A[i * lda] * B[j];
            if (from == From::kZero) s = 0.0 + s;
            for (int k = 1; k < kk; ++k) s = s + A[i * lda + k] * B[k * ldb + j];
            Out[i * p + j] = s;
        }
    }
}

// Random entries with exact zeros of both signs, so that the start of each sum shows in the
// sign of zero results; one guard element past the end.
std::vector<double> RandomMatrix(std::mt19937_64 &rng, int count) {
    std::vector<double> v(count + 1, kSentinel);
    for (int i = 0; i < count; ++i) {
        const double r = qztest::Uniform(rng, 0.0, 1.0);
        v[i] = r < 0.15 ? 0.0 : r < 0.3 ? -0.0 : qztest::Uniform(rng, -4.0, 4.0);
    }
    return v;
}

::testing::AssertionResult SameArray(const double *a, const double *b, int count) {
    for (int i = 0; i < count; ++i) {
        auto r = SameBits(a[i], b[i]);
        if (!r) return r << " at element " << i;
    }
    return ::testing::AssertionSuccess();
}

struct SquareFamily {
    int n;
    void (*mult)(const double *, const double *, double *);
    void (*cpy)(const double *, double *);
    void (*identity)(double *);
    void (*add)(const double *, const double *, double *);
    void (*transpose)(const double *, double *);
};

#define FAMILY(N)                                                                      \
    SquareFamily{N, QZ_MatrixMult##N, QZ_MatrixCpy##N, QZ_MatrixIdentity##N, QZ_MatrixAdd##N, \
                 QZ_MatrixTranspose##N},
const SquareFamily kSquare[] = {FAMILY(2) FAMILY(3) FAMILY(4) FAMILY(5) FAMILY(6) FAMILY(7)
                                    FAMILY(8)};
#undef FAMILY

TEST(MatrixSquare, ProductsMatchTripleLoopBitForBit) {
    auto rng = qztest::Rng();
    for (const auto &f : kSquare) {
        const int nn = f.n * f.n;
        for (int rep = 0; rep < 300; ++rep) {
            const auto A = RandomMatrix(rng, nn);
            const auto B = RandomMatrix(rng, nn);
            std::vector<double> out(nn + 1, kSentinel), ref(nn);
            f.mult(A.data(), B.data(), out.data());
            RefMul(f.n, f.n, f.n, A.data(), f.n, B.data(), f.n, ref.data(), From::kFirstProduct);
            ASSERT_TRUE(SameArray(out.data(), ref.data(), nn)) << "n=" << f.n << " rep " << rep;
            ASSERT_EQ(out[nn], kSentinel);
        }
    }
}

// The square products start each sum with its first product, so all-negative times all-zero
// gives -0.0 everywhere; QZ_MMM44 adds to 0.0 and gives +0.0, otherwise the same values.
TEST(MatrixSquare, SumStartShowsInTheSignOfZero) {
    for (const auto &f : kSquare) {
        std::vector<double> A(f.n * f.n, -1.5), B(f.n * f.n, 0.0), out(f.n * f.n);
        f.mult(A.data(), B.data(), out.data());
        for (double x : out) ASSERT_TRUE(SameBits(x, -0.0)) << "n=" << f.n;
    }
    double A[16], B[16], o1[16], o2[16];
    for (int i = 0; i < 16; ++i) {
        A[i] = -1.0 - i;
        B[i] = 0.0;
    }
    QZ_MMM44(A, B, o1);
    for (double x : o1) EXPECT_TRUE(SameBits(x, 0.0));
    auto rng = qztest::Rng();
    for (int rep = 0; rep < 100; ++rep) {
        for (int i = 0; i < 16; ++i) {
            A[i] = qztest::Uniform(rng, -1, 1);
            B[i] = qztest::Uniform(rng, -1, 1);
        }
        QZ_MMM44(A, B, o1);
        QZ_MatrixMult4(A, B, o2);
        for (int i = 0; i < 16; ++i) ASSERT_EQ(o1[i], o2[i]);
    }
}

// Copies, transposes and the identity move values without arithmetic: signalling NaN payloads
// and signed zeros survive, and nothing past n*n is touched.
TEST(MatrixSquare, MovesAreBitExactAndStayInBounds) {
    double snan;
    const uint64_t bits = 0x7ff4000000000abcull;
    std::memcpy(&snan, &bits, sizeof snan);
    auto rng = qztest::Rng();
    for (const auto &f : kSquare) {
        const int n = f.n, nn = n * n;
        auto A = RandomMatrix(rng, nn);
        A[0] = snan;
        A[nn - 1] = -0.0;
        std::vector<double> out(nn + 1, kSentinel);
        f.cpy(A.data(), out.data());
        EXPECT_TRUE(SameArray(out.data(), A.data(), nn + 1)) << "cpy n=" << n;
        f.transpose(A.data(), out.data());
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) ASSERT_TRUE(SameBits(out[j * n + i], A[i * n + j]));
        }
        EXPECT_EQ(out[nn], kSentinel);
        std::fill(out.begin(), out.begin() + nn, kNaN);
        f.identity(out.data());
        for (int i = 0; i < nn; ++i) ASSERT_TRUE(SameBits(out[i], i % (n + 1) == 0 ? 1.0 : 0.0));
        EXPECT_EQ(out[nn], kSentinel);

        // Sums over all n*n elements, also written over either input.
        const auto B = RandomMatrix(rng, nn);
        f.add(A.data(), B.data(), out.data());
        auto inA = A;
        f.add(inA.data(), B.data(), inA.data());
        auto inB = B;
        f.add(A.data(), inB.data(), inB.data());
        for (int i = 0; i < nn; ++i) {
            ASSERT_TRUE(SameBits(out[i], A[i] + B[i]));
            ASSERT_TRUE(SameBits(inA[i], out[i]));
            ASSERT_TRUE(SameBits(inB[i], out[i]));
        }
        EXPECT_EQ(out[nn], kSentinel);
    }
}

TEST(MatrixShapes, ProductsMatchTripleLoopBitForBit) {
    auto rng = qztest::Rng();
    for (int rep = 0; rep < 300; ++rep) {
        const auto A67 = RandomMatrix(rng, 42);
        const auto B77 = RandomMatrix(rng, 49);
        const auto B76 = RandomMatrix(rng, 42);
        const auto A44 = RandomMatrix(rng, 16);
        const auto B44 = RandomMatrix(rng, 16);
        const auto A33 = RandomMatrix(rng, 9);
        double out[49], ref[49];

        QZ_MatrixMult6777(A67.data(), B77.data(), out);
        RefMul(6, 7, 7, A67.data(), 7, B77.data(), 7, ref, From::kZero);
        ASSERT_TRUE(SameArray(out, ref, 42)) << "6777";
        QZ_MatrixMult6776(A67.data(), B76.data(), out);
        RefMul(6, 7, 6, A67.data(), 7, B76.data(), 6, ref, From::kZero);
        ASSERT_TRUE(SameArray(out, ref, 36)) << "6776";
        QZ_MMM44(A44.data(), B44.data(), out);
        RefMul(4, 4, 4, A44.data(), 4, B44.data(), 4, ref, From::kZero);
        ASSERT_TRUE(SameArray(out, ref, 16)) << "MMM44";
        QZ_MatrixMult3m4(A33.data(), A44.data(), out);
        RefMul(3, 3, 3, A33.data(), 3, A44.data(), 4, ref, From::kFirstProduct);
        ASSERT_TRUE(SameArray(out, ref, 9)) << "3m4";
    }
}

// Matrix times vector is the product with a one-column right factor; a row vector times a
// matrix the product with a one-row left factor.
TEST(MatrixShapes, MatrixVectorProductsMatchTripleLoopBitForBit) {
    auto rng = qztest::Rng();
    struct Case {
        const char *name;
        void (*f)(const double *, const double *, double *);
        int rows, cols, stride;
        From from;
    };
    const Case cases[] = {
        {"MultVect3", QZ_MatrixMultVect3, 3, 3, 3, From::kFirstProduct},
        {"MultVect4", QZ_MatrixMultVect4, 4, 4, 4, From::kZero},
        {"MultVect6", QZ_MatrixMultVect6, 6, 6, 6, From::kZero},
        {"MultVect7", QZ_MatrixMultVect7, 7, 7, 7, From::kZero},
        {"67MultVect7", QZ_Matrix67MultVect7, 6, 7, 7, From::kZero},
        {"76MultVect6", QZ_Matrix76MultVect6, 7, 6, 6, From::kZero},
        {"MVmult43", QZ_MVmult43, 3, 3, 4, From::kZero},
    };
    for (int rep = 0; rep < 300; ++rep) {
        for (const auto &c : cases) {
            const auto M = RandomMatrix(rng, c.rows * c.stride);
            const auto v = RandomMatrix(rng, c.cols);
            double out[8], ref[8];
            out[c.rows] = kSentinel;
            c.f(M.data(), v.data(), out);
            RefMul(c.rows, c.cols, 1, M.data(), c.stride, v.data(), 1, ref, c.from);
            ASSERT_TRUE(SameArray(out, ref, c.rows)) << c.name;
            ASSERT_EQ(out[c.rows], kSentinel) << c.name;
        }
        const auto v = RandomMatrix(rng, 7);
        const auto M6 = RandomMatrix(rng, 36);
        const auto M7 = RandomMatrix(rng, 49);
        double out[7], ref[7];
        QZ_VMmult1666(v.data(), M6.data(), out);
        RefMul(1, 6, 6, v.data(), 6, M6.data(), 6, ref, From::kZero);
        ASSERT_TRUE(SameArray(out, ref, 6)) << "1666";
        QZ_VMmult1777(v.data(), M7.data(), out);
        RefMul(1, 7, 7, v.data(), 7, M7.data(), 7, ref, From::kZero);
        ASSERT_TRUE(SameArray(out, ref, 7)) << "1777";
    }
    // Start of the sums: the 3-by-3 member keeps a lone -0.0, the others turn it into +0.0.
    const double negative[49] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    const double zeros[7] = {0, 0, 0, 0, 0, 0, 0};
    double out[7];
    QZ_MatrixMultVect3(negative, zeros, out);
    EXPECT_TRUE(SameBits(out[0], -0.0));
    QZ_MatrixMultVect4(negative, zeros, out);
    EXPECT_TRUE(SameBits(out[0], 0.0));
}

// Functions on the rotation block of a transform read only its upper-left 3-by-3 elements.
TEST(MatrixShapes, RotationBlockIgnoresFourthRowAndColumn) {
    auto rng = qztest::Rng();
    double T[16], Tn[16], A[9], v[3];
    for (double &x : T) x = qztest::Uniform(rng, -1, 1);
    for (double &x : A) x = qztest::Uniform(rng, -1, 1);
    for (double &x : v) x = qztest::Uniform(rng, -1, 1);
    for (int i = 0; i < 16; ++i) Tn[i] = (i % 4 == 3 || i >= 12) ? kNaN : T[i];
    double o1[9], o2[9];
    QZ_MatrixMult3m4(A, T, o1);
    QZ_MatrixMult3m4(A, Tn, o2);
    EXPECT_TRUE(SameArray(o1, o2, 9));
    Mat4433Transpose(T, o1);
    Mat4433Transpose(Tn, o2);
    EXPECT_TRUE(SameArray(o1, o2, 9));
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) EXPECT_TRUE(SameBits(o1[j * 3 + i], T[i * 4 + j]));
    }
    QZ_MVmult43(T, v, o1);
    QZ_MVmult43(Tn, v, o2);
    EXPECT_TRUE(SameArray(o1, o2, 3));
}

TEST(MatrixShapes, TransposesAndElementWiseOperations) {
    auto rng = qztest::Rng();
    const auto A = RandomMatrix(rng, 42);
    const auto B = RandomMatrix(rng, 42);
    double out[43];
    out[42] = kSentinel;
    QZ_Mat67Transpose(A.data(), out);
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 7; ++j) ASSERT_TRUE(SameBits(out[j * 6 + i], A[i * 7 + j]));
    }
    EXPECT_EQ(out[42], kSentinel);

    // The two spellings of the 3-by-3 and 4-by-4 transposes agree bit for bit.
    double t[16], u1[16], u2[16];
    for (double &x : t) x = qztest::Uniform(rng, -1, 1);
    t[1] = -0.0;
    MatTr33(t, u1);
    QZ_MatrixTranspose3(t, u2);
    EXPECT_TRUE(SameArray(u1, u2, 9));
    MatTr44(t, u1);
    QZ_MatrixTranspose4(t, u2);
    EXPECT_TRUE(SameArray(u1, u2, 16));

    QZ_MatrixSub67(A.data(), B.data(), out);
    for (int i = 0; i < 42; ++i) ASSERT_TRUE(SameBits(out[i], A[i] - B[i]));
    auto inB = B;
    QZ_MatrixSub67(A.data(), inB.data(), inB.data());
    EXPECT_TRUE(SameArray(inB.data(), out, 42));
    EXPECT_EQ(out[42], kSentinel);

    // Column j scaled by d[j], also in place.
    double d[6];
    for (double &x : d) x = qztest::Uniform(rng, -2, 2);
    d[2] = -0.0;
    auto M = RandomMatrix(rng, 36);
    const auto M0 = M;
    QZ_MmultDiagM66(M.data(), d, out);
    QZ_MmultDiagM66(M.data(), d, M.data());
    for (int i = 0; i < 36; ++i) {
        ASSERT_TRUE(SameBits(out[i], M0[i] * d[i % 6]));
        ASSERT_TRUE(SameBits(M[i], out[i]));
    }
    EXPECT_EQ(M[36], kSentinel);
}

// A cross-check of layout and shapes against Eigen, independent of the reference loop above.
TEST(MatrixShapes, AgreeWithEigenProducts) {
    using M67 = Eigen::Matrix<double, 6, 7, Eigen::RowMajor>;
    using M77 = Eigen::Matrix<double, 7, 7, Eigen::RowMajor>;
    using M76 = Eigen::Matrix<double, 7, 6, Eigen::RowMajor>;
    using M66 = Eigen::Matrix<double, 6, 6, Eigen::RowMajor>;
    const M67 a = M67::Random();
    const M77 b = M77::Random();
    const M76 c = M76::Random();
    const Eigen::Matrix<double, 7, 1> v = Eigen::Matrix<double, 7, 1>::Random();
    M67 o67;
    M66 o66;
    Eigen::Matrix<double, 6, 1> o6;
    QZ_MatrixMult6777(a.data(), b.data(), o67.data());
    EXPECT_LT((o67 - a * b).norm(), 1e-13);
    QZ_MatrixMult6776(a.data(), c.data(), o66.data());
    EXPECT_LT((o66 - a * c).norm(), 1e-13);
    QZ_Matrix67MultVect7(a.data(), v.data(), o6.data());
    EXPECT_LT((o6 - a * v).norm(), 1e-13);
    QZ_VMmult1777(v.data(), b.data(), o67.data());
    EXPECT_LT((o67.row(0).transpose() - b.transpose() * v).norm(), 1e-13);
}

// Row-pointer matrices: rows live in separate arrays, sizes come as signed counts.
struct RowMatrix {
    std::vector<std::vector<double>> rows;
    std::vector<double *> ptr;
    RowMatrix(int r, int c, double fill) : rows(r, std::vector<double>(c + 1, fill)) {
        for (auto &row : rows) ptr.push_back(row.data());
    }
    double *const *p() { return ptr.data(); }
};

TEST(MatrixRowPointers, MatchTripleLoopAndHonourEmptyCounts) {
    auto rng = qztest::Rng();
    for (int n = 1; n <= 5; ++n) {
        for (int m = 1; m <= 5; ++m) {
            for (int p = 1; p <= 5; ++p) {
                RowMatrix A(n, m, 0), B(m, p, 0), O(n, p, kSentinel), T(m, n, kSentinel);
                std::vector<double> a(n * m), b(m * p), ref(n * p);
                for (int i = 0; i < n * m; ++i) A.rows[i / m][i % m] = a[i] = qztest::Uniform(rng, -2, 2);
                for (int i = 0; i < m * p; ++i) B.rows[i / p][i % p] = b[i] = qztest::Uniform(rng, -2, 2);
                A.rows[0][0] = -0.0;
                a[0] = -0.0;
                QZ_MatrixMultXmX(A.p(), n, m, B.p(), p, O.p());
                RefMul(n, m, p, a.data(), m, b.data(), p, ref.data(), From::kZero);
                for (int i = 0; i < n; ++i) {
                    ASSERT_TRUE(SameArray(O.rows[i].data(), ref.data() + i * p, p));
                    ASSERT_EQ(O.rows[i][p], kSentinel);
                }
                std::vector<double> out(n + 1, kSentinel);
                QZ_MatrixMultVectX(A.p(), n, m, b.data(), out.data());
                RefMul(n, m, 1, a.data(), m, b.data(), 1, ref.data(), From::kZero);
                ASSERT_TRUE(SameArray(out.data(), ref.data(), n));
                ASSERT_EQ(out[n], kSentinel);
                QZ_MatrixTransposeXX(A.p(), n, m, T.p());
                for (int i = 0; i < n; ++i) {
                    for (int j = 0; j < m; ++j) ASSERT_TRUE(SameBits(T.rows[j][i], A.rows[i][j]));
                }
                ASSERT_EQ(T.rows[0][n], kSentinel);
            }
        }
    }
    RowMatrix A(3, 4, 1.5), B(3, 4, 2.0), O(3, 4, kSentinel);
    QZ_MatrixAddX(A.p(), 3, 4, B.p(), O.p());
    QZ_MatrixAddX(A.p(), 3, 4, B.p(), A.p());
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) EXPECT_EQ(O.rows[i][j], 3.5);
        for (int j = 0; j < 4; ++j) EXPECT_EQ(A.rows[i][j], 3.5);
        EXPECT_EQ(O.rows[i][4], kSentinel);
    }

    // Empty outer dimensions write nothing; an empty inner dimension gives zero sums.
    RowMatrix E(3, 3, kSentinel);
    std::vector<double> v(4, kSentinel);
    for (int32_t e : {0, -1, std::numeric_limits<int32_t>::min()}) {
        QZ_MatrixAddX(A.p(), e, 3, B.p(), E.p());
        QZ_MatrixAddX(A.p(), 3, e, B.p(), E.p());
        QZ_MatrixTransposeXX(A.p(), e, 3, E.p());
        QZ_MatrixTransposeXX(A.p(), 3, e, E.p());
        QZ_MatrixMultXmX(A.p(), e, 3, B.p(), 3, E.p());
        QZ_MatrixMultXmX(A.p(), 3, 3, B.p(), e, E.p());
        QZ_MatrixMultXmX(A.p(), e, e, B.p(), 3, E.p());
        QZ_MatrixMultVectX(A.p(), e, 3, v.data(), v.data() + 1);
        QZ_MatrixMultVectX(A.p(), e, e, v.data(), v.data() + 1);
    }
    for (auto &row : E.rows) {
        for (double x : row) ASSERT_EQ(x, kSentinel);
    }
    EXPECT_EQ(v[1], kSentinel);
    for (int32_t e : {0, -4}) {
        RowMatrix Z(2, 3, kSentinel);
        QZ_MatrixMultXmX(A.p(), 2, e, B.p(), 3, Z.p());
        for (auto &row : Z.rows) {
            for (int j = 0; j < 3; ++j) EXPECT_TRUE(SameBits(row[j], 0.0));
            EXPECT_EQ(row[3], kSentinel);
        }
        std::vector<double> z(3, kSentinel);
        QZ_MatrixMultVectX(A.p(), 2, e, v.data(), z.data());
        EXPECT_TRUE(SameBits(z[0], 0.0));
        EXPECT_TRUE(SameBits(z[1], 0.0));
        EXPECT_EQ(z[2], kSentinel);
    }
}

}  // namespace
