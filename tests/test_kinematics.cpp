// The kinematics module against KDL and Eigen on the seven-joint arm of examples/arm7.h: forward
// kinematics and Jacobian, the damped solver and its singular-value estimate, the orientation
// error near 0 and pi against a quad-precision oracle, the tracker lead on a running tracker,
// the position IK beside KDL's, and the refusal of bad input.
#include <QZKinematics.h>
#include <QZQuaternions.h>
#include <qzmath/kinematics.hpp>

#include <Eigen/Dense>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_nr_jl.hpp>
#include <kdl/chainiksolvervel_pinv.hpp>
#include <kdl/chainiksolvervel_wdls.hpp>
#include <kdl/chainjnttojacsolver.hpp>

#include <cstdio>

#include "../examples/arm7_kdl.hpp"
#include "test_util.h"

using namespace qztest;

namespace {

const double *const kLo = kArm7Lower, *const kHi = kArm7Upper;

QZKinChain Arm(double scale = 1.0) {
    QZKinChain c;
    EXPECT_EQ(arm7_chain(scale, &c), QZ_KIN_OK);
    return c;
}

void RandomJoints(std::mt19937_64 &rng, double *q) {
    for (int i = 0; i < 7; ++i) q[i] = Uniform(rng, kLo[i], kHi[i]);
}

KDL::JntArray Kdl(const double *q, int n = 7) {
    KDL::JntArray a(n);
    for (int i = 0; i < n; ++i) a(i) = q[i];
    return a;
}

// The arm stretched (docs/singularities.md): joint 4 at the stretch angle plus d.
void Stretched(double d, double *q) {
    const double stretch = -(std::atan(82.5 / 316.0) + std::atan(82.5 / 384.0));
    const double deg = M_PI / 180.0;
    const double pose[7] = {20 * deg, -30 * deg, 10 * deg, stretch + d, 0.0, 95 * deg, 40 * deg};
    std::copy(pose, pose + 7, q);
}

}  // namespace

// KDL's Jacobian and frame are at the tip (the flange) in base axes, like the chain's.
TEST(Kinematics, ForwardAndJacobianMatchKdl) {
    auto rng = Rng();
    for (const double scale : {1.0, 0.001}) {
        const QZKinChain c = Arm(scale);
        const KDL::Chain chain = Arm7Chain(scale);
        KDL::ChainFkSolverPos_recursive fk(chain);
        KDL::ChainJntToJacSolver jac(chain);
        for (int n = 0; n < 200; ++n) {
            double q[7], t[16], tj[16], j[42], pose[7], r[9];
            RandomJoints(rng, q);
            KDL::Frame f;
            KDL::Jacobian jk(7);
            ASSERT_ALL(QZKin_Forward(&c, q, t) == 1, QZKin_Jacobian(&c, q, j, tj) == 1,
                       QZKin_ForwardPosQuat(&c, q, pose) == 1, fk.JntToCart(Kdl(q), f) == 0,
                       jac.JntToJac(Kdl(q), jk) == 0);
            EXPECT_EQ(std::memcmp(t, tj, sizeof t), 0);
            const double reach = 1400.0 * scale;
            for (int e = 0; e < 12; ++e)
                EXPECT_NEAR(t[e], e % 4 == 3 ? f.p(e / 4) : f.M(e / 4, e % 4),
                            e % 4 == 3 ? 1e-12 * reach : 1e-12);
            for (int e = 0; e < 42; ++e)
                EXPECT_NEAR(j[e], jk(e / 7, e % 7), e < 21 ? 1e-12 * reach : 1e-12) << e;
            QZ_Quaternion2Matrix3(pose + 3, r);
            EXPECT_NEAR(QZ_QuaternionSqrtNorm(pose + 3), 1.0, 1e-15);
            for (int e = 0; e < 9; ++e) EXPECT_NEAR(r[e], t[4 * (e / 3) + e % 3], 1e-15);
            EXPECT_ALL(pose[0] == t[3], pose[1] == t[7], pose[2] == t[11]);
        }
    }
}

