// Fuzz target for QZKinematics: chains built from arbitrary tables, tools and limits, then the
// forward kinematics, Jacobian, damped solver, position IK, orientation error and tracker lead
// called with arbitrary joint angles, Jacobians, twists, poses and quaternions.
//
// The module promises what the rest of the C API does not: bad input is refused with a negative
// result and nothing written. So besides crashes, sanitizer reports and hangs, the target checks
// that a refused call leaves its record and outputs as they were, that an accepted call writes
// finite values into exactly its slots (6 x jointNum of a Jacobian, jointNum joint values), that
// the IK's joints stay within the chain's limits, and that the orientation error's angle never
// exceeds pi by more than its rounding (the check's own norm adds one).
#include <cmath>
#include <cstdint>
#include <cstring>

#include "QZKinematics.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

bool AllFinite(const double *x, int n) {
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(x[i])) return false;
    return true;
}

// A chain from the input: the table entries and limits mostly moderate (an arm-like table and
// limits around it), sometimes anything.
void Build(Input &in, Guarded<QZKinChain> &chain) {
    const std::int32_t n = in.Byte() & 1 ? (in.Byte() % 8) + 1 : in.Count();
    In<32> dh;
    In<16> tool;
    In<8> lo, hi;
    dh.Fill(in);
    tool.Fill(in);
    lo.Fill(in);
    hi.Fill(in);
    const std::uint8_t shape = in.Byte();
    if (shape & 1) {  // a rigid tool: identity rotation, some offset
        for (int k = 0; k < 16; ++k) tool[k] = k % 5 == 0 ? 1.0 : (k == 11 ? tool[11] : 0.0);
    }
    if (shape & 2) {  // ordered limits
        for (int i = 0; i < 8; ++i) hi[i] = lo[i] + std::fabs(hi[i]);
    }
    const Snapshot<QZKinChain> before(chain.get());
    const int used = n < 1 ? 0 : (n > 8 ? 8 : n);
    const std::int32_t rc =
        QZKin_ChainInit(chain.get(), n, dh.Exact(4 * used), shape & 4 ? nullptr : tool.Exact(16),
                        shape & 8 ? nullptr : lo.Exact(used), shape & 8 ? nullptr : hi.Exact(used));
    dh.Release("QZKin_ChainInit");
    tool.Release("QZKin_ChainInit");
    lo.Release("QZKin_ChainInit");
    hi.Release("QZKin_ChainInit");
    chain.Check("QZKin_ChainInit");
    QZ_FUZZ_CHECK(rc == QZ_KIN_OK || (rc >= QZ_KIN_ERR_LIMITS && rc <= QZ_KIN_ERR_COUNT),
                  "QZKin_ChainInit result");
    if (rc != QZ_KIN_OK) before.ExpectSame("QZKin_ChainInit refusal");
    if (rc == QZ_KIN_OK && (in.Byte() & 3) == 0) {
        const double s = in.Double(), t = in.Double(), l = in.Double();
        const Snapshot<QZKinChain> kept(chain.get());
        if (QZKin_SetDamping(chain.get(), s, t, l) != QZ_KIN_OK)
            kept.ExpectSame("QZKin_SetDamping refusal");
    }
}

// The outputs of a call: finite in the first `count` slots when accepted, untouched otherwise.
template <int N>
void Expect(Out<double, N> &o, std::int32_t rc, int count, const char *where) {
    if (rc == QZ_KIN_OK) QZ_FUZZ_CHECK(AllFinite(o.get(), count), where);
    o.Check(rc == QZ_KIN_OK ? count : 0, where);
}

