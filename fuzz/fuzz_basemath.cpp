// Fuzz target for QZBaseMath: scalar primitives, polynomial solvers and plane geometry.
//
// Each input is a sequence of operations; an operation byte picks a function, the following
// bytes its arguments. Besides crashes, sanitizer reports and hangs, the target checks what the
// header promises about where results go: root counts within their arrays and the slots beyond
// the count left as they were, an output left unwritten on failure, outputs that may alias
// their inputs, and a few range promises a caller relies on (QZ_ACOS and QZ_Sigmod never NaN
// for finite input, QZ_MinDif_Circle within [0, 180]).
#include <cmath>
#include <cstdint>

#include "QZBaseMath.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

// Checks a solver's outputs: count within [lo, hi], and no slot beyond the count written.
template <int N>
void CheckRoots(int32_t n, int32_t hi, Out<double, N> &re, const char *where) {
    QZ_FUZZ_CHECK(n >= 0 && n <= hi, where);
    re.Check(n, where);
}

void Scalars(Input &in, std::uint8_t op) {
    const double x = in.Double();
    const double y = in.Double();
    switch (op % 18) {
        case 0: (void)QZ_Sqrt(x); break;
        case 1: QZ_FUZZ_CHECK(QZ_Fabs(x) >= 0.0 || x != x, "QZ_Fabs"); break;
        case 2: (void)QZ_3Root(x); break;
        case 3: (void)QZ_SIN_ARC(x); break;
        case 4: (void)QZ_COS_ARC(x); break;
        case 5: (void)QZ_SIN_DEG(x); break;
        case 6: (void)QZ_COS_DEG(x); break;
        case 7:
        case 8: {
            Out<double, 2> sc;
            const bool same = (in.Byte() & 1) != 0;  // s == c is allowed: the cosine remains
            double *s = sc.get();
            double *c = same ? s : s + 1;
            if (op % 18 == 7) {
                QZ_SIN_COS_ARC(x, s, c);
                QZ_FUZZ_CHECK(BitsOf(*c) == BitsOf(QZ_COS_ARC(x)), "QZ_SIN_COS_ARC");
            } else {
                QZ_SIN_COS_DEG(x, s, c);
            }
            sc.Check(same ? 1 : 2, "QZ_SIN_COS");
            break;
        }
        case 9: {
            const double r = QZ_Sigmod(x);
            QZ_FUZZ_CHECK(r >= -1.0 && r <= 1.0, "QZ_Sigmod");
            break;
        }
        case 10: (void)QZ_ATan2(x, y); break;
        case 11: {
            const double r = QZ_ACOS(x);
            QZ_FUZZ_CHECK(x != x || (r >= 0.0 && r <= 3.141592653589793238), "QZ_ACOS");
            break;
        }
        case 12: (void)QZ_MAX(x, y); break;
        case 13: (void)QZ_MIN(x, y); break;
        case 14: QZ_FUZZ_CHECK(QZ_IsZero(x) <= 1, "QZ_IsZero"); break;
        case 15: QZ_FUZZ_CHECK(QZ_IsZeroL(x) <= 1, "QZ_IsZeroL"); break;
        case 16:
            QZ_FUZZ_CHECK(BitsOf(QZ_Floor(x)) == BitsOf(std::floor(x)) || x != x, "QZ_Floor");
            break;
        default: {
            const double s = QZ_Value_Sig(x);
            QZ_FUZZ_CHECK(s == 1.0 || s == -1.0 || BitsOf(s) == 0, "QZ_Value_Sig");
            break;
        }
    }
}