// Away from singularities nothing is damped: the result is the weighted pseudo-inverse's, as
// KDL's damped solver gives it with the same weights, threshold and damping.
TEST(Kinematics, DampedSolverMatchesKdlAwayFromSingularities) {
    auto rng = Rng();
    const QZKinChain c = Arm();
    const KDL::Chain chain = Arm7Chain(1.0);
    KDL::ChainJntToJacSolver jac(chain);
    KDL::ChainIkSolverVel_wdls wdls(chain, 1e-300);
    Eigen::MatrixXd wx = Eigen::MatrixXd::Identity(6, 6);
    for (int k = 0; k < 3; ++k) wx(k, k) = 1.0 / c.lengthScale;
    wdls.setWeightTS(wx);
    wdls.setEps(c.sigmaThreshold);
    wdls.setLambda(c.lambdaMax);
    int compared = 0;
    for (int n = 0; n < 300; ++n) {
        double q[7], j[42], v[6], qdot[7], report[2];
        RandomJoints(rng, q);
        for (double &x : v) x = Uniform(rng, -1.0, 1.0);
        for (int k = 0; k < 3; ++k) v[k] *= 500.0;
        ASSERT_EQ(QZKin_Jacobian(&c, q, j, nullptr), 1);
        ASSERT_EQ(QZKin_DampedLeastSquares(&c, j, v, qdot, report), 1);
        KDL::JntArray out(7);
        KDL::Twist tw(KDL::Vector(v[0], v[1], v[2]), KDL::Vector(v[3], v[4], v[5]));
        wdls.CartToJnt(Kdl(q), tw, out);
        if (wdls.getSigmaMin() < 2.0 * c.sigmaThreshold) continue;  // near a singularity
        ++compared;
        EXPECT_EQ(report[1], 0.0);
        double num = 0.0, den = 0.0;
        for (int i = 0; i < 7; ++i) {
            num += (qdot[i] - out(i)) * (qdot[i] - out(i));
            den += out(i) * out(i);
        }
        EXPECT_LE(std::sqrt(num / den), 1e-9) << n;
    }
    EXPECT_GT(compared, 200);

    // Fewer joints than rows: a planar three-joint arm takes the joint-space form, the weighted
    // least-squares solution while it keeps its rank.
    const double planar[12] = {0, 0, 0, 0, 0, 300, 0, 0.3, 0, 250, 0, 0};
    QZKinChain arm3;
    ASSERT_EQ(QZKin_ChainInit(&arm3, 3, planar, nullptr, nullptr, nullptr), 1);
    int undamped = 0;
    for (int n = 0; n < 20; ++n) {
        double q[3], j[18], v[6], qdot[3], report[2];
        for (double &x : q) x = Uniform(rng, -2.5, 2.5);
        for (double &x : v) x = Uniform(rng, -1.0, 1.0);
        ASSERT_EQ(QZKin_Jacobian(&arm3, q, j, nullptr), 1);
        ASSERT_EQ(QZKin_DampedLeastSquares(&arm3, j, v, qdot, report), 1);
        Eigen::Matrix<double, 6, 3, Eigen::RowMajor> jn(j);
        Eigen::Matrix<double, 6, 1> vn(v);
        jn.topRows<3>() /= arm3.lengthScale;
        vn.head<3>() /= arm3.lengthScale;
        const Eigen::Vector3d want = jn.colPivHouseholderQr().solve(vn);
        if (report[1] > 0.0) continue;
        ++undamped;
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(qdot[i], want(i), 1e-9 * want.norm());
    }
    EXPECT_GT(undamped, 15);
}

// The estimate never lies below the smallest singular value and stays within a few percent of
// it, from the stretch (where it falls with the distance d) to ordinary poses; near the stretch
// the damping keeps every joint speed within 1 / (2 lambdaMax) per unit of unitless twist, and
// it rises continuously: no jump as d crosses the threshold.
TEST(Kinematics, SingularValueEstimateAndDamping) {
    auto rng = Rng();
    const QZKinChain c = Arm();
    std::vector<double> ds = {0.0, 1e-9, 1e-6, 1e-4, 1e-3, 0.01, 0.05, 0.1, 0.3};
    for (int n = 0; n < 100; ++n) ds.push_back(Uniform(rng, -1.0, 1.0));
    double lastLambda = c.lambdaMax, worst = 0.0;
    for (size_t k = 0; k < ds.size(); ++k) {
        double q[7], j[42], qdot[7], report[2];
        Stretched(ds[k], q);
        if (k >= 9) RandomJoints(rng, q);
        ASSERT_EQ(QZKin_Jacobian(&c, q, j, nullptr), 1);
        Eigen::Matrix<double, 6, 7, Eigen::RowMajor> jn(j);
        jn.topRows<3>() /= c.lengthScale;
        const double sigma = Eigen::JacobiSVD<Eigen::MatrixXd>(jn).singularValues()(5);
        for (int axis = 0; axis < 6; ++axis) {
            double v[6] = {0, 0, 0, 0, 0, 0};
            v[axis] = axis < 3 ? c.lengthScale : 1.0;  // a unit unitless twist
            ASSERT_EQ(QZKin_DampedLeastSquares(&c, j, v, qdot, report), 1);
            for (double x : qdot) EXPECT_LE(std::fabs(x), 1.0 / std::max(sigma, 2 * report[1]));
        }
        EXPECT_GE(report[0], sigma - 1e-8) << k;
        worst = std::max(worst, report[0] / std::max(sigma, 1e-6));
        if (sigma < 2 * c.sigmaThreshold) EXPECT_LE(report[0], 1.05 * sigma + 1e-8) << k;
        if (k < 9) {  // approaching the threshold from the stretch, the damping falls off
            EXPECT_LE(report[1], lastLambda + 1e-12);
            lastLambda = report[1];
        }
    }
    EXPECT_EQ(lastLambda, 0.0);
    std::printf("singular-value estimate: at most %.3f times the smallest singular value\n", worst);
}

