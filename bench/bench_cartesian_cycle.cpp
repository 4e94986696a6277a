// One Cartesian control cycle of the seven-joint arm of examples/arm7.h (example 09), side by side
// in one run: with the library's kinematics module, the same cycle hand-written in fixed-size
// Eigen, and with KDL. The cycle: forward kinematics, the geometric Jacobian, the orientation
// error as a rotation vector, the joint velocities by damped least squares on the unitless
// Jacobian, and (Arg 1) the seven-axis tracker step.
//
// The Eigen cycle is what a careful engineer writes by hand: the twists' sines and cosines formed
// once, 3x3 rotations accumulated, AngleAxis for the orientation error, and the plain undamped
// least-squares solve by a Cholesky factorisation of the 6x6 Gram matrix (no singular-value
// estimate, so it does less than the library). KDL's cycle uses ChainFkSolverPos_recursive,
// ChainJntToJacSolver and ChainIkSolverVel_wdls with the same weights and damping.
//
// Before timing, the three compute the joint velocities of every case, and the benchmark fails
// unless they agree to 1e-9 relative (the poses are kept away from the arm's singularities).
//
// BM_Dls_QZ and BM_PseudoInverse_QZ set the damped solver with its singular-value estimate beside
// the plain pseudo-inverse QZ_RightPsoInv67 and its product with the twist.
#include <QZDT.h>
#include <QZKinematics.h>
#include <QZMatrix.h>
#include <QZQuaternions.h>
#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolvervel_wdls.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/frames.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "../examples/arm7_kdl.hpp"

namespace {

constexpr int kCases = 64;
constexpr double kGain = 20.0;  // 1/s: pose error to twist

struct Case {
    double q[7];      // joint angles (rad)
    double want[7];   // commanded pose: x y z (mm), qx qy qz qw
    double twist[6];  // feed-forward twist: mm/s, rad/s
};

// The arm as a chain: the seven links of arm7.h, the flange as the tool.
const QZKinChain &Chain() {
    static const QZKinChain chain = [] {
        QZKinChain c;
        if (arm7_chain(1.0, &c) != QZ_KIN_OK) std::abort();
        return c;
    }();
    return chain;
}

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
        double pose[7], turn[4], axis[3] = {u(rng), u(rng), u(rng)};
        QZKin_ForwardPosQuat(&Chain(), c.q, pose);
        const double n = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
        const double half = 0.5 * 0.03 * u(rng);
        for (int i = 0; i < 3; ++i) turn[i] = std::sin(half) * axis[i] / n;
        turn[3] = std::cos(half);
        for (int i = 0; i < 3; ++i) c.want[i] = pose[i] + 3.0 * u(rng);
        QZ_QuatMult(turn, pose + 3, c.want + 3);
        for (double &v : c.twist) v = 50.0 * u(rng);
        for (int i = 3; i < 6; ++i) c.twist[i] *= 0.01;
    }
    made = true;
    return cases;
}

// The library's cycle: the twist to follow, then the joint velocities.
void QzVelocities(const Case &c, double qdot[7]) {
    double j[42], t[16], have[4], rot[3], v[6];
    QZKin_Jacobian(&Chain(), c.q, j, t);
    QZ_Matrix2Quaternion4(t, have);  // the error needs no unit quaternion
    QZKin_OrientationError(c.want + 3, have, rot);
    for (int i = 0; i < 3; ++i) {
        v[i] = c.twist[i] + kGain * (c.want[i] - t[4 * i + 3]);
        v[i + 3] = c.twist[i + 3] + kGain * rot[i];
    }
    if (QZKin_DampedLeastSquares(&Chain(), j, v, qdot, nullptr) != QZ_KIN_OK) std::abort();
}

// The same cycle in hand-written fixed-size Eigen.
struct EigenArm {
    using Mat3 = Eigen::Matrix3d;
    using Vec3 = Eigen::Vector3d;
    double sa[7], ca[7], scale;
    EigenArm() : scale(1.0 / Chain().lengthScale) {
        for (int i = 0; i < 7; ++i) {
            sa[i] = std::sin(kArm7Links[i].alpha);
            ca[i] = std::cos(kArm7Links[i].alpha);
        }
    }
    void Velocities(const Case &c, double out[7]) const {
        Mat3 r = Mat3::Identity();
        Vec3 p = Vec3::Zero();
        Eigen::Matrix<double, 3, 7> z, o;
        for (int i = 0; i < 7; ++i) {
            const double st = std::sin(c.q[i]), ct = std::cos(c.q[i]);
            Mat3 link;
            link << ct, -st, 0, st * ca[i], ct * ca[i], -sa[i], st * sa[i], ct * sa[i], ca[i];
            p += r * Vec3(kArm7Links[i].a, -sa[i] * kArm7Links[i].d, ca[i] * kArm7Links[i].d);
            r = r * link;
            z.col(i) = r.col(2);
            o.col(i) = p;
        }
        const Vec3 tip = p + r.col(2) * kArm7Flange.d;
        Eigen::Matrix<double, 6, 7> jn;
        for (int i = 0; i < 7; ++i) {
            jn.col(i).head<3>() = z.col(i).cross(tip - o.col(i)) * scale;
            jn.col(i).tail<3>() = z.col(i);
        }
        const Eigen::Quaterniond want(c.want[6], c.want[3], c.want[4], c.want[5]);
        const Eigen::AngleAxisd err(want * Eigen::Quaterniond(r).inverse());
        Eigen::Matrix<double, 6, 1> v;
        for (int i = 0; i < 3; ++i) v(i) = (c.twist[i] + kGain * (c.want[i] - tip(i))) * scale;
        v.tail<3>() = Vec3(c.twist + 3) + kGain * err.angle() * err.axis();
        const Eigen::Matrix<double, 6, 6> g = jn * jn.transpose();
        Eigen::Map<Eigen::Matrix<double, 7, 1>> qdot(out);
        qdot = jn.transpose() * g.llt().solve(v);
    }
};

