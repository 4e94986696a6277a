// One Cartesian control cycle of the seven-joint arm of examples/arm7.h (example 09), with the
// library and with KDL: forward kinematics, the geometric Jacobian, the orientation error as a
// rotation vector, the joint velocities through the pseudo-inverse of the Jacobian, and (the
// library's cycle only; KDL has none) the seven-axis tracker step.
//
// Before timing, both compute the joint velocities of every case, and the benchmark fails unless
// they agree to 1e-9 relative (the poses are kept away from the arm's singularities).
#include <QZDT.h>
#include <QZMatrix.h>
#include <QZQuaternions.h>
#include <benchmark/benchmark.h>

#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolvervel_pinv.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/frames.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "../examples/arm7_kdl.hpp"
#include "../examples/orientation_error.h"

namespace {

constexpr int kCases = 64;
constexpr double kGain = 20.0;  // 1/s: pose error to twist

struct Case {
    double q[7];      // joint angles (rad)
    double want[7];   // commanded pose: x y z (mm), qx qy qz qw
    double twist[6];  // feed-forward twist: mm/s, rad/s
};

// Poses near a reference posture (elbow bent, wrist away from its stretch), commands a few
// millimetres and degrees away from the pose the joints give.
const Case *Cases() {
    static Case cases[kCases];
    static bool made = false;
    if (made) return cases;
    std::mt19937_64 rng(9);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const double ref[7] = {0.1, 0.4, -0.2, -1.6, 0.3, 1.4, 0.5};
    for (Case &c : cases) {
        for (int i = 0; i < 7; ++i) c.q[i] = ref[i] + 0.3 * u(rng);
        double t[16], qt[4], turn[4], axis[3] = {u(rng), u(rng), u(rng)};
        arm7_fk(c.q, 1.0, t);
        QZ_Matrix2Quaternion4(t, qt);
        const double n = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
        const double half = 0.5 * 0.03 * u(rng);
        for (int i = 0; i < 3; ++i) turn[i] = std::sin(half) * axis[i] / n;
        turn[3] = std::cos(half);
        for (int i = 0; i < 3; ++i) c.want[i] = t[4 * i + 3] + 3.0 * u(rng);
        QZ_QuatMult(turn, qt, c.want + 3);
        for (double &v : c.twist) v = 50.0 * u(rng);
        for (int i = 3; i < 6; ++i) c.twist[i] *= 0.01;
    }
    made = true;
    return cases;
}

// The library's cycle: the twist to follow, then the joint velocities.
void QzVelocities(const Case &c, double qdot[7]) {
    double j[42], t[16], have[4], rot[3], v[6], pinv[42];
    arm7_jacobian(c.q, 1.0, j, t);
    QZ_Matrix2Quaternion4(t, have);
    orientation_error(c.want + 3, have, rot);
    for (int i = 0; i < 3; ++i) {
        v[i] = c.twist[i] + kGain * (c.want[i] - t[4 * i + 3]);
        v[i + 3] = c.twist[i + 3] + kGain * rot[i];
    }
    if (!QZ_RightPsoInv67(j, pinv)) std::abort();
    QZ_Matrix76MultVect6(pinv, v, qdot);
}

struct Kdl {
    KDL::Chain chain = Arm7Chain(1.0);
    KDL::ChainFkSolverPos_recursive fk{chain};
    KDL::ChainJntToJacSolver jac{chain};
    KDL::ChainIkSolverVel_pinv ik{chain};
    KDL::JntArray q{7}, qdot{7};
    KDL::Jacobian j{7};

    // The same cycle in KDL's terms: its Jacobian is computed as the controller would (it is
    // what the twist feeds), and its velocity solver forms the pseudo-inverse by SVD.
    void Velocities(const Case &c, double out[7]) {
        for (int i = 0; i < 7; ++i) q(i) = c.q[i];
        KDL::Frame have;
        fk.JntToCart(q, have);
        jac.JntToJac(q, j);
        const KDL::Rotation want =
            KDL::Rotation::Quaternion(c.want[3], c.want[4], c.want[5], c.want[6]);
        const KDL::Vector rot = (want * have.M.Inverse()).GetRot();
        KDL::Twist v;
        for (int i = 0; i < 3; ++i) {
            v.vel(i) = c.twist[i] + kGain * (c.want[i] - have.p(i));
            v.rot(i) = c.twist[i + 3] + kGain * rot(i);
        }
        ik.CartToJnt(q, v, qdot);
        for (int i = 0; i < 7; ++i) out[i] = qdot(i);
    }
};

bool Agree() {
    static Kdl kdl;
    double worst = 0.0;
    for (int k = 0; k < kCases; ++k) {
        double a[7], b[7], num = 0.0, den = 0.0;
        QzVelocities(Cases()[k], a);
        kdl.Velocities(Cases()[k], b);
        for (int i = 0; i < 7; ++i) {
            num += (a[i] - b[i]) * (a[i] - b[i]);
            den += b[i] * b[i];
        }
        worst = std::max(worst, std::sqrt(num / den));
    }
    static bool said = false;
    if (!said)
        std::printf("joint velocities, library against KDL: largest relative difference %.2e\n",
                    worst);
    said = true;
    return worst <= 1e-9;
}

void BM_CartesianCycle_QZ(benchmark::State &state) {
    if (!Agree()) state.SkipWithError("the library and KDL disagree on the joint velocities");
    QZNSyncDTSState tracker{};
    const double vel[7] = {2, 2, 2, 2, 2, 2, 2}, acc[7] = {10, 10, 10, 10, 10, 10, 10},
                 jerk[7] = {200, 200, 200, 200, 200, 200, 200};
    QZNSyncDTS_OnInit(&tracker, 7, 1.0, vel, acc, jerk);
    const bool withTracker = state.range(0) != 0;
    int k = 0;
    for (auto _ : state) {
        const Case &c = Cases()[k];
        double qdot[7], target[7], out[7];
        QzVelocities(c, qdot);
        if (withTracker) {
            for (int i = 0; i < 7; ++i) target[i] = c.q[i] + qdot[i] * 0.001;
            QZNSyncDTS_OnDT(&tracker, target, out);
            benchmark::DoNotOptimize(out);
        }
        benchmark::DoNotOptimize(qdot);
        k = (k + 1) % kCases;
    }
}

void BM_CartesianCycle_KDL(benchmark::State &state) {
    if (!Agree()) state.SkipWithError("the library and KDL disagree on the joint velocities");
    Kdl kdl;
    int k = 0;
    for (auto _ : state) {
        double qdot[7];
        kdl.Velocities(Cases()[k], qdot);
        benchmark::DoNotOptimize(qdot);
        k = (k + 1) % kCases;
    }
}

}  // namespace

BENCHMARK(BM_CartesianCycle_QZ)->Arg(0)->Arg(1)->ArgName("tracker");
BENCHMARK(BM_CartesianCycle_KDL);
