// The threshold Jacobi method on a dense symmetric matrix, shared by eig and eig7.
//
// Method: a threshold f starts at the root of twice the sum of squares of the strict lower
// triangle and is divided by n before each pass. A pass scans the strict lower triangle row by
// row and rotates at the first element whose magnitude exceeds f, then starts the scan again from
// the top with the same threshold; the pass ends when a whole scan finds nothing above f. The
// method stops after the first pass whose threshold lies below eps.
//
// A rotation in the plane (p, q) zeroes A[p][q]. With x = -A[p][q] and y = (A[q][q] - A[p][p])/2,
// w = x / sqrt(x^2 + y^2) (sign flipped for y < 0) is the sine of twice the angle, and the sine
// and cosine of the angle come from half-angle roots. Both triangles are updated the same way, so
// a symmetric matrix stays symmetric to the bit, and the rotations accumulate into V's columns.
//
// Termination: each rotation removes 2*A[p][q]^2 > 2*f^2 from the off-diagonal sum of squares,
// so a pass ends; the threshold reaches zero after finitely many divisions, so the passes end.
// The rotation count is capped all the same, so that a call has a fixed worst case whatever
// rounding does (see EigMaxRotations).
#ifndef QZ_MATRIX_EIGEN_H
#define QZ_MATRIX_EIGEN_H

#include <cstddef>
#include <cstdint>

#include "QZBaseMath/scalar_inline.h"

namespace qz::detail {

// Largest matrix eig accepts: the library's matrices are at most 8-by-8.
constexpr int kEigMaxSize = 8;
// Largest entry magnitude eig accepts. Beyond about 1e154 the squares of the threshold and of
// the rotation overflow, and a rotation whose x^2 + y^2 is infinite zeroes its element without
// turning anything; up to 1e150 every square of an 8-by-8 matrix and its rotations stays finite.
constexpr double kEigMaxEntry = 1e150;
// Rotations allowed in one call of size n: kEigRotationsPerEntry * n * n. The largest count
// measured over a wide sample of convergent cases stays below a third of it at every size; the
// evidence is summarised beside eig in QZMatrix.h.
constexpr long kEigRotationsPerEntry = 1000;
constexpr long EigMaxRotations(int n) { return kEigRotationsPerEntry * n * n; }

// Both half-angle radicands are zero or positive in exact arithmetic; rounding in an underflowing
// x^2 + y^2 can push |w| just past 1. Clamping a negative value to zero keeps the rotation at the
// 45 degrees it stands for instead of spreading NaN; zero and positive values (and NaN) pass
// through untouched.
inline double ClampRadicand(double r) { return r < 0.0 ? 0.0 : r; }

// Runs the method on the n-by-n matrix A (row stride n) and writes the eigenvectors to V.
// The caller has checked that every entry of A is finite and at most kEigMaxEntry in magnitude,
// which keeps every square and every rotated value finite. Returns the number of rotations made,
// or -1 when a rotation is undefined or the cap is reached (A and V then hold the state of the
// last rotation).
inline long JacobiEig(int n, double *A, double *V, double eps, long cap) {
    double f = 0.0;
    for (int i = 1; i < n; ++i) {
        for (int j = 0; j < i; ++j) f = f + A[i * n + j] * A[i * n + j];
    }
    f = Sqrt(2.0 * f);

    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) V[i * n + j] = 0.0;
        V[i * n + i] = 1.0;
    }

    const double dn = n;
    long rotations = 0;
    for (;;) {
        f = f / dn;
        for (;;) {
            int p = 0;
            int q = 0;
            for (int i = 1; i < n && p == 0; ++i) {
                for (int j = 0; j < i; ++j) {
                    if (Fabs(A[i * n + j]) > f) {
                        p = i;
                        q = j;
                        break;
                    }
                }
            }
            if (p == 0) break;
            if (rotations == cap) return -1;
            ++rotations;

            double *rp = A + static_cast<std::ptrdiff_t>(p) * n;
            double *rq = A + static_cast<std::ptrdiff_t>(q) * n;
            const double x = -rp[q];
            const double y = (rq[q] - rp[p]) * 0.5;
            // Equal diagonal entries and an off-diagonal entry below about 1e-162 make x^2 + y^2
            // underflow to zero: the rotation is then undefined and the call gives up.
            const double r = Sqrt(x * x + y * y);
            if (r == 0.0) return -1;
            double w = x / r;
            if (y < 0.0) w = -w;
            const double sn = w / Sqrt(2.0 * (1.0 + Sqrt(ClampRadicand(1.0 - w * w))));
            const double cn = Sqrt(ClampRadicand(1.0 - sn * sn));

            const double a = rp[p];
            const double b = rq[q];
            const double e = rp[q];
            rp[p] = a * (cn * cn) + b * (sn * sn) + e * w;
            rq[q] = a * (sn * sn) + b * (cn * cn) - e * w;
            rp[q] = 0.0;
            rq[p] = 0.0;
            for (int j = 0; j < n; ++j) {
                if (j == p || j == q) continue;
                const double u = rp[j];
                const double v = rq[j];
                rp[j] = u * cn + v * sn;
                rq[j] = v * cn - u * sn;
            }
            for (int i = 0; i < n; ++i) {
                if (i == p || i == q) continue;
                const double u = A[i * n + p];
                const double v = A[i * n + q];
                A[i * n + p] = u * cn + v * sn;
                A[i * n + q] = v * cn - u * sn;
            }
            for (int i = 0; i < n; ++i) {
                const double u = V[i * n + p];
                const double v = V[i * n + q];
                V[i * n + p] = u * cn + v * sn;
                V[i * n + q] = v * cn - u * sn;
            }
        }
        if (f < eps) return rotations;
    }
}

// The checked entry point behind eig and eig7: refuses a size outside 1..kEigMaxSize, a tolerance
// that is not positive and any entry beyond kEigMaxEntry, then runs the method under the rotation
// cap. Returns 1 with the decomposition, or 0.
std::uint8_t Eig(int n, double *A, double *V, double eps);

}  // namespace qz::detail

#endif
