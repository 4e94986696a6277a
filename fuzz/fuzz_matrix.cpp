// Fuzz target for QZMatrix: vectors, matrices, inversion, LUP, pseudo-inverses, Cholesky and
// eigen decomposition, Euler angles, frames and Jacobian transforms.
//
// Each input is a sequence of operations; an operation byte picks a family, the next byte the
// function and size, the following bytes the arguments. Besides crashes, sanitizer reports and
// hangs (the eigen solvers must stop for any eps and any entries), the target checks where
// results go: inputs readable over exactly the part the header lets a function read (a leading
// block at a row stride, a lower triangle, a transform's rotation block, counted rows), outputs
// written only where allowed and left alone on failure, and every aliasing form the header
// allows giving the same bits as the separate form. A few promises a caller relies on are
// checked too: result flags, a valid LUP permutation, an identity that is one, a successful
// eigen decomposition that stays finite.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "QZMatrix.h"
#include "fuzz_region.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

bool SameArray(const double *a, const double *b, int n) {
    return std::memcmp(a, b, sizeof(double) * static_cast<std::size_t>(n < 0 ? 0 : n)) == 0;
}

// The same values where the header promises the same values from two functions: equal bits, or
// both NaN (a NaN's payload depends on the order the compiler gave a product's operands).
bool SameValues(const double *a, const double *b, int n) {
    for (int i = 0; i < n; ++i) {
        if (BitsOf(a[i]) != BitsOf(b[i]) && !(a[i] != a[i] && b[i] != b[i])) return false;
    }
    return true;
}

// A count for an array of up to cap elements: any value not above cap (negative and extreme
// ones included); larger counts are brought down to cap, as no larger array can be supplied.
int32_t CountUpTo(Input &in, int32_t cap) {
    const int32_t n = in.Count();
    return n > cap ? cap : n;
}

// Symmetrises a square matrix (the lower triangle mirrored) when the input asks for it, so that
// the decompositions also see the inputs they are meant for, not only arbitrary ones.
void MaybeSymmetric(Input &in, double *A, int n, int stride) {
    if (in.Byte() & 1) return;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j) A[j * stride + i] = A[i * stride + j];
}

// ---- Fixed-size vectors --------------------------------------------------------------------