struct Kdl {
    KDL::Chain chain = Arm7Chain(1.0);
    KDL::ChainFkSolverPos_recursive fk{chain};
    KDL::ChainJntToJacSolver jac{chain};
    KDL::ChainIkSolverVel_wdls ik{chain};
    KDL::JntArray q{7}, qdot{7};
    KDL::Jacobian j{7};

    Kdl() {
        Eigen::MatrixXd wx = Eigen::MatrixXd::Identity(6, 6);
        for (int k = 0; k < 3; ++k) wx(k, k) = 1.0 / Chain().lengthScale;
        ik.setWeightTS(wx);
        ik.setEps(Chain().sigmaThreshold);
        ik.setLambda(Chain().lambdaMax);
    }
    // Its Jacobian is computed as the controller would (it is what the twist feeds); the
    // velocity solver forms its own, and the pseudo-inverse by SVD.
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

double Difference(const double *a, const double *b) {
    double num = 0.0, den = 0.0;
    for (int i = 0; i < 7; ++i) {
        num += (a[i] - b[i]) * (a[i] - b[i]);
        den += b[i] * b[i];
    }
    return std::sqrt(num / den);
}

bool Agree() {
    static const bool agree = [] {
        Kdl kdl;
        const EigenArm eig;
        double worstKdl = 0.0, worstEigen = 0.0;
        for (int k = 0; k < kCases; ++k) {
            double a[7], b[7], e[7];
            QzVelocities(Cases()[k], a);
            kdl.Velocities(Cases()[k], b);
            eig.Velocities(Cases()[k], e);
            worstKdl = std::max(worstKdl, Difference(a, b));
            worstEigen = std::max(worstEigen, Difference(a, e));
        }
        std::printf("joint velocities, library against KDL %.2e, against Eigen %.2e (relative)\n",
                    worstKdl, worstEigen);
        return worstKdl <= 1e-9 && worstEigen <= 1e-9;
    }();
    return agree;
}

// The seven-axis tracker step that follows the velocities (Arg 1), the same for every variant.
struct Tracker {
    QZNSyncDTSState s{};
    Tracker() {
        const double vel[7] = {2, 2, 2, 2, 2, 2, 2}, acc[7] = {10, 10, 10, 10, 10, 10, 10},
                     jerk[7] = {200, 200, 200, 200, 200, 200, 200};
        QZNSyncDTS_OnInit(&s, 7, 1.0, vel, acc, jerk);
    }
    void Step(const Case &c, const double *qdot) {
        double target[7], out[7];
        for (int i = 0; i < 7; ++i) target[i] = c.q[i] + qdot[i] * 0.001;
        QZNSyncDTS_OnDT(&s, target, out);
        benchmark::DoNotOptimize(out);
    }
};

template <class Cycle>
void RunCycle(benchmark::State &state, Cycle cycle) {
    if (!Agree()) state.SkipWithError("the library, Eigen and KDL disagree on the velocities");
    Tracker tracker;
    const bool withTracker = state.range(0) != 0;
    int k = 0;
    for (auto _ : state) {
        const Case &c = Cases()[k];
        double qdot[7];
        cycle(c, qdot);
        if (withTracker) tracker.Step(c, qdot);
        benchmark::DoNotOptimize(qdot);
        k = (k + 1) % kCases;
    }
}

void BM_CartesianCycle_QZ(benchmark::State &state) { RunCycle(state, QzVelocities); }

void BM_CartesianCycle_Eigen(benchmark::State &state) {
    const EigenArm arm;
    RunCycle(state, [&arm](const Case &c, double *qdot) { arm.Velocities(c, qdot); });
}

void BM_CartesianCycle_KDL(benchmark::State &state) {
    Kdl kdl;
    RunCycle(state, [&kdl](const Case &c, double *qdot) { kdl.Velocities(c, qdot); });
}

// Jacobians of every case, for the two solvers alone.
const double *Jacobians() {
    static double j[kCases][42];
    static bool made = false;
    for (int k = 0; !made && k < kCases; ++k) QZKin_Jacobian(&Chain(), Cases()[k].q, j[k], nullptr);
    made = true;
    return &j[0][0];
}

void BM_Dls_QZ(benchmark::State &state) {
    const double *j = Jacobians();
    int k = 0;
    for (auto _ : state) {
        double qdot[7], report[2];
        QZKin_DampedLeastSquares(&Chain(), j + 42 * k, Cases()[k].twist, qdot, report);
        benchmark::DoNotOptimize(qdot);
        benchmark::DoNotOptimize(report);
        k = (k + 1) % kCases;
    }
}

void BM_PseudoInverse_QZ(benchmark::State &state) {
    const double *j = Jacobians();
    int k = 0;
    for (auto _ : state) {
        double pinv[42], qdot[7];
        QZ_RightPsoInv67(j + 42 * k, pinv);
        QZ_Matrix76MultVect6(pinv, Cases()[k].twist, qdot);
        benchmark::DoNotOptimize(qdot);
        k = (k + 1) % kCases;
    }
}

}  // namespace

BENCHMARK(BM_CartesianCycle_QZ)->Arg(0)->Arg(1)->ArgName("tracker");
BENCHMARK(BM_CartesianCycle_Eigen)->Arg(0)->Arg(1)->ArgName("tracker");
BENCHMARK(BM_CartesianCycle_KDL)->Arg(0)->Arg(1)->ArgName("tracker");
BENCHMARK(BM_Dls_QZ);
BENCHMARK(BM_PseudoInverse_QZ);