// The rotation vector's angle against the exact angle between the given quaternions (the error
// quaternion formed in quad precision), within 1e-8 of 0 and pi and in between, with
// quaternions of other than unit length and both signs.
TEST(Kinematics, OrientationErrorAccurateNearZeroAndPi) {
#ifdef __SIZEOF_FLOAT128__
    auto rng = Rng();
    const double angles[] = {0.0, 1e-15,       1e-12,       3e-9,        1e-8,         1e-4, 0.5,
                             2.0, M_PI - 1e-4, M_PI - 1e-8, M_PI - 3e-9, M_PI - 1e-12, M_PI};
    double worst = 0.0;
    for (const double phi : angles) {
        for (int n = 0; n < 50; ++n) {
            double qa[4], turn[4], qt[4], r[3], axis[3];
            for (double &x : qa) x = Uniform(rng, -1.0, 1.0);
            for (double &x : axis) x = Uniform(rng, -1.0, 1.0);
            const double an = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
            for (int k = 0; k < 3; ++k) turn[k] = std::sin(phi / 2) * axis[k] / an;
            turn[3] = std::cos(phi / 2);
            QZ_QuatMult(turn, qa, qt);
            if (n % 2)
                for (double &x : qt) x = -2.0 * x;
            ASSERT_EQ(QZKin_OrientationError(qt, qa, r), 1);
            using Q = __float128;
            const Q xt = qt[0], yt = qt[1], zt = qt[2], wt = qt[3];
            const Q xa = qa[0], ya = qa[1], za = qa[2], wa = qa[3];
            const Q v[3] = {wa * xt - wt * xa - yt * za + zt * ya,
                            wa * yt - wt * ya - zt * xa + xt * za,
                            wa * zt - wt * za - xt * ya + yt * xa};
            Q w = wt * wa + xt * xa + yt * ya + zt * za;
            const double s = std::sqrt(double(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]));
            const double exact = 2.0 * std::atan2(s, std::fabs(double(w)));
            const double got = std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]);
            const double ulps = std::fabs(got - exact) / (std::nextafter(exact, 4.0) - exact);
            worst = std::max(worst, exact > 0 ? ulps : got);
            const double sign = double(w) < 0 ? -1.0 : 1.0;  // the shorter way
            for (int k = 0; k < 3 && s > 0 && std::fabs(double(w)) > 1e-15; ++k)
                EXPECT_NEAR(r[k], sign * double(v[k]) / s * exact, 4e-16 * exact + 1e-300) << phi;
        }
    }
    std::printf("orientation error: largest angle error %.2f ulp\n", worst);
    EXPECT_LE(worst, 4.0);
#else
    GTEST_SKIP() << "no quad precision on this platform";
#endif
}

// Led by the lead, a tracker following a ramp ends on the path itself, for several spans and
// speeds; without it, it trails by v L.
TEST(Kinematics, TrackerLeadPutsTheOutputOnThePath) {
    const double vel[3] = {2, 2, 2}, acc[3] = {7.5, 7.5, 20}, jerk[3] = {3750, 375, 3750};
    const double speed[3] = {1.0, 0.3, -0.05};
    QZNSyncDTSState s{};
    ASSERT_EQ(QZNSyncDTS_OnInit(&s, 3, 1.0, vel, acc, jerk), 1);
    double lead[3], lag[3], out[3];
    for (int k = 0; k <= 4000; ++k) {
        double target[3];
        ASSERT_EQ(QZKin_TrackerLead(&s, speed, nullptr, lead, lag), 1);
        for (int i = 0; i < 3; ++i) target[i] = speed[i] * k * 1e-3 + lead[i];
        QZNSyncDTS_OnDT(&s, target, out);
    }
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], speed[i] * 4.0, 1e-9) << i;
    EXPECT_NEAR(lag[0], 0.0816667, 1e-7);  // docs/streaming.md: 81.67 ms at 1 unit/s, span 3
    const double a[3] = {2, 0, -1};
    double led[3];
    ASSERT_EQ(QZKin_TrackerLead(&s, speed, a, led, nullptr), 1);
    for (int i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(led[i], lead[i] + 0.5 * a[i] * lag[i] * lag[i]);
}