struct VectFns {
    int32_t (*norm)(double *);
    void (*cpy)(const double *, double *);
    void (*add)(const double *, const double *, double *);
    void (*sa)(const double *, double, const double *, double *);
};
#define QZ_VF(N) \
    { QZ_VectNorm##N, QZ_VectCpy##N, QZ_VectAdd##N, QZ_VectSA##N }
const VectFns kVect[7] = {QZ_VF(2), QZ_VF(3), QZ_VF(4), QZ_VF(5), QZ_VF(6), QZ_VF(7), QZ_VF(8)};
#undef QZ_VF

template <int N>
void FixedVect(Input &in, const VectFns &f, int op) {
    In<N> a, b;
    a.Fill(in);
    b.Fill(in);
    const double s = in.Double();
    Out<double, N> o, alias;
    const char *where = "QZ_Vect (fixed size)";
    switch (op % 4) {
        case 0: {
            for (int i = 0; i < N; ++i) o[i] = a[i];
            const int32_t r = f.norm(o.get());
            o.Check(N, "QZ_VectNormN");
            QZ_FUZZ_CHECK(r == 0 || r == 1, "QZ_VectNormN result");
            if (r == 0) {
                for (int i = 0; i < N; ++i)
                    QZ_FUZZ_CHECK(BitsOf(o[i]) == BitsOf(a[i]), "QZ_VectNormN refusal");
            }
            return;
        }
        case 1:
            f.cpy(a.Exact(N), o.get());
            a.Release("QZ_VectCpyN");
            o.Check(N, "QZ_VectCpyN");
            QZ_FUZZ_CHECK(SameArray(o.get(), &a[0], N), "QZ_VectCpyN bits");
            for (int i = 0; i < N; ++i) alias[i] = a[i];
            f.cpy(alias.get(), alias.get());
            QZ_FUZZ_CHECK(SameArray(alias.get(), &a[0], N), "QZ_VectCpyN in place");
            return;
        case 2: f.add(a.Exact(N), b.Exact(N), o.get()); break;
        default: f.sa(a.Exact(N), s, b.Exact(N), o.get()); break;
    }
    a.Release(where);
    b.Release(where);
    o.Check(N, where);
    // The output may be either input.
    const bool outIsA = (in.Byte() & 1) != 0;
    for (int i = 0; i < N; ++i) alias[i] = outIsA ? a[i] : b[i];
    double *x = outIsA ? alias.get() : &a[0];
    double *y = outIsA ? &b[0] : alias.get();
    if (op % 4 == 2) {
        f.add(x, y, alias.get());
    } else {
        f.sa(x, s, y, alias.get());
    }
    alias.Check(N, where);
    QZ_FUZZ_CHECK(SameArray(alias.get(), o.get(), N), "QZ_VectAddN/SAN aliased output differs");
}

// ---- Counted vectors -----------------------------------------------------------------------

constexpr int kVecCap = 16;

void CountedVect(Input &in, int op) {
    In<kVecCap> a, b;
    a.Fill(in);
    b.Fill(in);
    const double s = in.Double();
    const int32_t n = CountUpTo(in, kVecCap);
    const int k = n < 0 ? 0 : n;
    Out<double, kVecCap> o, alias;
    const int which = op % 13;
    const char *where = "counted vector";
    // The element-wise and normalising forms, separately and with the output on an input.
    if (which <= 6) {
        int32_t cn = n;
        if (which == 6) cn = (in.Byte() & 1) ? n : (n & 3);  // CalShadowVector: mostly n in 0..3
        const int ck = which == 6 ? ((cn >= 1 && cn <= 3) ? cn : 0) : k;
        const bool outIsA = (in.Byte() & 1) != 0;
        for (int i = 0; i < ck; ++i) alias[i] = outIsA ? a[kVecCap - ck + i] : b[kVecCap - ck + i];
        double *x = outIsA ? alias.get() : &a[0] + kVecCap - ck;
        double *y = outIsA ? &b[0] + kVecCap - ck : alias.get();
        const double *pa = a.Exact(cn), *pb = b.Exact(cn);
        switch (which) {
            case 0:
                QZ_VectSub(pa, cn, pb, o.get());
                QZ_VectSub(x, cn, y, alias.get());
                break;
            case 1:
                QZ_VectAddX(pa, cn, pb, o.get());
                QZ_VectAddX(x, cn, y, alias.get());
                break;
            case 2:
                QZ_VectDotMult(pa, cn, pb, o.get());
                QZ_VectDotMult(x, cn, y, alias.get());
                break;
            case 3:
                QZ_VectSAX(pa, cn, s, pb, o.get());
                QZ_VectSAX(x, cn, s, y, alias.get());
                break;
            case 4:
                QZ_VectScale(pa, cn, s, o.get());
                QZ_VectScale(x, cn, s, alias.get());
                break;
            case 5:
                VectNormalized(pa, cn, o.get());
                VectNormalized(x, cn, alias.get());
                break;
            default:
                CalShadowVector(pa, pb, o.get(), cn);
                CalShadowVector(x, y, alias.get(), cn);
                break;
        }
        a.Release(where);
        b.Release(where);
        o.Check(ck, where);
        QZ_FUZZ_CHECK(SameArray(alias.get(), o.get(), ck),
                      "counted vector: aliased output differs");
        alias.Check(ck, where);
        return;
    }
    switch (which) {
        case 7:
        case 8: {
            const double r =
                which == 7 ? QZ_VectDot(a.Exact(n), b.Exact(n), n) : QZ_VectLength(a.Exact(n), n);
            if (n <= 0) QZ_FUZZ_CHECK(BitsOf(r) == 0, "QZ_VectDot/QZ_VectLength empty");
            break;
        }
        case 9: {
            for (int i = 0; i < k; ++i) o[i] = a[kVecCap - k + i];
            const int32_t r = QZ_VectNorm(o.get(), n);
            o.Check(k, "QZ_VectNorm");
            QZ_FUZZ_CHECK(r == 0 || r == 1, "QZ_VectNorm result");
            QZ_FUZZ_CHECK(n > 0 || r == 0, "QZ_VectNorm empty");
            if (r == 0)
                QZ_FUZZ_CHECK(SameArray(o.get(), &a[0] + kVecCap - k, k), "QZ_VectNorm refusal");
            return;
        }
        case 10: {
            const double r = QZ_VectAngle(a.Exact(n), b.Exact(n), n);
            QZ_FUZZ_CHECK(r != r || (r >= 0.0 && r <= 180.0), "QZ_VectAngle range");
            if (n <= 0) QZ_FUZZ_CHECK(BitsOf(r) == 0, "QZ_VectAngle empty");
            break;
        }
        case 11: {
            (void)QZ_GetVectLenA2B(a.Exact(3), b.Exact(3));
            a.Release(where);
            b.Release(where);
            QZ_VectCross(a.Exact(3), b.Exact(3), o.get());
            a.Release(where);
            b.Release(where);
            o.Check(3, "QZ_VectCross");
            return;
        }
        default: {
            // Unit vector from a to b, separately and with the output on either point.
            Out<double, 1> len;
            const bool withLen = (in.Byte() & 1) != 0;
            const int32_t r = withLen
                                  ? QZ_GetVectNormLenA2B(a.Exact(3), b.Exact(3), o.get(), len.get())
                                  : QZ_GetVectNormA2B(a.Exact(3), b.Exact(3), o.get());
            a.Release(where);
            b.Release(where);
            QZ_FUZZ_CHECK(r == 0 || r == 1, "QZ_GetVectNormA2B result");
            o.Check(3, "QZ_GetVectNormA2B");
            len.Check(withLen ? r : 0, "QZ_GetVectNormLenA2B length");
            const bool outIsA = (in.Byte() & 1) != 0;
            double *base = outIsA ? &a[0] : &b[0];
            for (int i = 0; i < 3; ++i) alias[i] = base[kVecCap - 3 + i];
            const double *pa = outIsA ? alias.get() : &a[0] + kVecCap - 3;
            const double *pb = outIsA ? &b[0] + kVecCap - 3 : alias.get();
            Out<double, 1> len2;
            const int32_t r2 = withLen ? QZ_GetVectNormLenA2B(pa, pb, alias.get(), len2.get())
                                       : QZ_GetVectNormA2B(pa, pb, alias.get());
            QZ_FUZZ_CHECK(r2 == r && SameArray(alias.get(), o.get(), 3),
                          "QZ_GetVectNormA2B aliased output differs");
            alias.Check(3, "QZ_GetVectNormA2B aliased");
            return;
        }
    }
    a.Release(where);
    b.Release(where);
}

// ---- Fixed-size square matrices ------------------------------------------------------------

struct MatFns {
    void (*mult)(const double *, const double *, double *);
    void (*cpy)(const double *, double *);
    void (*identity)(double *);
    void (*add)(const double *, const double *, double *);
    void (*transpose)(const double *, double *);
    uint8_t (*inv)(const double *, double *);
};
#define QZ_MF(N)                                                                  \
    {                                                                             \
        QZ_MatrixMult##N, QZ_MatrixCpy##N, QZ_MatrixIdentity##N, QZ_MatrixAdd##N, \
            QZ_MatrixTranspose##N, QZ_MatrixInv##N                                \
    }
const MatFns kMat[7] = {QZ_MF(2), QZ_MF(3), QZ_MF(4), QZ_MF(5), QZ_MF(6), QZ_MF(7), QZ_MF(8)};
#undef QZ_MF

template <int N>
void FixedMat(Input &in, const MatFns &f, int op) {
    constexpr int K = N * N;
    In<K> a, b;
    a.Fill(in);
    b.Fill(in);
    Out<double, K> o, alias;
    const char *where = "QZ_Matrix (fixed size)";
    switch (op % 6) {
        case 0: f.mult(a.Exact(K), b.Exact(K), o.get()); break;
        case 1:
            f.cpy(a.Exact(K), o.get());
            a.Release(where);
            QZ_FUZZ_CHECK(SameArray(o.get(), &a[0], K), "QZ_MatrixCpyN bits");
            for (int i = 0; i < K; ++i) alias[i] = a[i];
            f.cpy(alias.get(), alias.get());
            QZ_FUZZ_CHECK(SameArray(alias.get(), &a[0], K), "QZ_MatrixCpyN in place");
            break;
        case 2:
            f.identity(o.get());
            for (int i = 0; i < K; ++i) {
                QZ_FUZZ_CHECK(BitsOf(o[i]) == BitsOf(i % (N + 1) == 0 ? 1.0 : 0.0),
                              "QZ_MatrixIdentityN");
            }
            break;
        case 3: {
            f.add(a.Exact(K), b.Exact(K), o.get());
            a.Release(where);
            b.Release(where);
            const bool outIsA = (in.Byte() & 1) != 0;
            for (int i = 0; i < K; ++i) alias[i] = outIsA ? a[i] : b[i];
            f.add(outIsA ? alias.get() : &a[0], outIsA ? &b[0] : alias.get(), alias.get());
            QZ_FUZZ_CHECK(SameArray(alias.get(), o.get(), K),
                          "QZ_MatrixAddN aliased output differs");
            break;
        }
        case 4:
            f.transpose(a.Exact(K), o.get());
            a.Release(where);
            for (int i = 0; i < N; ++i)
                for (int j = 0; j < N; ++j)
                    QZ_FUZZ_CHECK(BitsOf(o[j * N + i]) == BitsOf(a[i * N + j]),
                                  "QZ_MatrixTransposeN");
            break;
        default: {
            const uint8_t r = f.inv(a.Exact(K), o.get());
            a.Release("QZ_MatrixInvN");
            QZ_FUZZ_CHECK(r <= 1, "QZ_MatrixInvN result");
            o.Check(r ? K : 0, "QZ_MatrixInvN");
            // In place: the same verdict and bits, the matrix unchanged on failure.
            for (int i = 0; i < K; ++i) alias[i] = a[i];
            const uint8_t r2 = f.inv(alias.get(), alias.get());
            QZ_FUZZ_CHECK(r2 == r, "QZ_MatrixInvN in place verdict");
            QZ_FUZZ_CHECK(SameArray(alias.get(), r ? o.get() : &a[0], K),
                          "QZ_MatrixInvN in place bits");
            alias.Check(K, "QZ_MatrixInvN in place");
            return;
        }
    }
    a.Release(where);
    b.Release(where);
    o.Check(K, where);
}

// ---- Single shapes, matrix-vector products, Jacobian transforms ----------------------------

// Out (NO) = f(A (NA), B (NB)), no aliasing.
template <int NA, int NB, int NO>
void Product(Input &in, void (*f)(const double *, const double *, double *), const char *where,
             double *keep = nullptr) {
    In<NA> a;
    In<NB> b;
    a.Fill(in);
    b.Fill(in);
    Out<double, NO> o;
    f(a.Exact(NA), b.Exact(NB), o.get());
    a.Release(where);
    b.Release(where);
    o.Check(NO, where);
    if (keep) std::memcpy(keep, o.get(), sizeof(double) * NO);
}

// As Product with the first argument a 4x4 transform of which only the rotation block is read.
template <int NB, int NO>
void WithRotationBlock(Input &in, void (*f)(const double *, const double *, double *), bool tFirst,
                       const char *where) {
    Region<double, 16> t;
    In<NB> b;
    for (int i = 0; i < 16; ++i) t[i] = in.Double();
    b.Fill(in);
    Out<double, NO> o;
    t.Open(3, 3, 4);
    if (tFirst) {
        f(t.get(), b.Exact(NB), o.get());
    } else {
        f(b.Exact(NB), t.get(), o.get());
    }
    t.Close(where, false);
    b.Release(where);
    o.Check(NO, where);
}

// Out (N) = f(A (N), B (NB)) where Out may be A (and B when alias_b): all forms give the same bits.
template <int N, int NB>
void ElementWise(Input &in, void (*f)(const double *, const double *, double *), bool aliasB,
                 const char *where) {
    In<N> a;
    In<NB> b;
    a.Fill(in);
    b.Fill(in);
    Out<double, N> o, alias;
    f(a.Exact(N), b.Exact(NB), o.get());
    a.Release(where);
    b.Release(where);
    o.Check(N, where);
    const bool outIsB = aliasB && (in.Byte() & 1) != 0;
    for (int i = 0; i < N; ++i) alias[i] = outIsB ? b[i] : a[i];
    f(outIsB ? &a[0] : alias.get(), outIsB ? alias.get() : &b[0], alias.get());
    alias.Check(N, where);
    QZ_FUZZ_CHECK(SameArray(alias.get(), o.get(), N), "aliased output differs");
}

void Shapes(Input &in, int op) {
    switch (op % 24) {
        case 0: Product<42, 49, 42>(in, QZ_MatrixMult6777, "QZ_MatrixMult6777"); break;
        case 1: Product<42, 42, 36>(in, QZ_MatrixMult6776, "QZ_MatrixMult6776"); break;
        case 2: Product<16, 16, 16>(in, QZ_MMM44, "QZ_MMM44"); break;
        case 3: WithRotationBlock<9, 9>(in, QZ_MatrixMult3m4, false, "QZ_MatrixMult3m4"); break;
        case 4: ElementWise<42, 42>(in, QZ_MatrixSub67, true, "QZ_MatrixSub67"); break;
        case 5: ElementWise<36, 6>(in, QZ_MmultDiagM66, false, "QZ_MmultDiagM66"); break;
        case 6: {
            double t1[42], t2[42];
            Input copy = in;
            Product<42, 1, 42>(
                in, [](const double *A, const double *, double *B) { QZ_Mat67Transpose(A, B); },
                "QZ_Mat67Transpose", t1);
            Product<42, 1, 42>(
                copy, [](const double *A, const double *, double *B) { Mat67Transpose(A, B); },
                "Mat67Transpose", t2);
            QZ_FUZZ_CHECK(SameArray(t1, t2, 42), "Mat67Transpose differs from QZ_Mat67Transpose");
            break;
        }
        case 7:
            WithRotationBlock<1, 9>(
                in, [](const double *T, const double *, double *B) { Mat4433Transpose(T, B); },
                true, "Mat4433Transpose");
            break;
        case 8:
            Product<9, 1, 9>(
                in, [](const double *A, const double *, double *B) { MatTr33(A, B); }, "MatTr33");
            break;
        case 9:
            Product<16, 1, 16>(
                in, [](const double *A, const double *, double *B) { MatTr44(A, B); }, "MatTr44");
            break;
        case 10: Product<9, 3, 3>(in, QZ_MatrixMultVect3, "QZ_MatrixMultVect3"); break;
        case 11: Product<16, 4, 4>(in, QZ_MatrixMultVect4, "QZ_MatrixMultVect4"); break;
        case 12: Product<36, 6, 6>(in, QZ_MatrixMultVect6, "QZ_MatrixMultVect6"); break;
        case 13: Product<49, 7, 7>(in, QZ_MatrixMultVect7, "QZ_MatrixMultVect7"); break;
        case 14: Product<42, 7, 6>(in, QZ_Matrix67MultVect7, "QZ_Matrix67MultVect7"); break;
        case 15: Product<42, 6, 7>(in, QZ_Matrix76MultVect6, "QZ_Matrix76MultVect6"); break;
        case 16: WithRotationBlock<3, 3>(in, QZ_MVmult43, true, "QZ_MVmult43"); break;
        case 17: Product<6, 36, 6>(in, QZ_VMmult1666, "QZ_VMmult1666"); break;
        case 18: Product<7, 49, 7>(in, QZ_VMmult1777, "QZ_VMmult1777"); break;
        case 19: ElementWise<36, 9>(in, QZ_JACOB_TRAN_T66, false, "QZ_JACOB_TRAN_T66"); break;
        case 20: ElementWise<42, 9>(in, QZ_JACOB_TRAN_T67, false, "QZ_JACOB_TRAN_T67"); break;
        case 21: {
            // The non-aliasing twin gives the same values.
            double t1[42], t2[42];
            Input copy = in;
            Product<42, 9, 42>(in, QZ_JACOBI_TRANS_T67, "QZ_JACOBI_TRANS_T67", t1);
            Product<42, 9, 42>(copy, QZ_JACOB_TRAN_T67, "QZ_JACOB_TRAN_T67", t2);
            QZ_FUZZ_CHECK(SameValues(t1, t2, 42),
                          "QZ_JACOBI_TRANS_T67 differs from QZ_JACOB_TRAN_T67");
            break;
        }
        case 22: Product<42, 7, 6>(in, MVmult677, "MVmult677"); break;
        default: {
            double t1[16], t2[16];
            Input copy = in;
            Product<16, 16, 16>(in, QZ_MMM44, "QZ_MMM44", t1);
            Product<16, 16, 16>(copy, QZ_MatrixMult4, "QZ_MatrixMult4", t2);
            for (int i = 0; i < 16; ++i) {
                QZ_FUZZ_CHECK(t1[i] == t2[i] || (t1[i] != t1[i] && t2[i] != t2[i]),
                              "QZ_MMM44 value differs from QZ_MatrixMult4");
            }
            break;
        }
    }
}

// ---- Row-pointer matrices ------------------------------------------------------------------

constexpr int kRows = 10;  // row-pointer matrices: up to this many rows
constexpr int kCols = 80;  // and this many columns (longer than the LUP row-exchange block)

int Pos(int32_t n) { return n < 0 ? 0 : n; }

void RowPointer(Input &in, int op) {
    RowMat<kRows, kCols> A, B, O, alias;
    const int32_t r = CountUpTo(in, kRows), c = CountUpTo(in, kRows);
    const int R = Pos(r), C = Pos(c);
    A.Fill(in, kRows, kRows);
    B.Fill(in, kRows, kRows);
    const char *where = "row-pointer matrix";
    switch (op % 4) {
        case 0: {
            A.Open(R, C);
            B.Open(R, C);
            O.Open(R, C);
            QZ_MatrixAddX(A.get(), r, c, B.get(), O.get());
            A.Close(where, false);
            B.Close(where, false);
            O.Close("QZ_MatrixAddX", true);
            // Out on A or on B: the same bits.
            const bool outIsA = (in.Byte() & 1) != 0;
            for (int i = 0; i < kRows; ++i)
                for (int j = 0; j < kRows; ++j) alias.at(i, j) = outIsA ? A.at(i, j) : B.at(i, j);
            alias.Open(R, C);
            if (outIsA) {
                B.Open(R, C);
                QZ_MatrixAddX(alias.get(), r, c, B.get(), alias.get());
                B.Close(where, false);
            } else {
                A.Open(R, C);
                QZ_MatrixAddX(A.get(), r, c, alias.get(), alias.get());
                A.Close(where, false);
            }
            alias.Close("QZ_MatrixAddX aliased", true);
            for (int i = 0; i < R; ++i)
                for (int j = 0; j < C; ++j)
                    QZ_FUZZ_CHECK(BitsOf(alias.at(i, j)) == BitsOf(O.at(i, j)),
                                  "QZ_MatrixAddX aliased output differs");
            return;
        }
        case 1: {
            A.Open(R, C);
            O.Open(C, R);
            QZ_MatrixTransposeXX(A.get(), r, c, O.get());
            A.Close(where, false);
            O.Close("QZ_MatrixTransposeXX", true);
            if (R == 0 || C == 0) return;
            for (int i = 0; i < R; ++i)
                for (int j = 0; j < C; ++j)
                    QZ_FUZZ_CHECK(BitsOf(O.at(j, i)) == BitsOf(A.at(i, j)),
                                  "QZ_MatrixTransposeXX bits");
            return;
        }
        case 2: {
            const int32_t p = CountUpTo(in, kRows);
            const int P = Pos(p);
            A.Open(R, C);
            B.Open(C, P);
            O.Open(R, P);
            QZ_MatrixMultXmX(A.get(), r, c, B.get(), p, O.get());
            A.Close(where, false);
            B.Close(where, false);
            O.Close("QZ_MatrixMultXmX", true);
            if (C == 0) {
                for (int i = 0; i < R; ++i)
                    for (int j = 0; j < P; ++j)
                        QZ_FUZZ_CHECK(BitsOf(O.at(i, j)) == 0, "QZ_MatrixMultXmX zeros for m <= 0");
            }
            return;
        }
        default: {
            In<kRows> v;
            v.Fill(in);
            Out<double, kRows> o;
            A.Open(R, C);
            QZ_MatrixMultVectX(A.get(), r, c, v.Exact(C), o.get());
            A.Close(where, false);
            v.Release("QZ_MatrixMultVectX");
            o.Check(R, "QZ_MatrixMultVectX");
            if (C == 0) {
                for (int i = 0; i < R; ++i)
                    QZ_FUZZ_CHECK(BitsOf(o[i]) == 0, "QZ_MatrixMultVectX zeros for m <= 0");
            }
            return;
        }
    }
}

// ---- LUP decomposition and its use ---------------------------------------------------------

void Lup(Input &in) {
    static RowMat<kRows, kCols> A, Inv;  // large; the operations take turns with them
    static Region<int32_t, kRows + 1> P;
    const int32_t m = CountUpTo(in, kRows), n = CountUpTo(in, kCols);
    // Long rows are filled with a short repeating pattern, so they cost little input.
    for (int i = 0; i < kRows; ++i)
        for (int j = 0; j < kCols; ++j) A.at(i, j) = j < 12 ? in.Double() : A.at(i, j % 12) * 0.5;
    const int M = Pos(m), N = Pos(n), len = M < N ? M : N;
    for (int i = 0; i <= kRows; ++i) std::memcpy(&P[i], &kSentinelBits, sizeof(int32_t));
    A.Open(M, N);
    P.Open(len + 1);
    const int32_t r = QZ_MatLUPD(A.get(), m, n, P.get());
    A.Close("QZ_MatLUPD", true);
    P.Close("QZ_MatLUPD", true);
    QZ_FUZZ_CHECK(r == 0 || r == 1, "QZ_MatLUPD result");
    if (m < 0 || n < 0) QZ_FUZZ_CHECK(r == 0 && P[0] == 0, "QZ_MatLUPD negative size");
    if (r != 0) return;
    // A valid permutation of the input rows and an exchange count within reach.
    bool seen[kRows] = {};
    for (int i = 0; i < len; ++i) {
        QZ_FUZZ_CHECK(P[i] >= 0 && P[i] < M && !seen[P[i]], "QZ_MatLUPD permutation");
        seen[P[i]] = true;
    }
    QZ_FUZZ_CHECK(P[len] >= 0 && P[len] <= len, "QZ_MatLUPD exchange count");
    if (M != N) return;

    // The square case: solve, determinant and inverse from the factors (and the empty forms).
    const bool empty = (in.Byte() & 3) == 0;
    const int32_t k = empty ? (in.Byte() & 1 ? 0 : in.Count() | INT32_MIN) : n;
    const int K = empty ? 0 : N;
    A.Open(K, K);
    P.Open(empty ? 0 : K + 1);
    switch (in.Byte() % 3) {
        case 0: {
            In<kRows> b;
            b.Fill(in);
            Out<double, kRows> x;
            QZ_LUPSolveEq(A.get(), k, P.get(), b.Exact(K), x.get());
            b.Release("QZ_LUPSolveEq");
            x.Check(K, "QZ_LUPSolveEq");
            break;
        }
        case 1: {
            const double d = QZ_MatLUPDet(A.get(), k, P.get());
            if (empty) QZ_FUZZ_CHECK(BitsOf(d) == 0, "QZ_MatLUPDet empty");
            break;
        }
        default:
            Inv.Open(K, K);
            QZ_MatLUPInv(A.get(), k, P.get(), Inv.get());
            Inv.Close("QZ_MatLUPInv", true);
            break;
    }
    A.Close("LUP factors", false);
    P.Close("LUP permutation", false);
}

// ---- Determinant, pseudo-inverses, Cholesky, eigen -----------------------------------------

void Determinant(Input &in) {
    Region<double, 64> A;
    const int32_t n = in.Count();
    for (int i = 0; i < 64; ++i)
        A[i] = (i % 8 < 4 && i < 32) || (in.Byte() & 1) ? in.Double() : 0.0;
    const bool inside = n >= 1 && n <= 8;
    A.Open(inside ? n : 0, inside ? n : 0, 8);
    const double d = QZ_MatrixDeterminant(A.get(), n);
    A.Close("QZ_MatrixDeterminant", false);
    if (!inside) QZ_FUZZ_CHECK(BitsOf(d) == 0, "QZ_MatrixDeterminant outside 1..8");
    if (n == 1) QZ_FUZZ_CHECK(BitsOf(d) == BitsOf(A[0]), "QZ_MatrixDeterminant n = 1");
}

void PseudoInverse(Input &in) {
    In<42> a;
    a.Fill(in);
    if (in.Byte() & 1) {  // near the regular scale, so the Gram matrix is mostly invertible
        for (int i = 0; i < 42; ++i) a[i] = std::fmod(a[i], 16.0) + (i % 7 == i / 7 ? 4.0 : 0.0);
    }
    const bool left = (in.Byte() & 1) != 0;
    Out<double, 42> o, alias;
    const uint8_t r =
        left ? QZ_LeftPsoInv76(a.Exact(42), o.get()) : QZ_RightPsoInv67(a.Exact(42), o.get());
    a.Release("pseudo-inverse");
    QZ_FUZZ_CHECK(r <= 1, "pseudo-inverse result");
    o.Check(r ? 42 : 0, "pseudo-inverse");
    for (int i = 0; i < 42; ++i) alias[i] = a[i];
    const uint8_t r2 = left ? QZ_LeftPsoInv76(alias.get(), alias.get())
                            : QZ_RightPsoInv67(alias.get(), alias.get());
    QZ_FUZZ_CHECK(r2 == r && SameArray(alias.get(), r ? o.get() : &a[0], 42),
                  "pseudo-inverse in place");
    alias.Check(42, "pseudo-inverse in place");
}

// Cholesky in S-by-S storage: A read over its lower triangle only, L written over the block.
template <int S>
void CholeskyIn(Input &in, int32_t (*f)(const double *, double *, int32_t), const char *where) {
    Region<double, S * S> A, L, alias;
    const int32_t n = in.Count();
    for (int i = 0; i < S * S; ++i) A[i] = in.Double();
    if ((in.Byte() & 1) == 0) {  // A = M M^T + d I: positive definite unless d is far off
        double M[S * S];
        std::memcpy(M, A.get(), sizeof M);
        const double d = in.Double();
        for (int i = 0; i < S; ++i)
            for (int j = 0; j < S; ++j) {
                double sum = i == j ? d : 0.0;
                for (int k = 0; k < S; ++k) sum += M[i * S + k] * M[j * S + k];
                A[i * S + j] = sum;
            }
    }
    const int k = (n >= 1 && n <= S) ? n : 0;
    A.Open(k, k, S, true);
    L.Open(k, k, S);
    const int32_t r = f(A.get(), L.get(), n);
    A.Close(where, false);
    L.Close(where, true);
    QZ_FUZZ_CHECK(r == 0 || r == -1, where);
    if (n < 1) QZ_FUZZ_CHECK(r == 0, where);
    if (n > S) QZ_FUZZ_CHECK(r == -1, where);
    if (r == 0) {
        for (int i = 0; i < k; ++i) {
            QZ_FUZZ_CHECK(!(L[i * S + i] <= 0.0), "Cholesky diagonal");
            for (int j = i + 1; j < k; ++j)
                QZ_FUZZ_CHECK(BitsOf(L[i * S + j]) == 0, "Cholesky upper zeros");
        }
    }
    // L on A: the same verdict, and on success the same factor.
    for (int i = 0; i < S * S; ++i) alias[i] = A[i];
    alias.Open(k, k, S);
    const int32_t r2 = f(alias.get(), alias.get(), n);
    alias.Close(where, true);
    QZ_FUZZ_CHECK(r2 == r, "Cholesky in place verdict");
    if (r == 0) {
        for (int i = 0; i < k; ++i)
            for (int j = 0; j < k; ++j)
                QZ_FUZZ_CHECK(BitsOf(alias[i * S + j]) == BitsOf(L[i * S + j]),
                              "Cholesky in place bits");
    }
}

void Vmv(Input &in) {
    In<7> v;
    Region<double, 49> M;
    v.Fill(in);
    for (int i = 0; i < 49; ++i) M[i] = in.Double();
    const int32_t n = in.Count();
    const int k = (n >= 1 && n <= 7) ? n : 0;
    M.Open(k, k, 7);
    const double r = VMV(v.Exact(k), M.get(), n);
    M.Close("VMV", false);
    v.Release("VMV");
    if (n < 1) QZ_FUZZ_CHECK(BitsOf(r) == 0, "VMV n < 1");
    if (n > 7) QZ_FUZZ_CHECK(r != r, "VMV n > 7");
}

// An entry eig accepts: finite and within 1e150 in magnitude.
bool Acceptable(double x) { return x == x && x >= -1e150 && x <= 1e150; }

// Checks an eig result on an n-by-n (contiguous) A and V: a refusal of what the solver rejects
// leaves both alone; a success leaves both finite, V's entries within a unit.
void CheckEig(uint8_t r, int32_t n, double eps, const double *A0, Region<double, 64> &A,
              Region<double, 64> &V, const char *where) {
    QZ_FUZZ_CHECK(r <= 1, where);
    bool rejected = n < 1 || n > 8 || !(eps > 0.0);
    for (int i = 0; !rejected && i < n * n; ++i) rejected = !Acceptable(A0[i]);
    if (rejected) {
        QZ_FUZZ_CHECK(r == 0, "eig accepted what it rejects");
        QZ_FUZZ_CHECK(SameArray(A.get(), A0, 64), "eig wrote A on a refusal");
        for (int i = 0; i < 64; ++i) QZ_FUZZ_CHECK(V.Untouched(i), "eig wrote V on a refusal");
    }
    if (r == 1) {
        for (int i = 0; i < n * n; ++i) {
            QZ_FUZZ_CHECK(std::isfinite(A[i]), "eig: non-finite A after success");
            QZ_FUZZ_CHECK(std::fabs(V[i]) <= 1.0 + 1e-6, "eig: eigenvector entry beyond a unit");
        }
    }
}

void Eigen(Input &in, int op) {
    static Region<double, 64> A, V;
    const bool seven = op & 1;
    const int32_t n = seven ? 7 : in.Count();
    const int k = (n >= 1 && n <= 8) ? n : 0;
    double eps = in.Double();
    if ((in.Byte() & 3) == 0)
        eps = std::ldexp(1.0, -static_cast<int>(in.Byte() % 100));  // 1 to 2^-99
    for (int i = 0; i < 64; ++i) {
        A[i] = i < k * k ? in.Double() : FromBits(kSentinelBits);
        V[i] = FromBits(kSentinelBits);
    }
    MaybeSymmetric(in, A.get(), k, k);
    double A0[64];
    std::memcpy(A0, A.get(), sizeof A0);
    A.Open(k * k);
    V.Open(k * k);
    const uint8_t r = seven ? eig7(A.get(), V.get(), eps) : eig(n, A.get(), V.get(), eps);
    A.Close(seven ? "eig7" : "eig", true);
    V.Close(seven ? "eig7" : "eig", true);
    CheckEig(r, n, eps, A0, A, V, seven ? "eig7" : "eig");
}

// The generalized problem on N-by-N arrays; B is made positive definite unless the input says
// otherwise.
template <int N>
void GeneralizedEig(Input &in,
                    uint8_t (*f)(double, const double *, const double *, double *, double *),
                    const char *where) {
    constexpr int K = N * N;
    In<K> a, b;
    a.Fill(in);
    b.Fill(in);
    double eps = in.Double();
    if ((in.Byte() & 3) == 0) eps = std::ldexp(1.0, -static_cast<int>(in.Byte() % 100));
    MaybeSymmetric(in, &a[0], N, N);
    if ((in.Byte() & 3) != 0) {
        double M[K];
        for (int i = 0; i < K; ++i) M[i] = std::fmod(b[i], 64.0);
        const double d = (in.Byte() & 1) ? 1.0 : in.Double();
        for (int i = 0; i < N; ++i)
            for (int j = 0; j < N; ++j) {
                double s = i == j ? d : 0.0;
                for (int k = 0; k < N; ++k) s += M[i * N + k] * M[j * N + k];
                b[i * N + j] = s;
            }
    }
    Out<double, K> V;
    Out<double, N> lambda;
    const uint8_t r = f(eps, a.Exact(K), b.Exact(K), V.get(), lambda.get());
    a.Release(where);
    b.Release(where);
    QZ_FUZZ_CHECK(r <= 1, where);
    V.Check(r ? K : 0, where);
    lambda.Check(r ? N : 0, where);
    if (r) {
        for (int i = 0; i < N; ++i)
            QZ_FUZZ_CHECK(std::isfinite(lambda[i]), "generalized eigenvalue not finite");
    }
}

// ---- Euler angles, rotations, frames ---------------------------------------------------------

void Rotations(Input &in, int op) {
    In<16> t;
    t.Fill(in);
    const double a = in.Double(), b = in.Double(), c = in.Double();
    Out<double, 16> o, o2;
    switch (op % 14) {
        case 0:
            QZ_RotXARC(a, o.get());
            o.Check(9, "QZ_RotXARC");
            break;
        case 1:
            QZ_RotYARC(a, o.get());
            o.Check(9, "QZ_RotYARC");
            break;
        case 2:
            QZ_RotZARC(a, o.get());
            o.Check(9, "QZ_RotZARC");
            break;
        case 3:
            QZ_ZYZ2Matrix(a, b, c, o.get());
            o.Check(9, "QZ_ZYZ2Matrix");
            break;
        case 4:
        case 5: {
            const bool block = op % 14 == 5;
            Region<double, 16> m;
            for (int i = 0; i < 16; ++i) m[i] = t[i];
            if (block) {
                m.Open(3, 3, 4);
            } else {
                m.Open(9);
            }
            const uint32_t r =
                block ? QZ_Matrix42ZYZ(m.get(), o.get()) : QZ_Matrix2ZYZ(m.get(), o.get());
            m.Close("QZ_Matrix2ZYZ", false);
            QZ_FUZZ_CHECK(r <= 1, "QZ_Matrix2ZYZ result");
            o.Check(3, "QZ_Matrix2ZYZ");
            if (r == 0) QZ_FUZZ_CHECK(BitsOf(o[0]) == 0, "QZ_Matrix2ZYZ singular a");
            break;
        }
        case 6:
        case 7: {
            const bool block = op % 14 == 7;
            Region<double, 16> m;
            for (int i = 0; i < 16; ++i) m[i] = t[i];
            if (block) {
                m.Open(3, 3, 4);
            } else {
                m.Open(9);
            }
            const uint32_t r =
                block ? QZ_Matrix42XYZ(m.get(), o.get()) : QZ_Matrix2XYZ(m.get(), o.get());
            m.Close("QZ_Matrix2XYZ", false);
            QZ_FUZZ_CHECK(r == 1, "QZ_Matrix2XYZ result");
            o.Check(3, "QZ_Matrix2XYZ");
            break;
        }
        case 8: {
            const bool deg = in.Byte() & 1;
            deg ? QZ_XYZABC2Matrix4DEG(t.Exact(6), o.get())
                : QZ_XYZABC2Matrix4ARC(t.Exact(6), o.get());
            t.Release("QZ_XYZABC2Matrix4");
            o.Check(16, "QZ_XYZABC2Matrix4");
            QZ_FUZZ_CHECK(o[12] == 0.0 && o[13] == 0.0 && o[14] == 0.0 && o[15] == 1.0,
                          "QZ_XYZABC2Matrix4 bottom row");
            break;
        }
        case 9: {
            const int form = in.Byte() % 4;
            const double *tp = t.Exact(16);
            uint32_t r;
            switch (form) {
                case 0: r = QZ_Matrix2XYZABC4ARC_ZYZ(tp, o.get()); break;
                case 1: r = QZ_Matrix2XYZABC4DEG_ZYZ(tp, o.get()); break;
                case 2: r = QZ_Matrix2XYZABC4ARC_XYZ(tp, o.get()); break;
                default: r = QZ_Matrix2XYZABC4DEG_XYZ(tp, o.get()); break;
            }
            t.Release("QZ_Matrix2XYZABC4");
            QZ_FUZZ_CHECK(r <= 1 && (form < 2 || r == 1), "QZ_Matrix2XYZABC4 result");
            o.Check(6, "QZ_Matrix2XYZABC4");
            if (r == 0) {
                for (int i = 0; i < 3; ++i)
                    QZ_FUZZ_CHECK(o.Untouched(i), "QZ_Matrix2XYZABC4 singular position written");
            }
            break;
        }
        case 10: {
            // Both degree forms give the same matrix.
            const uint32_t r = QZ_ABC2Matrix3DEG(t.Exact(3), o.get());
            t.Release("QZ_ABC2Matrix3DEG");
            QZ_CALC_TRANS_FROM_Rotxyz(t.Exact(3), o2.get());
            t.Release("QZ_CALC_TRANS_FROM_Rotxyz");
            QZ_FUZZ_CHECK(r == 1, "QZ_ABC2Matrix3DEG result");
            o.Check(9, "QZ_ABC2Matrix3DEG");
            o2.Check(9, "QZ_CALC_TRANS_FROM_Rotxyz");
            QZ_FUZZ_CHECK(SameValues(o.get(), o2.get(), 9),
                          "QZ_CALC_TRANS_FROM_Rotxyz differs from QZ_ABC2Matrix3DEG");
            break;
        }
        case 11: {
            const uint32_t r = QZ_ABC2Matrix3ARC(t.Exact(3), o.get());
            t.Release("QZ_ABC2Matrix3ARC");
            QZ_FUZZ_CHECK(r == 1, "QZ_ABC2Matrix3ARC result");
            o.Check(9, "QZ_ABC2Matrix3ARC");
            break;
        }
        case 12: {
            QZ_XYZMRot(t.Exact(16), a, b, o.get());
            t.Release("QZ_XYZMRot");
            o.Check(16, "QZ_XYZMRot");
            QZ_FUZZ_CHECK(BitsOf(o[3]) == BitsOf(t[3]) && BitsOf(o[7]) == BitsOf(t[7]) &&
                              BitsOf(o[11]) == BitsOf(t[11]),
                          "QZ_XYZMRot position kept");
            QZ_FUZZ_CHECK(o[12] == 0.0 && o[13] == 0.0 && o[14] == 0.0 && o[15] == 1.0,
                          "QZ_XYZMRot bottom row");
            break;
        }
        default: {
            const uint8_t r = QZ_PGMatrixInv(t.Exact(12), o.get());  // the last row is not read
            t.Release("QZ_PGMatrixInv");
            QZ_FUZZ_CHECK(r == 1, "QZ_PGMatrixInv result");
            o.Check(16, "QZ_PGMatrixInv");
            QZ_FUZZ_CHECK(o[12] == 0.0 && o[13] == 0.0 && o[14] == 0.0 && o[15] == 1.0,
                          "QZ_PGMatrixInv bottom row");
            break;
        }
    }
    t.Release("rotations");
}

void Frames(Input &in, int op) {
    In<8> u, w;
    u.Fill(in);
    w.Fill(in);
    Out<double, 18> o;
    switch (op % 5) {
        case 0: {
            const double a = in.Double(), b = in.Double(), c = in.Double(), d = in.Double();
            QZ_DH2Matrix(a, b, c, d, o.get());
            o.Check(16, "QZ_DH2Matrix");
            break;
        }
        case 1:
            QZ_Skew(u.Exact(3), o.get());
            u.Release("QZ_Skew");
            o.Check(9, "QZ_Skew");
            break;
        case 2:
            QZ_LOperator(u.Exact(3), o.get());
            u.Release("QZ_LOperator");
            o.Check(18, "QZ_LOperator");
            break;
        case 3: {
            Out<double, 3> d1, d2, x;
            for (int i = 0; i < 3; ++i) {
                d1[i] = in.Double();
                d2[i] = (in.Byte() & 3) == 0 ? d1[i] * -2.0 : in.Double();  // parallel now and then
            }
            const uint32_t r = QZ_LineCross(u.Exact(3), d1.get(), w.Exact(3), d2.get(), x.get());
            u.Release("QZ_LineCross");
            w.Release("QZ_LineCross");
            QZ_FUZZ_CHECK(r <= 1, "QZ_LineCross result");
            d1.Check(3, "QZ_LineCross d1");
            d2.Check(3, "QZ_LineCross d2");
            x.Check(r ? 3 : 0, "QZ_LineCross");
            break;
        }
        default: {
            // out = v + m x over n rows and cols columns; out may be v.
            RowMat<8, 8> m;
            const int32_t n = CountUpTo(in, 8), cols = CountUpTo(in, 8);
            const int N = Pos(n), C = Pos(cols);
            m.Fill(in, 8, 8);
            Out<double, 8> out, alias;
            m.Open(N, C);
            QZ_VectAddMV(u.Exact(N), m.get(), n, cols, w.Exact(C), out.get());
            u.Release("QZ_VectAddMV");
            w.Release("QZ_VectAddMV");
            m.Close("QZ_VectAddMV", false);
            out.Check(N, "QZ_VectAddMV");
            if (C == 0)
                QZ_FUZZ_CHECK(SameArray(out.get(), &u[0] + 8 - N, N),
                              "QZ_VectAddMV copies v for cols < 1");
            for (int i = 0; i < N; ++i) alias[i] = u[8 - N + i];
            m.Open(N, C);
            QZ_VectAddMV(alias.get(), m.get(), n, cols, w.Exact(C), alias.get());
            w.Release("QZ_VectAddMV");
            m.Close("QZ_VectAddMV in place", false);
            alias.Check(N, "QZ_VectAddMV in place");
            QZ_FUZZ_CHECK(SameArray(alias.get(), out.get(), N), "QZ_VectAddMV in place bits");
            break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input in(data, size);
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        const int sub = in.Byte();
        const int size7 = sub % 7;  // sizes 2..8 of the fixed families
        switch (op % 14) {
            case 0:
            case 1:
                switch (size7) {
                    case 0: FixedVect<2>(in, kVect[0], sub / 7); break;
                    case 1: FixedVect<3>(in, kVect[1], sub / 7); break;
                    case 2: FixedVect<4>(in, kVect[2], sub / 7); break;
                    case 3: FixedVect<5>(in, kVect[3], sub / 7); break;
                    case 4: FixedVect<6>(in, kVect[4], sub / 7); break;
                    case 5: FixedVect<7>(in, kVect[5], sub / 7); break;
                    default: FixedVect<8>(in, kVect[6], sub / 7); break;
                }
                break;
            case 2: CountedVect(in, sub); break;
            case 3:
            case 4:
                switch (size7) {
                    case 0: FixedMat<2>(in, kMat[0], sub / 7); break;
                    case 1: FixedMat<3>(in, kMat[1], sub / 7); break;
                    case 2: FixedMat<4>(in, kMat[2], sub / 7); break;
                    case 3: FixedMat<5>(in, kMat[3], sub / 7); break;
                    case 4: FixedMat<6>(in, kMat[4], sub / 7); break;
                    case 5: FixedMat<7>(in, kMat[5], sub / 7); break;
                    default: FixedMat<8>(in, kMat[6], sub / 7); break;
                }
                break;
            case 5: Shapes(in, sub); break;
            case 6: RowPointer(in, sub); break;
            case 7: Lup(in); break;
            case 8: (sub & 1) ? Determinant(in) : PseudoInverse(in); break;
            case 9:
                switch (sub % 3) {
                    case 0: CholeskyIn<6>(in, Cholesky, "Cholesky"); break;
                    case 1: CholeskyIn<7>(in, Cholesky7, "Cholesky7"); break;
                    default: Vmv(in); break;
                }
                break;
            case 10: Eigen(in, sub); break;
            case 11:
                (sub & 1) ? GeneralizedEig<7>(in, generalized_eig7, "generalized_eig7")
                          : GeneralizedEig<6>(in, generalized_eig, "generalized_eig");
                break;
            case 12: Rotations(in, sub); break;
            default: Frames(in, sub); break;
        }
    }
    return 0;
}
