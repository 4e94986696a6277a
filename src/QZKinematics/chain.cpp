// The chain record: a modified DH table checked once and stored with what does not move (the
// sines and cosines of the link twists), the tool transform, the joint limits and the damping.
#include "QZKinematics.h"

#include <cstddef>

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"

namespace qz::detail {
namespace {

constexpr double kDefaultSigmaThreshold = 0.01;
constexpr double kDefaultLambdaMax = 0.01;
constexpr double kOrthoTol = 1e-9;  // how far the tool's rotation may be from orthonormal

// A finite rigid transform: bottom row exactly 0 0 0 1, rows of the rotation orthonormal to
// kOrthoTol, a right-handed frame (the third row the cross product of the first two), position
// within the length bound.
bool RigidTransform(const double *t) {
    if (!(t[12] == 0.0 && t[13] == 0.0 && t[14] == 0.0 && t[15] == 1.0)) return false;
    if (!AllWithin(t, 12, kKinMaxLength)) return false;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            const double *ri = t + 4 * i, *rk = t + 4 * k;
            const double dot = ri[0] * rk[0] + ri[1] * rk[1] + ri[2] * rk[2];
            if (!Within(dot - (i == k ? 1.0 : 0.0), kOrthoTol)) return false;
        }
    }
    const double *r0 = t, *r1 = t + 4, *r2 = t + 8;
    const double cross[3] = {r0[1] * r1[2] - r0[2] * r1[1], r0[2] * r1[0] - r0[0] * r1[2],
                             r0[0] * r1[1] - r0[1] * r1[0]};
    for (int k = 0; k < 3; ++k)
        if (!Within(cross[k] - r2[k], 4.0 * kOrthoTol)) return false;
    return true;
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_ChainInit(QZKinChain *c, int32_t n, const double *dh, const double *tool,
                               const double *qMin, const double *qMax) {
    using namespace qz::detail;
    if (n < 1 || n > QZ_KIN_MAX_JOINTS) return QZ_KIN_ERR_COUNT;
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
        const double *row = dh + 4 * i;
        if (!Within(row[0], kKinMaxLinkAngle) || !Within(row[1], kKinMaxLength) ||
            !Within(row[2], kKinMaxLength) || !Within(row[3], kKinMaxLinkAngle))
            return QZ_KIN_ERR_TABLE;
    }
    const bool hasTool = tool != nullptr, hasLower = qMin != nullptr, hasUpper = qMax != nullptr;
    if (hasTool && !RigidTransform(tool)) return QZ_KIN_ERR_TOOL;
    for (int i = 0; i < n; ++i) {
        const double lo = hasLower ? qMin[i] : -kKinMaxAngle;
        const double hi = hasUpper ? qMax[i] : kKinMaxAngle;
        if (!Within(lo, kKinMaxAngle) || !Within(hi, kKinMaxAngle) || lo > hi)
            return QZ_KIN_ERR_LIMITS;
    }

    QZKinChain out{};
    out.jointNum = n;
    double reach = 0.0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
        const double *row = dh + 4 * i;
        out.alpha[i] = row[0];
        out.a[i] = row[1];
        out.d[i] = row[2];
        out.offset[i] = row[3];
        SinCosArc(row[0], &out.sinAlpha[i], &out.cosAlpha[i]);
        out.qMin[i] = hasLower ? qMin[i] : -kKinMaxAngle;
        out.qMax[i] = hasUpper ? qMax[i] : kKinMaxAngle;
        reach = reach + Fabs(row[1]) + Fabs(row[2]);
    }
    for (int k = 0; k < 16; ++k) out.tool[k] = hasTool ? tool[k] : (k % 5 == 0 ? 1.0 : 0.0);
    reach = reach + Sqrt(out.tool[3] * out.tool[3] + out.tool[7] * out.tool[7] +
                         out.tool[11] * out.tool[11]);
    out.lengthScale = reach > 0.0 ? reach : 1.0;
    out.sigmaThreshold = kDefaultSigmaThreshold;
    out.lambdaMax = kDefaultLambdaMax;
    out.isInit = 1;
    *c = out;
    return QZ_KIN_OK;
}

QZ_API int32_t QZKin_SetDamping(QZKinChain *c, double lengthScale, double sigmaThreshold,
                                double lambdaMax) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    if (!(lengthScale > 0.0 && lengthScale <= kKinMaxLength) ||
        !(sigmaThreshold > 0.0 && sigmaThreshold <= 1.0) || !(lambdaMax >= 0.0 && lambdaMax <= 1.0))
        return QZ_KIN_ERR_INPUT;
    c->lengthScale = lengthScale;
    c->sigmaThreshold = sigmaThreshold;
    c->lambdaMax = lambdaMax;
    return QZ_KIN_OK;
}

}  // extern "C"