// Random reachable poses (the kinematics of random joints within limits), the same seeds for
// both solvers; success rates and iterations are printed beside KDL's.
TEST(Kinematics, PositionIkBesideKdl) {
    auto rng = Rng();
    const QZKinChain c = Arm(0.001);
    const KDL::Chain chain = Arm7Chain(0.001);
    KDL::ChainFkSolverPos_recursive fk(chain);
    KDL::ChainIkSolverVel_pinv vel(chain);
    KDL::ChainIkSolverPos_NR_JL ik(chain, Kdl(kLo), Kdl(kHi), fk, vel, 200, 1e-8);
    const int cases = 200;
    int ours = 0, theirs = 0;
    long ourIter = 0;
    for (int n = 0; n < cases; ++n) {
        double goal[7], pose[7], seed[7], q[7], residual[2], check[7];
        int32_t iters = 0;
        RandomJoints(rng, goal);
        for (int i = 0; i < 7; ++i)
            seed[i] = std::clamp(goal[i] + Uniform(rng, -0.6, 0.6), kLo[i], kHi[i]);
        ASSERT_EQ(QZKin_ForwardPosQuat(&c, goal, pose), 1);
        const int32_t rc =
            QZKin_SolvePosition(&c, pose, seed, 200, 1e-8, 1e-8, q, residual, &iters);
        ASSERT_GE(rc, 0);
        for (int i = 0; i < 7; ++i) EXPECT_ALL(q[i] >= kLo[i], q[i] <= kHi[i]);
        if (rc == 1) {
            ++ours;
            ourIter += iters;
            ASSERT_EQ(QZKin_ForwardPosQuat(&c, q, check), 1);
            for (int k = 0; k < 3; ++k) EXPECT_NEAR(check[k], pose[k], 1e-8);
            EXPECT_ALL(residual[0] <= 1e-8, residual[1] <= 1e-8);
        }
        KDL::Frame f;
        fk.JntToCart(Kdl(goal), f);
        KDL::JntArray out(7);
        if (ik.CartToJnt(Kdl(seed), f, out) >= 0) ++theirs;
    }
    std::printf("position IK, %d poses: converged %d (mean %.1f iterations), KDL NR_JL %d\n", cases,
                ours, ours ? double(ourIter) / ours : 0.0, theirs);
    EXPECT_GE(ours, theirs);
    EXPECT_GE(ours, cases * 9 / 10);
}