void Cycle(Input &in, Guarded<QZKinChain> &chain, int op) {
    const QZKinChain *c = chain.get();
    const int n = c->isInit ? c->jointNum : 0;
    In<8> q;
    q.Fill(in);
    if (in.Byte() & 1)
        for (int i = 0; i < 8; ++i) q[i] = std::fmod(q[i], 7.0);  // mostly ordinary angles
    Out<double, 64> o;
    Out<double, 16> t;
    const Snapshot<QZKinChain> kept(c);
    switch (op % 4) {
        case 0: {
            std::int32_t rc = QZKin_Forward(c, q.Exact(n), t.get());
            q.Release("QZKin_Forward");
            Expect(t, rc, 16, "QZKin_Forward");
            rc = QZKin_ForwardPosQuat(c, q.Exact(n), o.get());
            q.Release("QZKin_ForwardPosQuat");
            Expect(o, rc, 7, "QZKin_ForwardPosQuat");
            break;
        }
        case 1: {
            const std::int32_t rc = QZKin_Jacobian(c, q.Exact(n), o.get(), t.get());
            q.Release("QZKin_Jacobian");
            Expect(o, rc, 6 * n, "QZKin_Jacobian");
            Expect(t, rc, 16, "QZKin_Jacobian transform");
            break;
        }
        case 2: {  // a Jacobian of the chain or arbitrary values, and a twist
            In<48> j;
            In<6> v;
            j.Fill(in);
            v.Fill(in);
            if (in.Byte() & 1 && QZKin_Jacobian(c, &q[0], &j[0], nullptr) != QZ_KIN_OK) break;
            const std::int32_t rc =
                QZKin_DampedLeastSquares(c, j.Exact(6 * n), v.Exact(6), o.get(), o.get() + 8);
            j.Release("QZKin_DampedLeastSquares");
            v.Release("QZKin_DampedLeastSquares");
            QZ_FUZZ_CHECK(rc == QZ_KIN_OK || rc == QZ_KIN_ERR_INPUT || rc == QZ_KIN_ERR_SINGULAR ||
                              rc == QZ_KIN_ERR_COUNT,
                          "QZKin_DampedLeastSquares result");
            if (rc == QZ_KIN_OK)
                QZ_FUZZ_CHECK(AllFinite(o.get(), n) && AllFinite(o.get() + 8, 2),
                              "QZKin_DampedLeastSquares output");
            o.Check(rc == QZ_KIN_OK ? 10 : 0, "QZKin_DampedLeastSquares");
            break;
        }
        default: {  // a pose of the chain or arbitrary values
            In<7> pose;
            pose.Fill(in);
            if (in.Byte() & 1 && QZKin_ForwardPosQuat(c, &q[0], &pose[0]) == QZ_KIN_OK)
                pose[0] = pose[0] + 1e-3 * in.Within(-1.0, 1.0);
            In<8> seed;
            seed.Fill(in);
            const std::int32_t iters = in.Byte() % 40, maxIter = in.Byte() & 1 ? iters : in.Count();
            const double tolPos = in.Byte() & 1 ? 1e-6 : in.Double(), tolRot = in.Double();
            std::int32_t taken = -7;
            const std::int32_t rc =
                QZKin_SolvePosition(c, pose.Exact(7), seed.Exact(n), maxIter, tolPos, tolRot,
                                    o.get(), o.get() + 8, &taken);
            pose.Release("QZKin_SolvePosition");
            seed.Release("QZKin_SolvePosition");
            if (rc < 0) {
                QZ_FUZZ_CHECK(taken == -7, "QZKin_SolvePosition refusal wrote iterations");
                o.Check(0, "QZKin_SolvePosition refusal");
                break;
            }
            QZ_FUZZ_CHECK(rc <= 1 && taken >= 0 && taken <= maxIter, "QZKin_SolvePosition count");
            for (int i = 0; i < n; ++i)
                QZ_FUZZ_CHECK(o[i] >= c->qMin[i] && o[i] <= c->qMax[i],
                              "QZKin_SolvePosition limits");
            QZ_FUZZ_CHECK(AllFinite(o.get() + 8, 2), "QZKin_SolvePosition residual");
            o.Check(10, "QZKin_SolvePosition");
            break;
        }
    }
    kept.ExpectSame("a per-cycle call changed the chain");
    chain.Check("QZKinChain");
}

void Orientation(Input &in) {
    In<4> a, b;
    a.Fill(in);
    b.Fill(in);
    Out<double, 3> r;
    const std::int32_t rc = QZKin_OrientationError(a.Exact(4), b.Exact(4), r.get());
    a.Release("QZKin_OrientationError");
    b.Release("QZKin_OrientationError");
    Expect(r, rc, 3, "QZKin_OrientationError");
    if (rc == QZ_KIN_OK)
        QZ_FUZZ_CHECK(std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]) <= 3.141592653589795,
                      "QZKin_OrientationError angle beyond pi (by more than rounding)");
}

void Lead(Input &in) {
    Guarded<QZNSyncDTSState> s;
    In<8> lim, acc, jerk, v, a;
    lim.Fill(in);
    acc.Fill(in);
    jerk.Fill(in);
    const std::int32_t n = in.Byte() & 1 ? (in.Byte() % 8) + 1 : in.Count();
    if (in.Byte() & 1) QZNSyncDTS_OnInit(s.get(), n, in.Double(), &lim[0], &acc[0], &jerk[0]);
    const int axes = s->isInit ? s->axisNum : 0;
    v.Fill(in);
    a.Fill(in);
    Out<double, 8> lead, lag;
    const std::int32_t rc =
        QZKin_TrackerLead(s.get(), v.Exact(axes), in.Byte() & 1 ? nullptr : a.Exact(axes),
                          lead.get(), in.Byte() & 1 ? nullptr : lag.get());
    v.Release("QZKin_TrackerLead");
    a.Release("QZKin_TrackerLead");
    s.Check("QZKin_TrackerLead");
    Expect(lead, rc, axes, "QZKin_TrackerLead");
    if (rc != QZ_KIN_OK || !lag.Untouched(0)) Expect(lag, rc, axes, "QZKin_TrackerLead lag");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input in(data, size);
    Guarded<QZKinChain> chain;
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        switch (op % 4) {
            case 0: Build(in, chain); break;
            case 1: Orientation(in); break;
            case 2: Lead(in); break;
            default: Cycle(in, chain, op / 4); break;
        }
    }
    return 0;
}
