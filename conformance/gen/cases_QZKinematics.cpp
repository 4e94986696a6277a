// Cases for the kinematics module: chains built and refused, the forward kinematics, Jacobian,
// damped solver and position IK of the seven-joint arm of examples/arm7.h (and of a short
// three-joint chain, which takes the joint-space form of the solver), the orientation error
// near 0 and pi, and the tracker lead on a running N-axis tracker.
#include <cmath>
#include <string>

#include "QZDT.h"
#include "QZKinematics.h"
#include "gen.h"

namespace qzgen {
namespace {

const double kHalfPi = 1.5707963267948966;

Doubles Padded(Doubles v, size_t n) {
    v.resize(n, 0.0);
    return v;
}

// The arm's table (alpha, a, d, offset per joint), its flange as the tool, and joint limits.
const Doubles kArm = {0,       0, 333,     0,    -kHalfPi, 0,  0,        0,     kHalfPi, 0,
                      316,     0, kHalfPi, 82.5, 0,        0,  -kHalfPi, -82.5, 384,     0,
                      kHalfPi, 0, 0,       0,    kHalfPi,  88, 0,        0};
const Doubles kFlange = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 107, 0, 0, 0, 1};
const Doubles kLo = {-2.8973, -1.7628, -2.8973, -3.0718, -2.8973, -0.0175, -2.8973, 0};
const Doubles kHi = {2.8973, 1.7628, 2.8973, -0.0698, 2.8973, 3.7525, 2.8973, 0};
// The arm stretched: joint 4 where shoulder, elbow and wrist line up, joint 5 at 0.
const Doubles kStretched = {0.35, -0.52, 0.17, -0.46701016, 0.0, 1.66, 0.7, 0};

Doubles ArmInit() { return Join({Padded(kArm, 32), kFlange, kLo, kHi}); }

void Chains(Writer &w) {
    w.comment("chain records: the arm, a short chain without tool or limits, refusals");
    w.seq("QZKinChain", "arm");
    w.op("QZKin_ChainInit", ArmInit(), {7});
    w.state();
    w.op("QZKin_SetDamping", {1000.0, 0.02, 0.005});
    w.op("QZKin_SetDamping", {0.0, 0.02, 0.005});
    w.op("QZKin_SetDamping", {1000.0, kNaN, 0.005});
    for (const Doubles &bad :
         {Doubles{2e9, 0.01, 0.01}, Doubles{1000, 0.0, 0.01}, Doubles{1000, 2.0, 0.01},
          Doubles{1000, 0.01, -1.0}, Doubles{1000, 0.01, 2.0}})
        w.op("QZKin_SetDamping", bad);
    w.state();
    w.end();
    // A record never initialised, and one whose joint count was overwritten: every call refuses.
    for (int32_t count : {0, 9, -1}) {
        w.seq("QZKinChain", "unusable-" + std::to_string(count));
        if (count >= 0) {
            w.op("QZKin_ChainInit", ArmInit(), {7});
            w.set_int("jointNum", count);
        }
        const Doubles q = Padded({0.1, 0.2}, 8);
        w.op("QZKin_Forward", q);
        w.op("QZKin_ForwardPosQuat", q);
        w.op("QZKin_Jacobian", q);
        w.op("QZKin_DampedLeastSquares", Padded({1.0}, 54));
        w.op("QZKin_SolvePosition", Join({{0, 0, 1, 0, 0, 0, 1}, Padded({}, 8), {1e-6, 1e-9}}),
             {10});
        w.op("QZKin_SetDamping", {1.0, 0.1, 0.1});
        w.end();
    }
    w.seq("QZKinChain", "short");
    w.op("QZKin_ChainInit.bare", Padded({0, 0, 100, 0.3, 0, 300, 0, 0, 0, 250, 0, 0}, 32), {3});
    w.state();
    w.end();
    struct Bad {
        const char *label;
        int index;
        double value;
        int32_t n;
    };
    const Bad bad[] = {{"count 0", -1, 0, 0},          {"count 9", -1, 0, 9},
                       {"nan length", 1, kNaN, 7},     {"huge length", 2, 2e9, 7},
                       {"inf twist", 0, kInf, 7},      {"tool scaled", 32, 1.001, 7},
                       {"tool row", 47, 0.5, 7},       {"limit nan", 48, kNaN, 7},
                       {"tool mirrored", 42, -1.0, 7}, {"huge offset", 3, 13.0, 7},
                       {"tool bottom x", 44, 0.5, 7},  {"tool bottom y", 45, 0.5, 7},
                       {"tool bottom z", 46, 0.5, 7},  {"upper limit nan", 59, kNaN, 7},
                       {"limits crossed", 51, 1.0, 7}};
    for (const Bad &b : bad) {
        w.seq("QZKinChain", std::string("refused-") + b.label);
        Doubles d = ArmInit();
        if (b.index >= 0) d[b.index] = b.value;
        w.op("QZKin_ChainInit", d, {b.n});
        w.op("QZKin_Forward", Padded({0.1}, 8));
        w.end();
    }
}

void Kinematics(Writer &w) {
    w.comment("forward kinematics, Jacobian and damped solver of the arm: random, stretched, bad");
    w.seq("QZKinChain", "arm");
    w.op("QZKin_ChainInit", ArmInit(), {7});
    std::vector<Doubles> poses;
    for (int k = 0; k < 12; ++k) poses.push_back(Padded(Randoms(7, -2.8, 2.8), 8));
    for (double d : {0.0, 1e-9, 1e-6, 1e-3, 0.02, 0.2}) {
        Doubles q = kStretched;
        q[3] += d;
        poses.push_back(q);
    }
    poses.push_back(Padded({kNaN, 0, 0, -1, 0, 1, 0}, 8));
    poses.push_back(Padded({0, 0, 2e4, -1, 0, 1, 0}, 8));
    for (const Doubles &q : poses) {
        w.op("QZKin_Forward", q);
        w.op("QZKin_ForwardPosQuat", q);
        w.op("QZKin_Jacobian.bare", q);
        const qzc_frame &f = w.op("QZKin_Jacobian", q);
        const Doubles j(f.o, f.o + 48);
        const Doubles twist = Join({Randoms(3, -200, 200), Randoms(3, -1, 1)});
        w.op("QZKin_DampedLeastSquares", Join({j, twist}));
    }
    // A NaN twist, an infinite Jacobian entry, and undamped at an exact loss of rank.
    const qzc_frame &f = w.op("QZKin_Jacobian", poses[0]);
    Doubles j(f.o, f.o + 48);
    w.op("QZKin_DampedLeastSquares", Join({j, {1, 0, 0, kNaN, 0, 0}}));
    Doubles jinf = j;
    jinf[40] = kInf;
    w.op("QZKin_DampedLeastSquares", Join({jinf, {1, 0, 0, 0, 0, 0}}));
    for (int i = 0; i < 7; ++i) j[35 + i] = j[28 + i];
    w.op("QZKin_SetDamping", {1000.0, 0.01, 0.0});
    w.op("QZKin_DampedLeastSquares", Join({j, {1, 0, 0, 0, 0, 0}}));
    w.end();

    w.seq("QZKinChain", "short");
    w.op("QZKin_ChainInit.bare", Padded({0, 0, 100, 0.3, 0, 300, 0, 0, 0, 250, 0, 0}, 32), {3});
    for (int k = 0; k < 6; ++k) {
        const Doubles q = Padded(Randoms(3, -3, 3), 8);
        const qzc_frame &g = w.op("QZKin_Jacobian", q);
        w.op("QZKin_DampedLeastSquares", Join({Doubles(g.o, g.o + 48), Randoms(6, -1, 1)}));
    }
    w.end();
}

void Sizes(Writer &w) {
    w.comment("chains of 1 to 8 joints: random tables, kinematics, Jacobians and damped solves");
    for (int32_t n = 1; n <= 8; ++n) {
        w.seq("QZKinChain", "joints-" + std::to_string(n));
        Doubles dh;
        for (int i = 0; i < n; ++i) {
            const Doubles row = {Uniform(-3.1, 3.1), Uniform(0, 300), Uniform(0, 300),
                                 Uniform(-1, 1)};
            dh.insert(dh.end(), row.begin(), row.end());
        }
        w.op("QZKin_ChainInit.bare", Padded(dh, 32), {n});
        for (int k = 0; k < 3; ++k) {
            const Doubles q = Padded(Randoms(n, -3, 3), 8);
            w.op("QZKin_Forward", q);
            const qzc_frame &f = w.op("QZKin_Jacobian", q);
            w.op("QZKin_DampedLeastSquares", Join({Doubles(f.o, f.o + 48), Randoms(6, -1, 1)}));
        }
        w.end();
    }
    // Two joints about one axis through the tool point: the Jacobian has rank 1 whatever q, so
    // undamped the IK's solve is refused and the search ends where it began.
    w.seq("QZKinChain", "collinear-undamped");
    w.op("QZKin_ChainInit.bare", Padded({}, 32), {2});
    w.op("QZKin_SetDamping", {1.0, 0.01, 0.0});
    w.op("QZKin_SolvePosition", Join({{0, 0, 0, 0.6, 0, 0, 0.8}, Padded({}, 8), {1e-6, 1e-9}}),
         {20});
    w.state();
    w.end();
}

void OrientationError(Writer &w) {
    w.comment("orientation error: random pairs, near 0 and pi, both signs, refusals");
    for (double phi :
         {0.0, 1e-15, 1e-9, 1e-4, 0.7, 2.5, 3.141592653589793 - 1e-9, 3.141592653589793}) {
        for (int k = 0; k < 4; ++k) {
            Doubles a = Randoms(4, -1, 1), axis = Randoms(3, -1, 1);
            const double n = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
            const double s = std::sin(phi / 2) / n, c = std::cos(phi / 2);
            const Doubles t = {c * a[0] + s * (axis[0] * a[3] + axis[1] * a[2] - axis[2] * a[1]),
                               c * a[1] + s * (axis[1] * a[3] + axis[2] * a[0] - axis[0] * a[2]),
                               c * a[2] + s * (axis[2] * a[3] + axis[0] * a[1] - axis[1] * a[0]),
                               c * a[3] - s * (axis[0] * a[0] + axis[1] * a[1] + axis[2] * a[2])};
            w.pure("QZKin_OrientationError", "angle",
                   Join({k % 2 ? t : Doubles{-t[0], -t[1], -t[2], -t[3]}, a}));
        }
    }
    const Doubles unit = {0, 0, 0, 1};
    for (const Doubles &bad : {Doubles{0, 0, 0, 0}, Doubles{0, kNaN, 0, 1}, Doubles{kInf, 0, 0, 1},
                               Doubles{1e9, 0, 0, 0}})
        w.pure("QZKin_OrientationError", "refused", Join({bad, unit}));
}

void Lead(Writer &w) {
    w.comment("tracker lead: along a run of the N-axis tracker, then after a limit change");
    w.seq("QZNSyncDTSState", "lead");
    const Doubles v = Padded({1.0, 0.3, -0.05, 0.0, 2.0, -1.0, 0.01}, 8);
    const Doubles a = Padded({2.0, 0.0, -1.0, 0.5, 0.0, 0.0, 0.0}, 8);
    w.op("QZKin_TrackerLead", Join({v, a}));  // not initialised
    w.op("QZNSyncDTS_OnInit",
         Join({{1.0},
               Padded({2, 2, 2, 2, 2, 2, 2}, 8),
               Padded({7.5, 7.5, 20, 10, 1, 30, 5}, 8),
               Padded({3750, 375, 3750, 200, 50, 1e4, 1000}, 8)}),
         {7});
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.op("QZKin_TrackerLead.bare", v);
    w.op("QZNSyncDTS_OnSetRunTimeLmt",
         Join({Padded({1, 1, 1, 1, 1, 1, 1}, 8), Padded({3, 3, 3, 3, 3, 3, 3}, 8)}));
    for (int k = 0; k < 3; ++k) w.op("QZNSyncDTS_OnDT", Padded(Randoms(7, -1, 1), 8));
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.op("QZKin_TrackerLead", Join({Padded({kNaN}, 8), a}));
    w.op("QZKin_TrackerLead", Join({v, Padded({kInf}, 8)}));
    w.set("axis[2].accLmt", 0.0);  // a record edited by hand: no lag to speak of
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.set_int("axisNum", 9);
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.set_int("axisNum", 0);
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.end();
    w.seq("QZNSyncDTSState", "lead-nan-cycle");  // the tracker keeps a NaN cycle time
    w.op("QZNSyncDTS_OnInit",
         Join({{kNaN}, Padded({2, 2}, 8), Padded({7.5, 7.5}, 8), Padded({3750, 3750}, 8)}), {2});
    w.op("QZKin_TrackerLead", Join({v, a}));
    w.end();
}

void Ik(Writer &w) {
    w.comment("position IK of the arm (mm): reachable poses from nearby seeds, caps, refusals");
    w.seq("QZKinChain", "arm");
    w.op("QZKin_ChainInit", ArmInit(), {7});
    for (int k = 0; k < 8; ++k) {
        Doubles goal(8, 0.0), seed(8, 0.0);
        for (int i = 0; i < 7; ++i) {
            goal[i] = Uniform(kLo[i], kHi[i]);
            seed[i] = goal[i] + Uniform(-0.5, 0.5);
        }
        const qzc_frame &f = w.op("QZKin_ForwardPosQuat", goal);
        const Doubles pose(f.o, f.o + 7);
        w.op("QZKin_SolvePosition", Join({pose, seed, {1e-6, 1e-9}}), {100});
        w.op("QZKin_SolvePosition", Join({pose, seed, {1e-6, 1e-9}}), {2});
    }
    const Doubles pose = {300, 200, 500, 0, 1, 0, 0}, seed = Padded({0, 0, 0, -1, 0, 1, 0}, 8);
    w.op("QZKin_SolvePosition", Join({{3000, 0, 0, 0, 0, 0, 1}, seed, {1e-6, 1e-9}}), {50});
    w.op("QZKin_SolvePosition", Join({pose, seed, {1e-6, 1e-9}}), {0});
    w.op("QZKin_SolvePosition", Join({pose, seed, {0.0, 1e-9}}), {10});
    w.op("QZKin_SolvePosition", Join({{kNaN, 0, 0, 0, 0, 0, 1}, seed, {1e-6, 1e-9}}), {10});
    const Doubles unit = {0, 0, 0, 1};
    struct BadIk {
        Doubles pose;
        int32_t iters;
        double tolPos, tolRot;
    } bad[] = {
        {{2e9, 0, 0, 0, 0, 0, 1}, 10, 1e-6, 1e-9}, {{0, 0, 0, 0, 0, 3, 1}, 10, 1e-6, 1e-9},
        {{0, 0, 0, 0, 0, 0, 0}, 10, 1e-6, 1e-9},   {Join({{0, 0, 0}, unit}), 1001, 1e-6, 1e-9},
        {Join({{0, 0, 0}, unit}), 10, kNaN, 1e-9}, {Join({{0, 0, 0}, unit}), 10, 2e9, 1e-9},
        {Join({{0, 0, 0}, unit}), 10, 1e-6, 0.0},  {Join({{0, 0, 0}, unit}), 10, 1e-6, 4.0}};
    for (const BadIk &b : bad)
        w.op("QZKin_SolvePosition", Join({b.pose, seed, {b.tolPos, b.tolRot}}), {b.iters});
    w.end();
}

Register chains("QZKinematics_chain", Chains);
Register kinematics("QZKinematics_kinematics", Kinematics);
Register orientation("QZKinematics_orientation_error", OrientationError);
Register lead("QZKinematics_lead", Lead);
Register ik("QZKinematics_ik", Ik);
Register sizes("QZKinematics_sizes", Sizes);

}  // namespace
}  // namespace qzgen