// Each refusal names what is wrong (the fuzz target checks that a refusal writes nothing).
TEST(Kinematics, RefusesBadInputWithItsCode) {
    const QZKinChain c = Arm();
    const double nan = NAN, inf = INFINITY;
    double base[58] = {};  // a table of zeros, the identity tool, the arm's limits
    for (int k = 0; k < 4; ++k) base[28 + 5 * k] = 1.0;
    std::copy(kLo, kLo + 7, base + 44);
    std::copy(kHi, kHi + 7, base + 51);
    struct Chain {
        int n, entry;
        double value;
        int32_t rc;
    } chains[] = {{0, -1, 0, QZ_KIN_ERR_COUNT},    {9, -1, 0, QZ_KIN_ERR_COUNT},
                  {7, 1, nan, QZ_KIN_ERR_TABLE},   {7, 2, 2e9, QZ_KIN_ERR_TABLE},
                  {7, 0, 13.0, QZ_KIN_ERR_TABLE},  {7, 31, inf, QZ_KIN_ERR_TOOL},
                  {7, 43, 0.5, QZ_KIN_ERR_TOOL},   {7, 28, 1.001, QZ_KIN_ERR_TOOL},
                  {7, 47, nan, QZ_KIN_ERR_LIMITS}, {7, 47, 5.0, QZ_KIN_ERR_LIMITS}};
    for (const Chain &k : chains) {
        double in[58];
        QZKinChain out;
        std::copy(base, base + 58, in);
        if (k.entry >= 0) in[k.entry] = k.value;
        EXPECT_EQ(QZKin_ChainInit(&out, k.n, in, in + 28, in + 44, in + 51), k.rc) << k.entry;
    }
    QZKinChain uninit{}, stiff = c;
    double q[7] = {0.1, 0.2, 0.3, -1.0, 0.1, 1.0, 0.2}, far[7], out[42], res[2], j[42], pose[7];
    std::copy(q, q + 7, far);
    far[2] = 2e4;
    const double v[6] = {1, 1, 0, 0, 0, 0}, vnan[6] = {1, nan, 0, 0, 0, 0}, unit[4] = {0, 0, 0, 1},
                 zero[4] = {};
    ASSERT_ALL(QZKin_Jacobian(&c, q, j, nullptr) == 1, QZKin_ForwardPosQuat(&c, q, pose) == 1);
    EXPECT_ALL(
        QZKin_SetDamping(&uninit, 1, 0.1, 0.1) == QZ_KIN_ERR_COUNT,
        QZKin_SetDamping(&stiff, 0.0, 0.1, 0.1) == QZ_KIN_ERR_INPUT,
        QZKin_SetDamping(&stiff, 1.0, 0.1, 2.0) == QZ_KIN_ERR_INPUT,
        QZKin_Forward(&uninit, q, out) == QZ_KIN_ERR_COUNT,
        QZKin_Jacobian(&c, far, out, out) == QZ_KIN_ERR_INPUT,
        QZKin_DampedLeastSquares(&c, j, vnan, out, nullptr) == QZ_KIN_ERR_INPUT,
        QZKin_OrientationError(unit, zero, out) == QZ_KIN_ERR_INPUT,
        QZKin_SolvePosition(&c, pose, far, 10, 1e-6, 1e-6, out, res, nullptr) == QZ_KIN_ERR_INPUT,
        QZKin_SolvePosition(&c, pose, q, 0, 1e-6, 1e-6, out, res, nullptr) == QZ_KIN_ERR_INPUT);
    // Undamped where the rank is lost exactly (two equal rows): nothing to invert, and said so.
    ASSERT_EQ(QZKin_SetDamping(&stiff, 1000.0, 0.01, 0.0), 1);
    std::copy(j + 28, j + 35, j + 35);
    EXPECT_EQ(QZKin_DampedLeastSquares(&stiff, j, v, out, nullptr), QZ_KIN_ERR_SINGULAR);
    QZNSyncDTSState s{};  // the lead needs an initialised tracker and finite path rates
    EXPECT_EQ(QZKin_TrackerLead(&s, v, nullptr, out, nullptr), QZ_KIN_ERR_COUNT);
    ASSERT_EQ(QZNSyncDTS_OnInit(&s, 2, 1.0, v, v, v), 1);
    EXPECT_EQ(QZKin_TrackerLead(&s, vnan, nullptr, out, nullptr), QZ_KIN_ERR_INPUT);
}

// The C++ form gives the C results and names each refusal.
TEST(Kinematics, CppChainAgreesWithCAndNamesRefusals) {
    std::array<qz::Link, 7> links;
    for (int i = 0; i < 7; ++i)
        links[i] = {{kArm7Links[i].alpha}, kArm7Links[i].a, kArm7Links[i].d, {0.0}};
    qz::Mat4 tool = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, kArm7Flange.d, 0, 0, 0, 1}};
    qz::Vec<7> lo, hi, q{{0.1, 0.2, 0.3, -1.0, 0.1, 1.0, 0.2}};
    std::copy(kLo, kLo + 7, lo.begin());
    std::copy(kHi, kHi + 7, hi.begin());
    const qz::Chain<7> chain(links, tool, lo, hi);
    const QZKinChain c = Arm();
    ASSERT_EQ(chain.status(), qz::Status::ok);
    EXPECT_EQ(std::memcmp(&chain.record(), &c, sizeof c), 0);
    const auto jt = chain.jacobian(q);
    const auto v = chain.solve(jt->j, qz::Vec<6>{{10, 0, 0, 0, 0, 0.1}});
    const auto ik = chain.solve_position(*chain.pose(q), lo, 2);  // too few steps from the limit
    EXPECT_ALL(jt.ok(), v.ok(), v->lambda == 0.0, ik.status() == qz::Status::failed,
               ik->iterations == 2);
    q[2] = NAN;
    tool[15] = 2.0;
    qz::Chain<7> bad(links, tool);
    EXPECT_ALL(!chain.forward(q).ok() && chain.forward(q).status() == qz::Status::non_finite,
               bad.status() == qz::Status::bad_argument,
               bad.set_damping(1, 0.1, 0.1) == qz::Status::not_initialised,
               qz::orientation_error(qz::Quat{}, qz::Quat{{0, 0, 0, 1}}).status() ==
                   qz::Status::zero_length);
}
