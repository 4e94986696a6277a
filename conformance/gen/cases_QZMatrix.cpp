// Cases for the vector, matrix, decomposition, Euler-angle, frame and Jacobian functions.
#include <cmath>
#include <string>

#include "QZMatrix.h"
#include "gen.h"

namespace qzgen {
namespace {

const double kPi = 3.141592653589793;
const double kHalfPi = 1.5707963267948966;
const double kDeg = 0.017453292519943295;

using qzgen::Randoms;
// n values from the range most cases of this module draw from.
Doubles Randoms(int n) { return Randoms(n, -10, 10); }
Doubles Filled(int n, double x) { return Doubles(n, x); }
// n values from the specials, cycling, so every special meets every position over a few cases.
Doubles SpecialMix(int n, int shift) {
    Doubles s = Specials(), v;
    for (int k = 0; k < n; ++k) v.push_back(s[(k + shift) % s.size()]);
    return v;
}
// x stepped k ulps (k may be negative).
double Ulps(double x, int k) {
    for (; k > 0; --k) x = Up(x);
    for (; k < 0; ++k) x = Down(x);
    return x;
}
Doubles Identity(int n, int stride) {
    Doubles m(stride * n, 0.0);
    for (int i = 0; i < n; ++i) m[i * stride + i] = 1.0;
    return m;
}
// Symmetric n-by-n (contiguous) with random entries.
Doubles Symmetric(int n, double lo, double hi) {
    Doubles m(n * n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j) m[i * n + j] = m[j * n + i] = Uniform(lo, hi);
    return m;
}
// Symmetric positive definite G G^T + n I in the given storage stride.
Doubles Spd(int n, int stride) {
    Doubles g = Randoms(n * n, -1, 1), m(stride * stride, 0.0);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double s = i == j ? (double)n : 0.0;
            for (int k = 0; k < n; ++k) s += g[i * n + k] * g[j * n + k];
            m[i * stride + j] = s;
        }
    return m;
}
// Rotation matrix (9) of random XYZ angles, from the library's own conversion.
Doubles RandomRotation() {
    double abc[3] = {Uniform(-kPi, kPi), Uniform(-kHalfPi, kHalfPi), Uniform(-kPi, kPi)}, r[9];
    QZ_ABC2Matrix3ARC(abc, r);
    return Doubles(r, r + 9);
}
Doubles Transform(const Doubles &r9, const Doubles &p) {
    return {r9[0], r9[1], r9[2], p[0], r9[3], r9[4], r9[5], p[1],
            r9[6], r9[7], r9[8], p[2], 0.0,   0.0,   0.0,   1.0};
}
Doubles RandomTransform() { return Transform(RandomRotation(), Randoms(3, -2, 2)); }

// ---- Vectors ----------------------------------------------------------------------------------

void Vectors(Writer &w) {
    w.comment("fixed sizes: random, zero and near-zero lengths (the 1e-16 guard), specials");
    for (int n = 2; n <= 8; ++n) {
        std::string s = std::to_string(n);
        std::string norm = "QZ_VectNorm" + s, cpy = "QZ_VectCpy" + s, add = "QZ_VectAdd" + s,
                    sa = "QZ_VectSA" + s;
        for (int k = 0; k < 6; ++k) w.pure(norm.c_str(), "ordinary", {}, {}, Randoms(n));
        for (double len : Join({Around(1e-16), {0.0, -0.0, 2e-16, 5e-324}})) {
            Doubles v(n, 0.0);
            v[n - 1] = len;
            w.pure(norm.c_str(), "guard", {}, {}, v);
        }
        // a length whose square root lands on the guard: n equal elements of 1e-16 / sqrt(n)
        for (int k = -1; k <= 1; ++k)
            w.pure(norm.c_str(), "guard-spread", {}, {},
                   Filled(n, Ulps(1e-16 / std::sqrt((double)n), k)));
        for (int k = 0; k < 3; ++k) w.pure(norm.c_str(), "special", {}, {}, SpecialMix(n, k * 5));
        w.pure(norm.c_str(), "overflow", {}, {}, Filled(n, 1e200));
        Doubles bits = {-0.0};
        while ((int)bits.size() < n) bits.push_back(AnyBits());
        w.pure(cpy.c_str(), "bits", bits);
        for (int k = 0; k < 4; ++k) {
            w.pure(add.c_str(), "ordinary", Randoms(2 * n));
            w.pure(sa.c_str(), "ordinary", Randoms(2 * n + 1));
        }
        w.pure(add.c_str(), "signed-zeros", Join({Filled(n, -0.0), Filled(n, -0.0)}));
        w.pure(add.c_str(), "special", SpecialMix(2 * n, 3));
        Doubles zsa = Join({Filled(n, -0.0), Filled(n, 0.0), {-1.0}});
        w.pure(sa.c_str(), "signed-zeros", zsa);
        w.pure(sa.c_str(), "special", SpecialMix(2 * n + 1, 1));
        std::string adda = add + ".OutisA", sab = sa + ".OutisB";
        for (int k = 0; k < 2; ++k) {
            w.pure(adda.c_str(), "aliased", Randoms(n), {}, Randoms(n));
            w.pure(sab.c_str(), "aliased", Randoms(n + 1), {}, Randoms(n));
        }
    }

    w.comment("counted vectors: n from -1 to 8, aliased outputs, the unit-scale copy");
    const int counts[] = {-1, 0, 1, 3, 5, 8};
    for (int n : counts) {
        for (const char *fn :
             {"QZ_VectSub", "QZ_VectAddX", "QZ_VectDotMult", "QZ_VectDot", "QZ_VectAngle"})
            w.pure(fn, "ordinary", Randoms(16), {n});
        w.pure("QZ_VectSAX", "ordinary", Randoms(17), {n});
        w.pure("QZ_VectScale", "ordinary", Randoms(9), {n});
        w.pure("QZ_VectLength", "ordinary", Randoms(8), {n});
        w.pure("QZ_VectNorm", "ordinary", {}, {n}, Randoms(8));
        w.pure("VectNormalized", "ordinary", Randoms(8), {n});
        for (const char *fn : {"QZ_VectSub.OutisB", "QZ_VectAddX.OutisA", "QZ_VectDotMult.OutisA"})
            w.pure(fn, "aliased", Randoms(8), {n}, Randoms(8));
        w.pure("QZ_VectSAX.OutisB", "aliased", Randoms(9), {n}, Randoms(8));
        w.pure("QZ_VectScale.same", "aliased", Randoms(1), {n}, Randoms(8));
        w.pure("VectNormalized.same", "aliased", {}, {n}, Randoms(8));
    }
    for (int n : {-1, 0, 1, 2, 3, 4})
        for (int k = 0; k < 2; ++k) w.pure("CalShadowVector", "ordinary", Randoms(6), {n});
    w.pure("QZ_VectSub", "signed-zeros", Join({Filled(8, -0.0), Filled(8, 0.0)}), {8});
    w.pure("QZ_VectDot", "signed-zeros", Join({Filled(8, -0.0), Filled(8, 1.0)}), {8});
    w.pure("QZ_VectDot", "special", SpecialMix(16, 2), {8});
    w.pure("QZ_VectLength", "overflow", Filled(8, 1e200), {8});
    w.pure("QZ_VectLength", "special", SpecialMix(8, 4), {8});
    // the unit scale: s - 1 within 1e-16 copies, beyond it multiplies
    for (double s : Join({Around(1.0), {Ulps(1.0, 2), Ulps(1.0, -2), -0.0}}))
        w.pure("QZ_VectScale", "unit-scale",
               Join({Doubles{kNaN, -0.0, 3.0, FromBits(1), 1e308}, Filled(3, 0.1), {s}}), {8});
    // the length guard of QZ_VectNorm and QZ_VectAngle, and VectNormalized's 1e-6 floor
    for (double len : Join({Around(1e-16), Around(1e-6), {0.0}})) {
        Doubles v(8, 0.0);
        v[2] = len;
        w.pure("QZ_VectNorm", "guard", {}, {8}, v);
        w.pure("VectNormalized", "floor", v, {8});
        w.pure("QZ_VectAngle", "guard", Join({v, Filled(8, 1.0)}), {8});
        w.pure("QZ_VectAngle", "guard", Join({Filled(8, 1.0), v}), {8});
        w.pure("CalShadowVector", "floor", {1.0, 2.0, 3.0, len, 0.0, 0.0}, {3});
    }
    w.comment("angle: parallel and opposite (cosine clamp), perpendicular, NaN");
    w.pure("QZ_VectAngle", "parallel", {0.1, 0.2, 0.3, 0, 0, 0, 0, 0, 0.1, 0.2, 0.3}, {3});
    w.pure("QZ_VectAngle", "parallel-scaled", {0.1, 0.2, 0.3, 0, 0, 0, 0, 0, 0.3, 0.6, 0.9}, {3});
    w.pure("QZ_VectAngle", "opposite", {0.1, 0.2, 0.3, 0, 0, 0, 0, 0, -0.1, -0.2, -0.3}, {3});
    w.pure("QZ_VectAngle", "perpendicular", {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}, {3});
    w.pure("QZ_VectAngle", "nan", {kNaN, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0}, {3});
    for (int k = 0; k < 20; ++k) w.pure("QZ_VectAngle", "ordinary", Randoms(16), {3});

    w.comment("3-vectors: cross product, distances, the 1e-9 squared-distance guard");
    for (int k = 0; k < 10; ++k) {
        w.pure("QZ_VectCross", "ordinary", Randoms(6));
        w.pure("QZ_GetVectLenA2B", "ordinary", Randoms(6));
        w.pure("QZ_GetVectNormA2B", "ordinary", Randoms(6));
        w.pure("QZ_GetVectNormLenA2B", "ordinary", Randoms(6));
        w.pure("QZ_GetVectNormA2B.OutisA", "aliased", Randoms(3), {}, Randoms(3));
        w.pure("QZ_GetVectNormA2B.OutisB", "aliased", Randoms(3), {}, Randoms(3));
    }
    w.pure("QZ_VectCross", "signed-zeros", {-0.0, 0.0, -0.0, 0.0, -0.0, 0.0});
    w.pure("QZ_VectCross", "parallel", {1, 2, 3, 2, 4, 6});
    w.pure("QZ_VectCross", "special", SpecialMix(6, 0));
    const double edge = std::sqrt(1e-9);
    for (int k = -2; k <= 2; ++k) {
        double d = Ulps(edge, k);
        for (const char *fn : {"QZ_GetVectNormA2B", "QZ_GetVectNormLenA2B"}) {
            w.pure(fn, "guard", {0, 0, 0, d, 0, 0});
            w.pure(fn, "guard", {1.5, -2, 0.25, 1.5, -2, 0.25 - d});
        }
    }
    for (const char *fn : {"QZ_GetVectNormA2B", "QZ_GetVectNormLenA2B"}) {
        w.pure(fn, "same-point", {1, 2, 3, 1, 2, 3});
        w.pure(fn, "signed-zeros", {0.0, -0.0, 0.0, -0.0, 0.0, -0.0});
        w.pure(fn, "nan", {kNaN, 0, 0, 1, 1, 1});
    }
}
Register vectors("QZMatrix_vector", Vectors);

// ---- Matrices ---------------------------------------------------------------------------------

void Matrices(Writer &w) {
    w.comment("square family: random, signed zeros (the k = 0 start), specials, aliased sums");
    for (int n = 2; n <= 8; ++n) {
        std::string s = std::to_string(n);
        std::string mult = "QZ_MatrixMult" + s, cpy = "QZ_MatrixCpy" + s,
                    id = "QZ_MatrixIdentity" + s, add = "QZ_MatrixAdd" + s,
                    tr = "QZ_MatrixTranspose" + s, addb = add + ".OutisB";
        int nn = n * n;
        for (int k = 0; k < 3; ++k) {
            w.pure(mult.c_str(), "ordinary", Randoms(2 * nn));
            w.pure(add.c_str(), "ordinary", Randoms(2 * nn));
            w.pure(addb.c_str(), "aliased", Randoms(nn), {}, Randoms(nn));
        }
        w.pure(mult.c_str(), "signed-zeros", Join({Filled(nn, -0.0), Filled(nn, 1.0)}));
        w.pure(mult.c_str(), "signed-zeros", Join({Filled(nn, -0.0), Filled(nn, 0.0)}));
        w.pure(mult.c_str(), "special", SpecialMix(2 * nn, 1));
        w.pure(add.c_str(), "signed-zeros", Join({Filled(nn, -0.0), Filled(nn, -0.0)}));
        Doubles bits;
        for (int k = 0; k < nn; ++k) bits.push_back(k % 3 ? AnyBits() : -0.0);
        w.pure(cpy.c_str(), "bits", bits);
        w.pure(tr.c_str(), "bits", bits);
        w.pure(id.c_str(), "identity", {});
    }

    w.comment("single shapes: sums from 0.0 (a lone -0.0 product gives +0.0) or from k = 0");
    struct Shape {
        const char *fn;
        int nd;
    };
    const Shape shapes[] = {{"QZ_MatrixMult6777", 91},
                            {"QZ_MatrixMult6776", 84},
                            {"QZ_MMM44", 32},
                            {"QZ_MatrixMult3m4", 25},
                            {"QZ_MatrixSub67", 84},
                            {"QZ_MmultDiagM66", 42},
                            {"QZ_Mat67Transpose", 42},
                            {"Mat4433Transpose", 16},
                            {"MatTr33", 9},
                            {"MatTr44", 16},
                            {"QZ_MatrixMultVect3", 12},
                            {"QZ_MatrixMultVect4", 20},
                            {"QZ_MatrixMultVect6", 42},
                            {"QZ_MatrixMultVect7", 56},
                            {"QZ_Matrix67MultVect7", 49},
                            {"QZ_Matrix76MultVect6", 48},
                            {"QZ_MVmult43", 19},
                            {"QZ_VMmult1666", 42},
                            {"QZ_VMmult1777", 56}};
    for (const Shape &sh : shapes) {
        for (int k = 0; k < 4; ++k) w.pure(sh.fn, "ordinary", Randoms(sh.nd));
        w.pure(sh.fn, "signed-zeros", Filled(sh.nd, -0.0));
        Doubles half = Join({Filled(sh.nd / 2, -0.0), Filled(sh.nd - sh.nd / 2, 1.0)});
        w.pure(sh.fn, "signed-zeros", half);
        w.pure(sh.fn, "special", SpecialMix(sh.nd, 2));
    }
    for (int k = 0; k < 3; ++k) {
        w.pure("QZ_MatrixSub67.OutisA", "aliased", Randoms(42), {}, Randoms(42));
        w.pure("QZ_MatrixSub67.OutisB", "aliased", Randoms(42), {}, Randoms(42));
        w.pure("QZ_MmultDiagM66.OutisA", "aliased", Randoms(6), {}, Randoms(36));
    }

    w.comment("row-pointer matrices: shapes up to 8 by 8, empty and negative counts, aliasing");
    const int dims[][3] = {{1, 1, 1},  {2, 3, 4},  {3, 2, 5}, {4, 4, 4}, {8, 8, 8},
                           {7, 6, 1},  {1, 8, 8},  {0, 3, 3}, {3, 0, 3}, {3, 3, 0},
                           {-1, 3, 3}, {3, -2, 3}, {2, 3, -1}};
    for (const auto &d : dims) {
        int r = d[0], c = d[1], p = d[2];
        w.pure("QZ_MatrixAddX", "shape", Randoms(128), {r, c});
        w.pure("QZ_MatrixAddX.OutisA", "shape", Randoms(64), {r, c}, Randoms(64));
        w.pure("QZ_MatrixAddX.OutisB", "shape", Randoms(64), {r, c}, Randoms(64));
        w.pure("QZ_MatrixTransposeXX", "shape", Randoms(64), {r, c});
        w.pure("QZ_MatrixMultXmX", "shape", Randoms(128), {r, c, p});
        w.pure("QZ_MatrixMultVectX", "shape", Randoms(72), {r, c});
    }
    w.pure("QZ_MatrixMultXmX", "signed-zeros", Join({Filled(64, -0.0), Filled(64, 1.0)}),
           {3, 1, 3});
    w.pure("QZ_MatrixMultVectX", "signed-zeros", Join({Filled(64, -0.0), Filled(8, 1.0)}), {4, 2});
    w.pure("QZ_MatrixAddX", "special", SpecialMix(128, 5), {8, 8});
}
Register matrices("QZMatrix_matrix", Matrices);

// ---- Inverses, determinant, LUP, pseudo-inverses ----------------------------------------------

void Inverses(Writer &w) {
    w.comment("inverses: random, singular, the 1e-16 pivot bound hit and one ulp either side");
    for (int n = 2; n <= 8; ++n) {
        std::string fn = "QZ_MatrixInv" + std::to_string(n), same = fn + ".same";
        int nn = n * n;
        for (int k = 0; k < 4; ++k) w.pure(fn.c_str(), "ordinary", Randoms(nn));
        for (int k = 0; k < 2; ++k) w.pure(same.c_str(), "aliased", {}, {}, Randoms(nn));
        Doubles sing = Randoms(nn);
        for (int j = 0; j < n; ++j) sing[(n - 1) * n + j] = sing[j];  // two equal rows
        w.pure(fn.c_str(), "singular", sing);
        w.pure(same.c_str(), "singular", {}, {}, sing);
        w.pure(fn.c_str(), "zero", Filled(nn, 0.0));
        for (double p : Join({Around(1e-16), Around(-1e-16)})) {
            Doubles m = Identity(n, n);
            m[nn - 1] = p;
            w.pure(fn.c_str(), "pivot-bound", m);
            Doubles m2 = Identity(n, n);
            m2[0] = p;  // the first column's largest value at the bound
            w.pure(fn.c_str(), "pivot-bound", m2);
        }
        w.pure(fn.c_str(), "signed-zeros", [&] {
            Doubles m = Identity(n, n);
            for (double &x : m)
                if (x == 0) x = -0.0;
            return m;
        }());
        w.pure(fn.c_str(), "special", SpecialMix(nn, n));
    }
    for (int k = 0; k < 5; ++k) w.pure("QZ_PGMatrixInv", "rigid", RandomTransform());
    w.pure("QZ_PGMatrixInv", "bottom-row-ignored", Join({Randoms(12), {kNaN, 5, 6, 7}}));
    w.pure("QZ_PGMatrixInv", "signed-zeros", Filled(16, -0.0));

    w.comment("determinant: leading blocks of an 8-by-8 array, n from -1 to 9");
    for (int n = -1; n <= 9; ++n)
        for (int k = 0; k < 2; ++k) w.pure("QZ_MatrixDeterminant", "ordinary", Randoms(64), {n});
    w.pure("QZ_MatrixDeterminant", "signed-zero", Join({{-0.0}, Filled(63, 1.0)}), {1});
    w.pure("QZ_MatrixDeterminant", "singular", Filled(64, 2.0), {4});
    w.pure("QZ_MatrixDeterminant", "special", SpecialMix(64, 7), {3});

    w.comment("LUP: shapes, long rows (exchanged in blocks), the 1e-16 pivot bound");
    const int shapes[][2] = {{1, 1},  {3, 3},  {4, 6},  {6, 4}, {8, 8}, {1, 5},  {5, 1}, {11, 11},
                             {2, 64}, {3, 40}, {16, 8}, {0, 3}, {3, 0}, {-1, 3}, {3, -1}};
    for (const auto &s : shapes)
        for (int k = 0; k < 2; ++k) w.pure("QZ_MatLUPD", "shape", {}, {s[0], s[1]}, Randoms(128));
    for (double p : Join({Around(1e-16), Around(-1e-16), {0.0, -0.0}})) {
        Doubles m = Identity(3, 3);
        m.resize(128, 0.0);
        m[4] = p;
        w.pure("QZ_MatLUPD", "pivot-bound", {}, {3, 3}, m);
    }
    {
        Doubles sing = Randoms(128);
        for (int j = 0; j < 5; ++j) sing[10 + j] = 2 * sing[j];
        w.pure("QZ_MatLUPD", "singular", {}, {3, 5}, sing);
    }
    // Solve, determinant and inverse from decompositions the library made.
    for (int n = -1; n <= 8; ++n) {
        for (int k = 0; k < 3; ++k) {
            Doubles a = Randoms(64);
            if (k == 2) {
                // the reversal permutation over -0.0: exchanges only, signed zeros in L and U
                a.assign(64, -0.0);
                for (int i = 0; i < n; ++i) a[i * n + (n - 1 - i)] = 1.0;
            }
            std::vector<double *> rows;
            for (int i = 0; i < std::max(n, 0); ++i) rows.push_back(a.data() + i * n);
            Ints p(10, 0);
            if (n > 0 && QZ_MatLUPD(rows.data(), n, n, p.data() + 1) != 0) continue;
            p[0] = n;
            w.pure("QZ_LUPSolveEq", "decomposed", Join({a, Randoms(8)}), p);
            w.pure("QZ_MatLUPDet", "decomposed", a, p);
            w.pure("QZ_MatLUPInv", "decomposed", a, p);
        }
    }
    {
        // a zero pivot left in U: no singularity test, inf and NaN come out
        Doubles a = {1, 2, 0, 0};
        a.resize(64, 0.0);
        w.pure("QZ_MatLUPInv", "zero-pivot", a, {2, 0, 1, 0});
        w.pure("QZ_MatLUPDet", "zero-pivot", a, {2, 0, 1, 0});
        w.pure("QZ_LUPSolveEq", "zero-pivot", Join({a, Filled(8, 1.0)}), {2, 0, 1, 0});
    }

    w.comment("pseudo-inverses: full rank, rank-deficient, entries small enough to fail");
    for (const char *fn : {"QZ_LeftPsoInv76", "QZ_RightPsoInv67"}) {
        std::string same = std::string(fn) + ".same";
        for (int k = 0; k < 5; ++k) w.pure(fn, "ordinary", Randoms(42, -1, 1));
        for (int k = 0; k < 2; ++k) w.pure(same.c_str(), "aliased", {}, {}, Randoms(42, -1, 1));
        Doubles def = Randoms(42, -1, 1);
        // A 7x6 with two equal columns / a 6x7 with two equal rows
        if (std::string(fn) == "QZ_LeftPsoInv76")
            for (int i = 0; i < 7; ++i) def[i * 6 + 5] = def[i * 6];
        else
            for (int j = 0; j < 7; ++j) def[35 + j] = def[j];
        w.pure(fn, "rank-deficient", def);
        w.pure(same.c_str(), "rank-deficient", {}, {}, def);
        for (double s : {1e-8, 1e-9, 1e-7}) {
            Doubles m = Randoms(42, -1, 1);
            for (double &x : m) x *= s;
            w.pure(fn, "small", m);
        }
        w.pure(fn, "zero", Filled(42, 0.0));
        w.pure(fn, "special", SpecialMix(42, 3));
    }
}
Register inverses("QZMatrix_inverse", Inverses);

// ---- Cholesky and eigen -----------------------------------------------------------------------

void Decompositions(Writer &w) {
    w.comment("Cholesky: n from -1 past the storage, positive definite, semi-definite, indefinite");
    struct Ch {
        const char *fn;
        const char *same;
        int stride;
    };
    for (const Ch &c : {Ch{"Cholesky", "Cholesky.same", 6}, Ch{"Cholesky7", "Cholesky7.same", 7}}) {
        int cap = c.stride * c.stride;
        for (int n = -1; n <= c.stride + 1; ++n) {
            int m = std::max(1, std::min(n, c.stride));
            Doubles a = Spd(m, c.stride);
            w.pure(c.fn, "spd", a, {n});
            w.pure(c.same, "spd", {}, {n}, a);
        }
        Doubles semi(cap, 1.0);  // all ones: the second reduced diagonal is exactly 0
        w.pure(c.fn, "semi-definite", semi, {3});
        w.pure(c.same, "semi-definite", {}, {3}, semi);
        Doubles ind = Spd(4, c.stride);
        ind[2 * c.stride + 2] = -5.0;
        w.pure(c.fn, "indefinite", ind, {4});
        Doubles upper = Spd(3, c.stride);
        upper[1] = kNaN;  // above the diagonal: never read
        w.pure(c.fn, "upper-unread", upper, {3});
        w.pure(c.fn, "negative-zero", Join({{-0.0}, Filled(cap - 1, 0.0)}), {1});
        w.pure(c.fn, "special", SpecialMix(cap, 2), {2});
    }
    for (int n = -1; n <= 8; ++n) w.pure("VMV", "ordinary", Randoms(56), {n});
    w.pure("VMV", "signed-zeros", Join({Filled(7, -0.0), Filled(49, 1.0)}), {3});
    w.pure("VMV", "special", SpecialMix(56, 4), {7});

    w.comment("eig: sizes 0 to 9, the eps and entry rejections, repeated and tiny eigenvalues");
    for (int n = 0; n <= 9; ++n) {
        int m = std::max(1, std::min(n, 8));
        for (int k = 0; k < 2; ++k) {
            Doubles a = Symmetric(m, -5, 5);
            a.resize(64, 0.0);
            w.pure("eig", "ordinary", {1e-14}, {n}, a);
        }
    }
    for (double eps : {0.0, -1e-12, kNaN, kInf, 1e-3, 4.9e-324}) {
        Doubles a = Symmetric(4, -1, 1);
        a.resize(64, 0.0);
        w.pure("eig", "eps", {eps}, {4}, a);
    }
    for (double bad : Join({Around(1e150), Around(-1e150), {kInf, kNaN}})) {
        Doubles a = Symmetric(3, -1, 1);
        a[5] = a[7] = bad;
        a.resize(64, 0.0);
        w.pure("eig", "entry-bound", {1e-12}, {3}, a);
    }
    {
        Doubles a = Identity(5, 5);
        a.resize(64, 0.0);
        w.pure("eig", "diagonal", {1e-15}, {5}, a);
        Doubles allEq = Filled(36, 1.0);  // eigenvalues 6 and a five-fold 0
        allEq.resize(64, 0.0);
        w.pure("eig", "repeated", {1e-15}, {6}, allEq);
        Doubles tiny = {1e-170, 1e-170, 1e-170, 1e-170};  // equal diagonal, x^2 + y^2 underflows
        tiny.resize(64, 0.0);
        w.pure("eig", "undefined-rotation", {1e-300}, {2}, tiny);
        Doubles neg = {-0.0, -0.0, -0.0, -0.0};
        neg.resize(64, 0.0);
        w.pure("eig", "signed-zeros", {1e-15}, {2}, neg);
        Doubles scaled = Symmetric(4, -1e140, 1e140);
        scaled.resize(64, 0.0);
        w.pure("eig", "large-scale", {1e-3}, {4}, scaled);
    }
    for (int k = 0; k < 4; ++k) w.pure("eig7", "ordinary", {1e-14}, {}, Symmetric(7, -3, 3));
    w.pure("eig7", "identity", {1e-14}, {}, Identity(7, 7));
    w.pure("eig7", "eps-zero", {0.0}, {}, Symmetric(7, -3, 3));

    w.comment("generalized eigenproblem: positive definite B, indefinite B, failing eig");
    struct Ge {
        const char *fn;
        int n;
    };
    for (const Ge &g : {Ge{"generalized_eig", 6}, Ge{"generalized_eig7", 7}}) {
        int nn = g.n * g.n;
        for (int k = 0; k < 4; ++k)
            w.pure(g.fn, "ordinary", Join({{1e-14}, Symmetric(g.n, -3, 3), Spd(g.n, g.n)}));
        w.pure(g.fn, "identity-B", Join({{1e-14}, Symmetric(g.n, -3, 3), Identity(g.n, g.n)}));
        Doubles bad = Spd(g.n, g.n);
        bad[nn - 1] = -1.0;
        w.pure(g.fn, "indefinite-B", Join({{1e-14}, Symmetric(g.n, -3, 3), bad}));
        w.pure(g.fn, "eps-zero", Join({{0.0}, Symmetric(g.n, -3, 3), Spd(g.n, g.n)}));
        Doubles a = Symmetric(g.n, -3, 3);
        a[1] = a[g.n] = kNaN;
        w.pure(g.fn, "nan-A", Join({{1e-14}, a, Spd(g.n, g.n)}));
        // B = s I: factor pivots sqrt(s), 3.2e-9 passes, 3.2e-17 is at most 1e-16 and fails
        for (double s : {1e-17, 1e-33}) {
            Doubles b = Identity(g.n, g.n);
            for (double &x : b) x *= s;
            w.pure(g.fn, "small-B", Join({{1e-14}, Symmetric(g.n, -3, 3), b}));
        }
    }
}
Register decompositions("QZMatrix_decomposition", Decompositions);

// ---- Euler angles -----------------------------------------------------------------------------

void Euler(Writer &w) {
    w.comment("elementary rotations: quadrant angles, signed zeros, specials");
    Doubles angles = Join({Around(kHalfPi),
                           Around(kPi),
                           Around(-kHalfPi),
                           {0.0, -0.0, 1e-300, 0.5, -2.0},
                           Randoms(10, -7, 7)});
    for (const char *fn : {"QZ_RotXARC", "QZ_RotYARC", "QZ_RotZARC"}) {
        for (double a : angles) w.pure(fn, "angle", {a});
        for (double a : {kInf, kNaN}) w.pure(fn, "special", {a});
    }
    for (int k = 0; k < 10; ++k) w.pure("QZ_ZYZ2Matrix", "ordinary", Randoms(3, -4, 4));
    w.pure("QZ_ZYZ2Matrix", "signed-zeros", {-0.0, -0.0, -0.0});

    w.comment("ZYZ extraction: random, b around the half-degree branch, b = 0 and pi");
    for (int k = 0; k < 12; ++k) {
        double r[9];
        QZ_ZYZ2Matrix(Uniform(-kPi, kPi), Uniform(0.01, kPi - 0.01), Uniform(-kPi, kPi), r);
        Doubles rr(r, r + 9);
        w.pure("QZ_Matrix2ZYZ", "ordinary", rr);
        Doubles t = Transform(rr, Randoms(3));
        w.pure("QZ_Matrix42ZYZ", "ordinary", t);
        w.pure("QZ_Matrix2XYZABC4ARC_ZYZ", "ordinary", t);
        w.pure("QZ_Matrix2XYZABC4DEG_ZYZ", "ordinary", t);
    }
    // b a few ulps either side of half a degree, about z turns of 0.3 and -1.1
    for (int k = -6; k <= 6; ++k) {
        double r[9];
        QZ_ZYZ2Matrix(0.3, Ulps(0.008726646259971648, k), -1.1, r);
        Doubles rr(r, r + 9);
        w.pure("QZ_Matrix2ZYZ", "half-degree", rr);
        Doubles t = Transform(rr, {1, 2, 3});
        w.pure("QZ_Matrix42ZYZ", "half-degree", t);
        w.pure("QZ_Matrix2XYZABC4ARC_ZYZ", "half-degree", t);
        w.pure("QZ_Matrix2XYZABC4DEG_ZYZ", "half-degree", t);
    }
    for (double b : {0.0, -0.0, 1e-9, kPi, Ulps(kPi, -1), kPi - 1e-9}) {
        double r[9];
        QZ_ZYZ2Matrix(0.7, b, 0.2, r);
        Doubles rr(r, r + 9);
        w.pure("QZ_Matrix2ZYZ", "b-end", rr);
        w.pure("QZ_Matrix2XYZABC4DEG_ZYZ", "b-end", Transform(rr, {-1, 0.5, 2}));
    }
    w.pure("QZ_Matrix2ZYZ", "identity", Identity(3, 3));
    w.pure("QZ_Matrix2ZYZ", "signed-zeros", {1, -0.0, -0.0, -0.0, 1, -0.0, -0.0, -0.0, 1});
    w.pure("QZ_Matrix2ZYZ", "special", SpecialMix(9, 0));

    w.comment("XYZ extraction: random, B at and around +-pi/2 (cos B exactly 0 to 1e-16)");
    for (int k = 0; k < 12; ++k) {
        Doubles r = RandomRotation();
        w.pure("QZ_Matrix2XYZ", "ordinary", r);
        Doubles t = Transform(r, Randoms(3));
        w.pure("QZ_Matrix42XYZ", "ordinary", t);
        w.pure("QZ_Matrix2XYZABC4ARC_XYZ", "ordinary", t);
        w.pure("QZ_Matrix2XYZABC4DEG_XYZ", "ordinary", t);
    }
    for (double b :
         Join({Around(kHalfPi), Around(-kHalfPi), {Ulps(kHalfPi, -3), Ulps(-kHalfPi, 3)}})) {
        double abc[3] = {0.4, b, -0.9}, r[9];
        QZ_ABC2Matrix3ARC(abc, r);
        Doubles rr(r, r + 9);
        w.pure("QZ_Matrix2XYZ", "gimbal", rr);
        Doubles t = Transform(rr, {0.1, 0.2, 0.3});
        w.pure("QZ_Matrix42XYZ", "gimbal", t);
        w.pure("QZ_Matrix2XYZABC4ARC_XYZ", "gimbal", t);
        w.pure("QZ_Matrix2XYZABC4DEG_XYZ", "gimbal", t);
    }
    // exact gimbal matrices: r20 = -+1 with the cos B terms exactly 0, then one ulp away from 1
    const double c = std::cos(0.6), s = std::sin(0.6);
    for (double r20 : {-1.0, 1.0, Ulps(-1.0, 1), Ulps(1.0, -1)}) {
        double cb = std::sqrt(1 - r20 * r20);
        Doubles r = {0.0, r20 < 0 ? s : -s, r20 < 0 ? c : -c, 0.0, c, -s, r20, cb, cb};
        w.pure("QZ_Matrix2XYZ", "gimbal-exact", r);
        w.pure("QZ_Matrix42XYZ", "gimbal-exact", Transform(r, {0, 0, 0}));
    }
    w.pure("QZ_Matrix2XYZ", "identity", Identity(3, 3));
    w.pure("QZ_Matrix2XYZ", "signed-zeros", {1, -0.0, -0.0, -0.0, 1, -0.0, -0.0, -0.0, 1});
    w.pure("QZ_Matrix2XYZ", "special", SpecialMix(9, 3));

    w.comment("XYZABC poses and ABC rotations in radians and degrees");
    for (int k = 0; k < 10; ++k) {
        Doubles arc = Join({Randoms(3), Randoms(3, -kPi, kPi)});
        Doubles deg = Join({Randoms(3), Randoms(3, -180, 180)});
        w.pure("QZ_XYZABC2Matrix4ARC", "ordinary", arc);
        w.pure("QZ_XYZABC2Matrix4DEG", "ordinary", deg);
        w.pure("QZ_ABC2Matrix3ARC", "ordinary", Doubles(arc.begin() + 3, arc.end()));
        w.pure("QZ_ABC2Matrix3DEG", "ordinary", Doubles(deg.begin() + 3, deg.end()));
        w.pure("QZ_CALC_TRANS_FROM_Rotxyz", "ordinary", Doubles(deg.begin() + 3, deg.end()));
    }
    for (double b : {90.0, -90.0, 180.0, 0.0, -0.0}) {
        w.pure("QZ_XYZABC2Matrix4DEG", "quadrant", {1, 2, 3, 30, b, -45});
        w.pure("QZ_ABC2Matrix3DEG", "quadrant", {30, b, -45});
        w.pure("QZ_CALC_TRANS_FROM_Rotxyz", "quadrant", {30, b, -45});
    }
    for (double b : {kHalfPi, -kHalfPi, kPi, -0.0}) {
        w.pure("QZ_XYZABC2Matrix4ARC", "quadrant", {1, 2, 3, 0.5, b, -0.25});
        w.pure("QZ_ABC2Matrix3ARC", "quadrant", {0.5, b, -0.25});
    }
    w.pure("QZ_ABC2Matrix3ARC", "special", {kNaN, kInf, -0.0});

    w.comment("turning a transform about its own z axis: unit and unnormalised cosine/sine");
    for (int k = 0; k < 6; ++k) {
        double a = Uniform(-kPi, kPi);
        w.pure("QZ_XYZMRot", "unit", Join({RandomTransform(), {std::cos(a), std::sin(a)}}));
    }
    w.pure("QZ_XYZMRot", "unnormalised", Join({RandomTransform(), {3.0, 4.0}}));
    w.pure("QZ_XYZMRot", "zero", Join({RandomTransform(), {0.0, -0.0}}));
    w.pure("QZ_XYZMRot", "bottom-row", Join({Randoms(12), {kNaN, kNaN, kNaN, kNaN}, {1.0, 0.0}}));
}
Register euler("QZMatrix_euler", Euler);

// ---- Frames and Jacobians ---------------------------------------------------------------------

void Frames(Writer &w) {
    w.comment("DH link transforms, skew and L operators");
    for (int k = 0; k < 10; ++k)
        w.pure("QZ_DH2Matrix", "ordinary",
               {Uniform(-kPi, kPi), Uniform(-1, 1), Uniform(-1, 1), Uniform(-kPi, kPi)});
    w.pure("QZ_DH2Matrix", "zero", {0.0, 0.0, 0.0, 0.0});
    w.pure("QZ_DH2Matrix", "signed-zeros", {-0.0, -0.0, -0.0, -0.0});
    w.pure("QZ_DH2Matrix", "quadrant", {kHalfPi, 0.5, 0.25, -kHalfPi});
    w.pure("QZ_DH2Matrix", "quadrant", {-kHalfPi, 0.0, 0.0, kPi});
    for (const char *fn : {"QZ_Skew", "QZ_LOperator"}) {
        for (int k = 0; k < 4; ++k) w.pure(fn, "ordinary", Randoms(3));
        w.pure(fn, "signed-zeros", {-0.0, 0.0, -0.0});
        w.pure(fn, "special", {kNaN, kInf, -kInf});
    }

    w.comment("line crossing: meeting and skew lines, near-parallel sweeps, zero directions");
    for (int k = 0; k < 8; ++k) w.pure("QZ_LineCross", "skew", Randoms(6), {}, Randoms(6));
    w.pure("QZ_LineCross", "meeting", {0, 0, 0, 1, 1, 0}, {}, {1, 0, 0, 0, 1, 0});
    w.pure("QZ_LineCross", "meeting-unnormalised", {0, 0, 0, 2, 3, 0}, {}, {5, 0, 0, 0, -7, 0});
    for (double a : {3e-4, 2.5e-4, 2e-4, 1.5e-4, 1e-4, 1e-6, 0.0}) {
        w.pure("QZ_LineCross", "near-parallel", {0, 0, 0, 0, 1, 0}, {},
               {1, 0, 0, std::cos(a), std::sin(a), 0});
    }
    for (double a : {1e-7, 2e-8, 1.2e-8, 1e-8, 8e-9, 1e-9, 0.0}) {
        w.pure("QZ_LineCross", "near-opposite", {0, 0, 0, 0, 1, 0}, {},
               {1, 0, 0, -std::cos(a), std::sin(a), 0});
    }
    w.pure("QZ_LineCross", "zero-direction", {0, 0, 0, 1, 1, 1}, {}, {0, 0, 0, 0, 1, 0});
    w.pure("QZ_LineCross", "zero-direction", {0, 0, 0, 1, 1, 1}, {}, {0, 1, 0, 0, 0, 0});
    w.pure("QZ_LineCross", "nan", {kNaN, 0, 0, 1, 1, 1}, {}, {1, 0, 0, 0, 1, 0});

    w.comment("v + m x over row pointers: n and cols from -1, aliased output");
    const int dims[][2] = {{-1, 3}, {0, 3}, {3, 0}, {3, -1}, {1, 1},
                           {3, 3},  {6, 7}, {8, 8}, {7, 6}};
    for (const auto &d : dims) {
        w.pure("QZ_VectAddMV", "shape", Randoms(80), {d[0], d[1]});
        w.pure("QZ_VectAddMV.OutisV", "shape", Randoms(72), {d[0], d[1]}, Randoms(8));
    }
    w.pure("QZ_VectAddMV", "signed-zeros",
           Join({Filled(8, -0.0), Filled(64, -0.0), Filled(8, 1.0)}), {3, 3});

    w.comment("Jacobian frame transforms, in place where allowed");
    for (int k = 0; k < 5; ++k) {
        Doubles r = RandomRotation();
        w.pure("QZ_JACOB_TRAN_T66", "ordinary", Join({Randoms(36), r}));
        w.pure("QZ_JACOB_TRAN_T66.same", "aliased", r, {}, Randoms(36));
        w.pure("QZ_JACOB_TRAN_T67", "ordinary", Join({Randoms(42), r}));
        w.pure("QZ_JACOB_TRAN_T67.same", "aliased", r, {}, Randoms(42));
        w.pure("QZ_JACOBI_TRANS_T67", "ordinary", Join({Randoms(42), r}));
        w.pure("Mat67Transpose", "ordinary", Randoms(42));
        w.pure("MVmult677", "ordinary", Randoms(49));
    }
    for (const char *fn : {"QZ_JACOB_TRAN_T67", "QZ_JACOBI_TRANS_T67"}) {
        w.pure(fn, "signed-zeros", Join({Filled(42, -0.0), Identity(3, 3)}));
        w.pure(fn, "special", SpecialMix(51, 6));
    }
    w.pure("QZ_JACOB_TRAN_T66", "signed-zeros", Join({Filled(36, -0.0), Identity(3, 3)}));
    w.pure("MVmult677", "signed-zeros", Join({Filled(42, -0.0), Filled(7, 1.0)}));
    w.pure("MVmult677", "special", SpecialMix(49, 1));
    w.pure("Mat67Transpose", "bits", SpecialMix(42, 0));
}
Register frames("QZMatrix_frames", Frames);

}  // namespace
}  // namespace qzgen
