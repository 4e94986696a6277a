// Damped least squares with an estimate of the smallest singular value.
//
// Method: the Jacobian and the twist are made unitless (linear rows divided by the chain's length
// scale), and the Gram matrix G of the short side is formed: Jn Jn^T (6 x 6) for six joints or
// more, Jn^T Jn (n x n) for fewer. Its factorisation G = L D L^T (L unit lower triangular, D
// diagonal) gives both the estimate and the solve, with one division per pivot and none in the
// substitutions, which keeps the chains of dependent operations short.
//
// The estimate: the smallest eigenvalue of G is sigma^2, the largest of G^-1 is 1 / sigma^2.
// A start vector that G^-1 magnifies strongly is built the way condition estimators build one
// (solving L y = e with each e_k = +-1 chosen to make y_k larger), and one step of inverse
// iteration refines it. The Rayleigh quotient of a unit x,
// mu = x^T G^-1 x = |D^-1/2 L^-1 x|^2, needs only the forward half of a solve; it lies within a
// small factor of 1 / sigma^2 and converges fastest exactly where it matters, when sigma is far
// below the next singular value. sigma is reported as 1 / sqrt(mu), which never lies below the
// true value. A pivot at or below kPivotFloor times the largest diagonal element of G means a
// rank lost to rounding: sigma is then 0.
//
// The damping: lambda^2 = (1 - (sigma / eps)^2) lambdaMax^2 below the threshold eps, 0 above it,
// so the solution is the plain least-squares one away from singularities and is damped
// continuously as sigma falls. When lambda is not 0, G + lambda^2 I is factorised again.
//
// Bad input is found from its effects rather than by testing every entry on every call: a NaN or
// infinite entry of J, or one large enough to overflow the Gram matrix, makes a pivot NaN or
// infinite and the factorisation fail; one in the twist reaches every joint velocity. Only then
// are the inputs examined, to tell bad input from a singular Jacobian with no damping allowed.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"
#include "QZMatrix/matrix.h"

namespace qz::detail {
namespace {

constexpr double kPivotFloor = 1e-15;

// G = L D L^T of the K x K symmetric g (lower triangle read): the strict lower triangle of L in
// l, the reciprocals of D in invd. False when a pivot is at or below floor; every element is
// written either way, the later ones then meaningless.
template <int K>
bool Factor(const double (&g)[K][K], double floor, double (&l)[K][K], double *invd) {
    bool ok = true;
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) {
        double t[K];  // l[i][m] d[m], for the terms of row i
        QZ_KIN_UNROLL
        for (int k = 0; k < i; ++k) {
            double s = g[i][k];
            QZ_KIN_UNROLL
            for (int m = 0; m < k; ++m) s = s - t[m] * l[k][m];
            t[k] = s;
            l[i][k] = s * invd[k];
        }
        double d = g[i][i];
        QZ_KIN_UNROLL
        for (int m = 0; m < i; ++m) d = d - t[m] * l[i][m];
        ok = ok & (d > floor);
        invd[i] = 1.0 / d;
    }
    return ok;
}

// x = L^-1 x, L unit lower triangular.
template <int K>
void SolveLower(const double (&l)[K][K], double *x) {
    QZ_KIN_UNROLL
    for (int i = 1; i < K; ++i) {
        double s = x[i];
        QZ_KIN_UNROLL
        for (int m = 0; m < i; ++m) s = s - l[i][m] * x[m];
        x[i] = s;
    }
}

// x = L^-1 x and y = L^-1 y together, one in each lane of a Pair: the same operations on two
// independent right-hand sides, so the two chains of dependent steps overlap.
template <int K>
void SolveLowerBoth(const double (&l)[K][K], double *x, double *y) {
    Pair z[K];
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) {
        Pair s = {x[i], y[i]};
        QZ_KIN_UNROLL
        for (int m = 0; m < i; ++m) s -= Pair{l[i][m], l[i][m]} * z[m];
        z[i] = s;
        x[i] = s[0];
        y[i] = s[1];
    }
}

// x = L^-T D^-1 x.
template <int K>
void SolveUpper(const double (&l)[K][K], const double *invd, double *x) {
    QZ_KIN_UNROLL
    for (int i = K - 1; i >= 0; --i) {
        double s = x[i] * invd[i];
        QZ_KIN_UNROLL
        for (int m = i + 1; m < K; ++m) s = s - l[m][i] * x[m];
        x[i] = s;
    }
}

// Estimated smallest singular value of Jn from the factors of its Gram matrix. The forward half
// of the solve for rhs runs alongside the estimate's last forward substitution.
template <int K>
double SmallestSingular(const double (&l)[K][K], const double *invd, double top, double *rhs) {
    // The estimate works on G / top, whose diagonal is at most 1, so that its vectors neither
    // overflow nor underflow whatever the scale of J; L is the same, D is divided by top.
    double invs[K], x[K];
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) invs[i] = invd[i] * top;
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) {  // y = L^-1 e, each e_i pushing y_i away from zero
        double s = 0.0;
        QZ_KIN_UNROLL
        for (int m = 0; m < i; ++m) s = s + l[i][m] * x[m];
        x[i] = s > 0.0 ? -1.0 - s : 1.0 - s;
    }
    // One step of inverse iteration, x = G^-1 y, then the Rayleigh quotient of x.
    SolveUpper<K>(l, invs, x);
    double n2 = 0.0;
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) n2 = n2 + x[i] * x[i];
    SolveLowerBoth<K>(l, x, rhs);
    double mu = 0.0;
    QZ_KIN_UNROLL
    for (int i = 0; i < K; ++i) mu = mu + x[i] * x[i] * invs[i];
    mu = mu / n2;
    return Sqrt(top / mu);
}

