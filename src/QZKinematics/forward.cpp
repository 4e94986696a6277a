// Forward kinematics and the geometric Jacobian of a chain.
//
// The frames are accumulated as a rotation R (row-major 3x3) and an origin p. A modified DH link
// RotX(alpha) TransX(a) RotZ(theta) TransZ(d) acts on the columns of R: the twist mixes columns 1
// and 2 with the stored sine and cosine of alpha, the joint angle mixes columns 0 and 1, and the
// origin moves by a along the old column 0 and by d along the new column 2, which is the joint's
// axis. That is about fifty operations a joint instead of a 4x4 product, and only the joint
// angle's sine and cosine are taken per call.
#include "QZKinematics.h"

#include "QZBaseMath/scalar_inline.h"
#include "QZKinematics/kinematics.h"
#include "QZQuaternions/quaternion.h"

namespace qz::detail {
namespace {

template <int N>
void Frames(const QZKinChain &c, const double *q, double *t, double (*z)[3], double (*p)[3]) {
    // Columns of R: col[k][row].
    double col[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    double o[3] = {0.0, 0.0, 0.0};
    // The joint angles' sines and cosines first: independent calls, none waiting on the frames.
    double sq[N], cq[N];
    for (int i = 0; i < N; ++i) SinCosArc(q[i] + c.offset[i], &sq[i], &cq[i]);
    QZ_KIN_UNROLL
    for (int i = 0; i < N; ++i) {
        const double sa = c.sinAlpha[i], ca = c.cosAlpha[i], a = c.a[i], d = c.d[i];
        const double st = sq[i], ct = cq[i];
        for (int r = 0; r < 3; ++r) {
            const double x = col[0][r], y = col[1][r], w = col[2][r];
            const double y1 = ca * y + sa * w;  // after the twist
            const double z1 = ca * w - sa * y;
            col[0][r] = ct * x + st * y1;  // after the joint angle
            col[1][r] = ct * y1 - st * x;
            col[2][r] = z1;
            o[r] = o[r] + a * x + d * z1;
        }
        if (z) {
            for (int r = 0; r < 3; ++r) {
                z[i][r] = col[2][r];
                p[i][r] = o[r];
            }
        }
    }
    // Tool: R_tool = R T_R, p_tool = p + R T_p.
    const double *tl = c.tool;
    for (int r = 0; r < 3; ++r) {
        for (int k = 0; k < 3; ++k)
            t[4 * r + k] = col[0][r] * tl[k] + col[1][r] * tl[4 + k] + col[2][r] * tl[8 + k];
        t[4 * r + 3] = o[r] + (col[0][r] * tl[3] + col[1][r] * tl[7] + col[2][r] * tl[11]);
    }
    t[12] = 0.0;
    t[13] = 0.0;
    t[14] = 0.0;
    t[15] = 1.0;
}

template <int n>
void FramesAndJacobian(const QZKinChain &c, const double *q, double *j, double *t) {
    double z[n][3], p[n][3];
    Frames<n>(c, q, t, z, p);
    const double tip[3] = {t[3], t[7], t[11]};
    QZ_KIN_UNROLL
    for (int i = 0; i < n; ++i) {
        const double rx = tip[0] - p[i][0], ry = tip[1] - p[i][1], rz = tip[2] - p[i][2];
        const double *zi = z[i];
        j[i] = zi[1] * rz - zi[2] * ry;
        j[n + i] = zi[2] * rx - zi[0] * rz;
        j[2 * n + i] = zi[0] * ry - zi[1] * rx;
        j[3 * n + i] = zi[0];
        j[4 * n + i] = zi[1];
        j[5 * n + i] = zi[2];
    }
}

}  // namespace

void ChainFrames(const QZKinChain &c, const double *q, double *t, double (*z)[3], double (*p)[3]) {
    QZ_KIN_DISPATCH(c.jointNum, Frames, c, q, t, z, p)
}

void ForwardJacobian(const QZKinChain &c, const double *q, double *j, double *t) {
    QZ_KIN_DISPATCH(c.jointNum, FramesAndJacobian, c, q, j, t)
}

// The rotation block's quaternion is formed as the library's matrix conversion forms it, then
// brought to unit length; its sign is the one that conversion gives.
void TransformQuat(const double *t, double *quat) {
    RotationToQuat<4>(t, quat);
    QuatNormalize(quat);
}

namespace {

bool JointsOk(const QZKinChain *c, const double *q) {
    return AllWithin(q, c->jointNum, kKinMaxAngle);
}

}  // namespace
}  // namespace qz::detail

extern "C" {

QZ_API int32_t QZKin_Forward(const QZKinChain *c, const double *q, double *t) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    if (!JointsOk(c, q)) return QZ_KIN_ERR_INPUT;
    ChainFrames(*c, q, t, nullptr, nullptr);
    return QZ_KIN_OK;
}

QZ_API int32_t QZKin_ForwardPosQuat(const QZKinChain *c, const double *q, double *pose) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    if (!JointsOk(c, q)) return QZ_KIN_ERR_INPUT;
    double t[16];
    ChainFrames(*c, q, t, nullptr, nullptr);
    pose[0] = t[3];
    pose[1] = t[7];
    pose[2] = t[11];
    TransformQuat(t, pose + 3);
    return QZ_KIN_OK;
}

QZ_API int32_t QZKin_Jacobian(const QZKinChain *c, const double *q, double *j, double *t) {
    using namespace qz::detail;
    if (!ChainReady(c)) return QZ_KIN_ERR_COUNT;
    if (!JointsOk(c, q)) return QZ_KIN_ERR_INPUT;
    double tt[16];
    ForwardJacobian(*c, q, j, tt);
    if (t != nullptr)
        for (int k = 0; k < 16; ++k) t[k] = tt[k];
    return QZ_KIN_OK;
}

}  // extern "C"
