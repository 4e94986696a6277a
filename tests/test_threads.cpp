// Reentrancy: two threads drive their own records of every stateful family, and call the pure
// functions, at the same time. Each thread's results must be bit for bit those of the same work
// done alone, which shows that no call keeps state outside its record. Built with
// ThreadSanitizer (scripts/robustness.sh), a data race between the threads is reported as well.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "QZMatrix.h"
#include "test_util.h"

namespace {

using Trace = std::vector<std::uint64_t>;

// One worker's cycles over all families, folded into bit patterns; `salt` makes the two
// workers' inputs differ, so that sharing anything between them would show in the results.
Trace Work(int salt, int cycles) {
    Trace tr;
    auto add = [&tr](const double *x, int n) {
        for (int i = 0; i < n; ++i) tr.push_back(qztest::Bits(x[i]));
    };
    const double k = 1.0 + 0.25 * salt, alpha[8] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8};
    double vel[8], acc[8], jerk[8], t[8], o[8], o2[8], o3[8], y;
    for (int i = 0; i < 8; ++i)
        vel[i] = (20.0 + 5.0 * i) * k, acc[i] = (100.0 + 30.0 * i) * k, jerk[i] = 5000.0 * k;
    QZVDTState vdt{};
    QZNSyncDTSState ns{};
    QZVDTMState vm{};
    QZNSyncDTSMState nm{};
    QZNEstState est{};
    OneFitterState fit{};
    QZDCTRLErrorState err{};
    QZAVGFState avg{};
    QZSMVState smv{};
    QZVDT_OnInit(&vdt, 4.0, vel[0], acc[0]);
    QZNSyncDTS_OnInit(&ns, 8, 4.0, vel, acc, jerk);
    QZVDT_OnInitM(&vm, 4.0, vel[1], acc[1], 2);
    vm.mode = 2;
    QZNSyncDTS_OnInitM(&nm, 8, 4.0, vel, acc, jerk, 0);
    QZOnInitEst(&est, 8, 4.0, vel, vel);
    OneFitterInit(&fit, 8, alpha);
    QZ_DCTRL_ErrorCompare_Init(0, &err);
    QZAVGF_OnInit(&avg, 8, 17, 0.004);
    QZSMV_OnInit(&smv, 0.0, 0.01, 0.02, 0.002);
    for (int c = 0; c < cycles; ++c) {
        for (int i = 0; i < 8; ++i)
            t[i] = 30.0 * QZ_SIN_ARC(0.01 * c * k + i) + (c % 500 < 250 ? 10.0 : -10.0);
        QZVDT_OnDT(&vdt, t[0], &y), add(&y, 1);
        QZNSyncDTS_OnDT2(&ns, t, o, o2, o3), add(o, 8), add(o3, 8);
        QZVDT_OnDT_BM(&vm, t[1], &y), add(&y, 1);
        QZNSyncDTS_OnDTM(&nm, t, o), add(o, 8);
        QZNEst_OnDT(&est, c / 4, t, o, vel), add(o, 8), add(est.velEst, 8);
        OneFitterRun(&fit, t, o), add(o, 8);
        QZ_DCTRL_ErrorCompare(0, t, o, &err, o2), add(o2, 7);
        QZAVGF_OnFilt(&avg, t, o, o2), add(o, 8);
        QZSMV_OnUpdateV(&smv, t[2] * 0.01, &y), add(&y, 1);
        if (c % 97 == 0) {
            QZVDT_OnSetRunTimeVel(&vdt, vel[0] * (c % 2 ? 0.5 : 1.0));
            QZNSyncDTS_OnSetRunTimeLmt(&ns, vel, acc);
            QZ_DCTRL_ErrorCompare_Init(0, &err);
        }
        // The pure functions with loops and cached-looking constants.
        double roots[4], re[4], im[4], b = t[3] * 37.0;
        const double pure[] = {
            static_cast<double>(QZ_CubicSolve(1.0, t[0], t[1], t[2], roots)),
            roots[0],
            static_cast<double>(QZ_Solve4OrderEq(1.0, t[0], t[1], t[2], t[3], re, im)),
            QZ_MinDif_Circle(t[4] * 1e6, &b),
            b,
            QZ_ACOS(t[5] / 40.0),
            QZ_Floor(t[6] * 1e3)};
        add(pure, 7);
    }
    return tr;
}

TEST(Threads, TwoThreadsOnSeparateRecordsMatchTheirWorkDoneAlone) {
    constexpr int kCycles = 3000;
    const Trace alone[2] = {Work(0, kCycles), Work(1, kCycles)};
    ASSERT_NE(alone[0], alone[1]);  // the workers' inputs differ
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> ready{0};
        Trace got[2];
        auto run = [&](int salt) {
            ready.fetch_add(1);
            while (ready.load() < 2) {}  // start together, so the calls overlap
            got[salt] = Work(salt, kCycles);
        };
        std::thread a(run, 0), b(run, 1);
        a.join(), b.join();
        EXPECT_TRUE(got[0] == alone[0]) << "round " << round;
        EXPECT_TRUE(got[1] == alone[1]) << "round " << round;
    }
}

// generalized_eig7 keeps nothing between calls: two threads solving different problems at once,
// one of them failing every other call after three columns of the factor, each get the bits they
// get alone.
TEST(Threads, GeneralizedEig7CallsMayOverlap) {
    auto work = [](int salt) {
        Trace tr;
        for (int c = 0; c < 400; ++c) {
            double A[49], B[49], V[49], lam[7];
            for (int i = 0; i < 7; ++i) {
                for (int j = 0; j < 7; ++j) {
                    A[i * 7 + j] = QZ_SIN_ARC(0.37 * c + salt + i * j + i + j);
                    B[i * 7 + j] = i == j ? 4.0 + i : 0.3 * QZ_SIN_ARC(0.1 * c - salt + i + j);
                }
            }
            if (salt == 1 && c % 2 == 1) B[3 * 7 + 3] = -1.0;
            for (double &x : V) x = -7.0;
            for (double &x : lam) x = -7.0;
            tr.push_back(generalized_eig7(1e-14, A, B, V, lam));
            for (double x : V) tr.push_back(qztest::Bits(x));
            for (double x : lam) tr.push_back(qztest::Bits(x));
        }
        return tr;
    };
    const Trace alone[2] = {work(0), work(1)};
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> ready{0};
        Trace got[2];
        auto run = [&](int salt) {
            ready.fetch_add(1);
            while (ready.load() < 2) {}
            got[salt] = work(salt);
        };
        std::thread a(run, 0), b(run, 1);
        a.join(), b.join();
        EXPECT_TRUE(got[0] == alone[0] && got[1] == alone[1]) << "round " << round;
    }
}

}  // namespace