// The Gram matrix is formed on the short side of the 6 x n Jacobian.
constexpr int GramSize(int n) { return n < 6 ? n : 6; }

// Why a solve failed: bad input, or a Jacobian that lost rank with no damping to make up for it.
std::int32_t Refusal(const double *j, const double *v, int n) {
    if (!AllWithin(j, 6 * n, kKinMaxLength) || !AllWithin(v, 6, kKinMaxLength))
        return QZ_KIN_ERR_INPUT;
    return QZ_KIN_ERR_SINGULAR;
}

template <int N>
std::int32_t Dls(const QZKinChain &c, const double *j, const double *v, double *qdot,
                 double *report) {
    constexpr int K = GramSize(N);
    const double inv = 1.0 / c.lengthScale;
    double jn[6][N], vn[6];
    QZ_KIN_UNROLL
    for (int r = 0; r < 6; ++r) {
        const double s = r < 3 ? inv : 1.0;
        QZ_KIN_UNROLL
        for (int i = 0; i < N; ++i) jn[r][i] = j[r * N + i] * s;
        vn[r] = v[r] * s;
    }
    // With six joints or more, Jn Jn^T as the sum of the outer products of the columns, three
    // Pairs to a row: every element still adds its products in increasing column order.
    Pair outer[6][3];
    if constexpr (N >= 6) {
        QZ_KIN_UNROLL
        for (int a = 0; a < 6; ++a) QZ_KIN_UNROLL
        for (int p = 0; p < 3; ++p) outer[a][p] = Pair{0.0, 0.0};
        QZ_KIN_UNROLL
        for (int i = 0; i < N; ++i) {
            const Pair col[3] = {{jn[0][i], jn[1][i]}, {jn[2][i], jn[3][i]}, {jn[4][i], jn[5][i]}};
            QZ_KIN_UNROLL
            for (int a = 0; a < 6; ++a) {
                const Pair e = {jn[a][i], jn[a][i]};
                QZ_KIN_UNROLL
                for (int p = 0; p < 3; ++p) outer[a][p] = outer[a][p] + e * col[p];
            }
        }
    }
    // Gram matrix (lower triangle, mirrored) and the right-hand side.
    double g[K][K], rhs[K], rhs0[K];
    double top = 0.0;
    QZ_KIN_UNROLL
    for (int a = 0; a < K; ++a) {
        QZ_KIN_UNROLL
        for (int b = 0; b <= a; ++b) {
            double s = 0.0;
            if constexpr (N >= 6) {
                s = outer[a][b / 2][b % 2];
            } else {
                QZ_KIN_UNROLL
                for (int r = 0; r < 6; ++r) s = s + jn[r][a] * jn[r][b];
            }
            g[a][b] = s;
            g[b][a] = s;
        }
        top = Max(top, g[a][a]);
        if constexpr (N >= 6) {
            rhs[a] = vn[a];
        } else {
            double s = 0.0;
            QZ_KIN_UNROLL
            for (int r = 0; r < 6; ++r) s = s + jn[r][a] * vn[r];
            rhs[a] = s;
        }
    }
    const double floor = kPivotFloor * top;
    double l[K][K], invd[K];
    for (int a = 0; a < K; ++a) rhs0[a] = rhs[a];
    const double sigma =
        Factor<K>(g, floor, l, invd) ? SmallestSingular<K>(l, invd, top, rhs) : 0.0;
    const double eps = c.sigmaThreshold;
    double lambda = 0.0;
    if (sigma < eps) {
        const double ratio = sigma / eps;
        lambda = Sqrt(1.0 - ratio * ratio) * c.lambdaMax;
        const double l2 = lambda * lambda;
        double gd[K][K];
        QZ_KIN_UNROLL
        for (int a = 0; a < K; ++a) QZ_KIN_UNROLL
        for (int b = 0; b < K; ++b) gd[a][b] = a == b ? g[a][b] + l2 : g[a][b];
        if (!Factor<K>(gd, floor, l, invd)) return Refusal(j, v, N);
        for (int a = 0; a < K; ++a) rhs[a] = rhs0[a];
        SolveLower<K>(l, rhs);
    }
    SolveUpper<K>(l, invd, rhs);
    double out[N];
    if constexpr (N >= 6) {
        QZ_KIN_UNROLL
        for (int i = 0; i < N; ++i) {
            double s = 0.0;
            QZ_KIN_UNROLL
            for (int r = 0; r < 6; ++r) s = s + jn[r][i] * rhs[r];
            out[i] = s;
        }
    } else {
        QZ_KIN_UNROLL
        for (int i = 0; i < N; ++i) out[i] = rhs[i];
    }
    double finite = 0.0;  // 0 unless an entry is NaN or infinite
    QZ_KIN_UNROLL
    for (int i = 0; i < N; ++i) finite = finite + out[i] * 0.0;
    if (finite != 0.0) return Refusal(j, v, N);
    QZ_KIN_UNROLL
    for (int i = 0; i < N; ++i) qdot[i] = out[i];
    if (report) {
        report[0] = sigma;
        report[1] = lambda;
    }
    return QZ_KIN_OK;
}

}  // namespace

std::int32_t DampedLeastSquares(const QZKinChain &c, const double *j, const double *v, double *qdot,
                                double *report) {
    QZ_KIN_DISPATCH(c.jointNum, Dls, c, j, v, qdot, report)
}

}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_DampedLeastSquares(const QZKinChain *c, const double *j, const double *v,
                                        double *qdot, double *report) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    return DampedLeastSquares(*c, j, v, qdot, report);
}

}  // extern "C"
