// Reentrancy: two threads drive their own records of every stateful family, and call the pure
// functions, at the same time. Each thread's results must be bit for bit those of the same work
// done alone, which shows that no call keeps state outside its record. Built with
// ThreadSanitizer (scripts/robustness.sh), a data race between the threads is reported as well.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "test_util.h"

namespace {

// Everything one worker produces, folded into a list of bit patterns.
struct Trace {
    std::vector<std::uint64_t> bits;
    void Add(double x) { bits.push_back(qztest::Bits(x)); }
    void Add(const double *x, int n) {
        for (int i = 0; i < n; ++i) Add(x[i]);
    }
};

// One worker's cycles over all families; `salt` makes the two workers' inputs differ, so that
// sharing anything between them would show in the results.
Trace Work(int salt, int cycles) {
    Trace tr;
    const double k = 1.0 + 0.25 * salt;
    double vel[8], acc[8], jerk[8], t[8], out[8], out2[8], out3[8], out4[8];
    for (int i = 0; i < 8; ++i) {
        vel[i] = (20.0 + 5.0 * i) * k;
        acc[i] = (100.0 + 30.0 * i) * k;
        jerk[i] = 5000.0 * k;
    }
    QZVDTState vdt{};
    QZVDT_OnInit(&vdt, 4.0, vel[0], acc[0]);
    QZNSyncDTSState ns{};
    QZNSyncDTS_OnInit(&ns, 8, 4.0, vel, acc, jerk);
    QZVDTMState vm{};
    QZVDT_OnInitM(&vm, 4.0, vel[1], acc[1], 2);
    vm.mode = 2;
    QZNSyncDTSMState nm{};
    QZNSyncDTS_OnInitM(&nm, 8, 4.0, vel, acc, jerk, 0);
    QZNEstState est{};
    QZOnInitEst(&est, 8, 4.0, vel, vel);
    OneFitterState fit{};
    const double alpha[8] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8};
    OneFitterInit(&fit, 8, alpha);
    QZDCTRLErrorState err{};
    QZ_DCTRL_ErrorCompare_Init(0, &err);
    QZAVGFState avg{};
    QZAVGF_OnInit(&avg, 8, 17, 0.004);
    QZSMVState smv{};
    QZSMV_OnInit(&smv, 0.0, 0.01, 0.02, 0.002);

    for (int c = 0; c < cycles; ++c) {
        const double phase = 0.01 * c * k;
        for (int i = 0; i < 8; ++i) t[i] = 30.0 * QZ_SIN_ARC(phase + i) + (c % 500 < 250 ? 10.0 : -10.0);
        double y;
        QZVDT_OnDT(&vdt, t[0], &y);
        tr.Add(y);
        QZNSyncDTS_OnDT2(&ns, t, out, out2, out3);
        tr.Add(out, 8);
        tr.Add(out3, 8);
        QZVDT_OnDT_BM(&vm, t[1], &y);
        tr.Add(y);
        QZNSyncDTS_OnDTM(&nm, t, out);
        tr.Add(out, 8);
        QZNEst_OnDT(&est, c / 4, t, out, vel);
        tr.Add(out, 8);
        tr.Add(est.velEst, 8);
        OneFitterRun(&fit, t, out);
        tr.Add(out, 8);
        QZ_DCTRL_ErrorCompare(0, t, out, &err, out4);
        tr.Add(out4, 7);
        QZAVGF_OnFilt(&avg, t, out, out2);
        tr.Add(out, 8);
        QZSMV_OnUpdateV(&smv, t[2] * 0.01, &y);
        tr.Add(y);
        if (c % 97 == 0) {
            QZVDT_OnSetRunTimeVel(&vdt, vel[0] * (c % 2 ? 0.5 : 1.0));
            QZNSyncDTS_OnSetRunTimeLmt(&ns, vel, acc);
            QZ_DCTRL_ErrorCompare_Init(0, &err);
        }
        // The pure functions, including the ones with loops and cached-looking constants.
        double roots[4], re[4], im[4], b = t[3] * 37.0;
        tr.Add(static_cast<double>(QZ_CubicSolve(1.0, t[0], t[1], t[2], roots)));
        tr.Add(roots, 1);
        tr.Add(static_cast<double>(QZ_Solve4OrderEq(1.0, t[0], t[1], t[2], t[3], re, im)));
        tr.Add(QZ_MinDif_Circle(t[4] * 1e6, &b));
        tr.Add(b);
        tr.Add(QZ_ACOS(t[5] / 40.0));
        tr.Add(QZ_Floor(t[6] * 1e3));
    }
    return tr;
}

TEST(Threads, TwoThreadsOnSeparateRecordsMatchTheirWorkDoneAlone) {
    constexpr int kCycles = 3000;
    const Trace alone0 = Work(0, kCycles);
    const Trace alone1 = Work(1, kCycles);
    ASSERT_NE(alone0.bits, alone1.bits);  // the workers' inputs differ

    for (int round = 0; round < 3; ++round) {
        std::atomic<int> ready{0};
        Trace r0, r1;
        auto run = [&ready](int salt, Trace *out) {
            ready.fetch_add(1);
            while (ready.load() < 2) {
            }  // start together, so the calls overlap
            *out = Work(salt, kCycles);
        };
        std::thread a(run, 0, &r0);
        std::thread b(run, 1, &r1);
        a.join();
        b.join();
        EXPECT_EQ(r0.bits, alone0.bits) << "round " << round;
        EXPECT_EQ(r1.bits, alone1.bits) << "round " << round;
    }
}

}  // namespace