void Polynomials(Input &in, std::uint8_t op) {
    double c[5];
    for (double &v : c) v = in.Double();
    switch (op % 9) {
        case 0: {
            Out<double, 2> r;
            CheckRoots(QZ_SqureSolve(c[0], c[1], c[2], r.get()), 2, r, "QZ_SqureSolve");
            break;
        }
        case 1: {
            Out<double, 3> r;
            CheckRoots(QZ_CubicSolve(c[0], c[1], c[2], c[3], r.get()), 3, r, "QZ_CubicSolve");
            break;
        }
        case 2:
        case 3: {
            Out<double, 1> r;
            const bool pos = op % 9 == 2;
            const std::uint8_t ok = pos ? QZ_CubicSolve_Min_Pos(c[0], c[1], c[2], c[3], r.get())
                                        : QZ_CubicSolve_Max_Nag(c[0], c[1], c[2], c[3], r.get());
            QZ_FUZZ_CHECK(ok <= 1, "QZ_CubicSolve_Min_Pos/Max_Nag");
            r.Check(ok, "QZ_CubicSolve_Min_Pos/Max_Nag");
            if (ok)
                QZ_FUZZ_CHECK(pos ? r[0] > 0.0 : r[0] < 0.0, "QZ_CubicSolve_Min_Pos/Max_Nag sign");
            break;
        }
        case 4: {
            Out<double, 2> re, im;
            const int32_t n = QZ_Solve2OrderEq(c[0], c[1], c[2], re.get(), im.get());
            CheckRoots(n, 2, re, "QZ_Solve2OrderEq");
            im.Check(n, "QZ_Solve2OrderEq");
            break;
        }
        case 5: {
            Out<double, 3> re, im;
            const int32_t n = QZ_Solve3OrderEq(c[0], c[1], c[2], c[3], re.get(), im.get());
            CheckRoots(n, 3, re, "QZ_Solve3OrderEq");
            im.Check(n, "QZ_Solve3OrderEq");
            break;
        }
        case 6: {
            Out<double, 4> re, im;
            const int32_t n = QZ_Solve4OrderEq(c[0], c[1], c[2], c[3], c[4], re.get(), im.get());
            CheckRoots(n, 4, re, "QZ_Solve4OrderEq");
            im.Check(n, "QZ_Solve4OrderEq");
            break;
        }
        case 7: {
            Out<double, 4> r;
            CheckRoots(QZ_Solve4OrderEqR(c[0], c[1], c[2], c[3], c[4], r.get()), 4, r,
                       "QZ_Solve4OrderEqR");
            break;
        }
        default: {
            // The count is any int32 up to the array we can supply; exactly that many terms are
            // readable.
            static In<64> p;
            p.Fill(in);
            int32_t n = in.Count();
            if (n > 64) n = 64;
            const double v = QZ_SolvePolynomialResult(p.Exact(n), c[0], n);
            p.Release("QZ_SolvePolynomialResult");
            if (n <= 0) QZ_FUZZ_CHECK(BitsOf(v) == 0, "QZ_SolvePolynomialResult n <= 0");
            break;
        }
    }
}

void Geometry(Input &in, std::uint8_t op) {
    switch (op % 4) {
        case 0: {
            const double a = in.Double(), b = in.Double(), c = in.Double();
            const double r = QZ_CalAngleCDEG(a, b, c);
            QZ_FUZZ_CHECK(r != r || (r >= 0.0 && r <= 180.0), "QZ_CalAngleCDEG");
            break;
        }
        case 1: {
            // The foot may share storage with any input: F is one of four places.
            double pts[4][3];
            for (auto &p : pts)
                for (double &v : p) v = in.Double();
            const int where = in.Byte() % 4;
            Out<double, 3> sep;
            double *F = where == 3 ? sep.get() : pts[where];
            QZ_FUZZ_CHECK(QZ_PointToLine(pts[0], pts[1], pts[2], F) == 1, "QZ_PointToLine");
            sep.Check(where == 3 ? 3 : 0, "QZ_PointToLine");
            break;
        }
        case 2: {
            const double a = in.Double();
            Out<double, 1> b;
            b[0] = in.Double();
            const double r = QZ_MinDif_Circle(a, b.get());
            b.Check(1, "QZ_MinDif_Circle");
            if (r != r) {
                QZ_FUZZ_CHECK(b[0] != b[0], "QZ_MinDif_Circle NaN result");
            } else {
                QZ_FUZZ_CHECK(r >= 0.0 && r <= 180.0, "QZ_MinDif_Circle range");
            }
            break;
        }
        default: {
            Out<double, 1> v;
            v[0] = in.Double();
            const double t = in.Double(), s = in.Double();
            ValueToTarget(v.get(), t, s);
            v.Check(1, "ValueToTarget");
            break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input in(data, size);
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        switch (op % 3) {
            case 0: Scalars(in, op / 3); break;
            case 1: Polynomials(in, op / 3); break;
            default: Geometry(in, op / 3); break;
        }
    }
    return 0;
}
