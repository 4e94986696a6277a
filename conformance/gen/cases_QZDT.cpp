// Operation sequences for the trackers, the estimator, the fitter and the error comparator, long
// enough to reach their late behaviour: ring wraps, re-summations, ramps, jitter scores.
#include <cmath>

#include "QZDT.h"
#include "gen.h"

namespace qzgen {
namespace {

Doubles Fill8(double v, int n) {
    Doubles a(8, 0.0);
    for (int k = 0; k < n; ++k) a[k] = v;
    return a;
}

// ---- Single-axis tracker ----
void Tracker(Writer &w) {
    w.seq("QZVDTState", "refusal-and-init-clamps");
    w.op("QZVDT_OnDT", {5.0});
    w.op("QZVDT_OnEmpty");
    w.op("QZVDT_OnSetRunTimeLmt", {10, 10});
    w.op("QZVDT_OnSetRunTimeVel", {10});
    w.op("QZVDT_OnSetRunTimeAcc", {10});
    const Doubles inits[] = {{4, 0.05, 0.5},
                             {0.5, 300, 5000},
                             {2000, 50, 100},
                             {Down(1.0), 0.1, 1},
                             {1000, Up(200.0), Down(1.0)},
                             {1, kNaN, kNaN},
                             {-5, -1, -1},
                             {4, 50, 100}};
    for (const Doubles &i : inits) {
        w.op("QZVDT_OnInit", i);
        w.state();
    }
    w.op("QZVDT_OnInit", {kNaN, 50, 100});
    w.op("QZVDT_OnDT", {1.0});
    w.op("QZVDT_OnDT", {2.0});
    w.end();

    w.seq("QZVDTState", "ramp-4ms-50-100-to-100");
    w.op("QZVDT_OnInit", {4, 50, 100});
    w.op("QZVDT_OnDT", {0.0});
    for (int k = 0; k < 650; ++k) {
        w.op("QZVDT_OnDT", {100.0});
        if (k == 300) w.state();
    }
    w.end();

    w.seq("QZVDTState", "run-time-limits");
    w.op("QZVDT_OnInit", {4, 100, 100});
    w.op("QZVDT_OnDT", {0.0});
    for (int k = 0; k < 300; ++k) w.op("QZVDT_OnDT", {1000.0});
    w.op("QZVDT_OnSetRunTimeVel", {50});  // below the speed: ramp down over 125 steps
    w.state();
    for (int k = 0; k < 140; ++k) w.op("QZVDT_OnDT", {1000.0});
    w.op("QZVDT_OnSetRunTimeVel", {50.05});
    w.op("QZVDT_OnSetRunTimeVel", {50.5});
    w.op("QZVDT_OnSetRunTimeLmt", {50.5, 100.5});
    w.op("QZVDT_OnSetRunTimeAcc", {100.55});
    w.op("QZVDT_OnSetRunTimeAcc", {150});
    w.op("QZVDT_OnSetRunTimeVel", {500});
    for (int k = 0; k < 60; ++k) w.op("QZVDT_OnDT", {-1000.0});
    w.op("QZVDT_OnSetRunTimeLmt", {20, 150});
    for (int k = 0; k < 5; ++k) w.op("QZVDT_OnDT", {-1000.0});
    w.op("QZVDT_OnEmpty");  // a ramp is still pending: snap, then the ramp branch from rest
    for (int k = 0; k < 150; ++k) w.op("QZVDT_OnDT", {-1000.0 + k});
    w.end();

    w.seq("QZVDTState", "moving-target-1ms");
    w.op("QZVDT_OnInit", {1, 30, 200});
    double target = 0;
    for (int k = 0; k < 1500; ++k) {
        if (k % 300 == 299) w.op("QZVDT_OnSetRunTimeLmt", {Uniform(5, 60), Uniform(50, 400)});
        if (k % 97 == 0) target += Uniform(-20, 20);  // a jump
        target += Uniform(-0.05, 0.05) + 0.5 * std::sin(k * 0.01) * 0.001;
        w.op("QZVDT_OnDT", {target});
    }
    w.end();

    for (double cycle : {7.0, 8.5, 10.0, 20.0}) {
        w.seq("QZVDTState", "long-cycle-" + std::to_string(cycle));
        w.op("QZVDT_OnInit", {cycle, 10, 50});
        w.op("QZVDT_OnDT", {0.0});
        for (int k = 0; k < 250; ++k) w.op("QZVDT_OnDT", {1.0});
        w.end();
    }

    w.seq("QZVDTState", "non-finite-targets-and-cleared-init");
    w.op("QZVDT_OnInit", {2, 10, 50});
    for (double t : {0.0, 0.5, kNaN, 0.5, kInf, 0.5, -0.0}) w.op("QZVDT_OnDT", {t});
    w.op("QZVDT_OnEmpty");
    for (double t : {-0.0, 1.0, 1.0}) w.op("QZVDT_OnDT", {t});
    w.set("isInit", 0);
    w.op("QZVDT_OnDT", {2.0});
    w.op("QZVDT_OnEmpty");
    w.end();
}

// ---- N-axis smoothed tracker ----
void TrackerN(Writer &w) {
    w.seq("QZNSyncDTSState", "init-refusals");
    w.op("QZNSyncDTS_OnDT", Fill8(1, 8));
    w.op("QZNSyncDTS_OnEmpty");
    w.op("QZNSyncDTS_OnGetCurPVA_U");
    Doubles good = {4, 50, 50, 0, 0, 0, 0, 0, 0, 10, 10, 0, 0, 0, 0, 0, 0, 200, 200};
    w.op("QZNSyncDTS_OnInit", good, {0});
    w.op("QZNSyncDTS_OnInit", good, {9});
    w.op("QZNSyncDTS_OnInit", good, {-1});
    Doubles badJerk = good;
    badJerk[18] = 0.5;
    w.op("QZNSyncDTS_OnInit", badJerk, {2});
    badJerk[18] = 2e12;
    w.op("QZNSyncDTS_OnInit", badJerk, {2});
    badJerk[18] = Down(1.0);
    w.op("QZNSyncDTS_OnInit", badJerk, {2});
    badJerk[18] = kNaN;
    w.op("QZNSyncDTS_OnInit", badJerk, {2});
    w.end();

    w.seq("QZNSyncDTSState", "three-axes-spans-12-3-30");
    Doubles init = {4, 50, 50, 50, 0, 0, 0, 0, 0, 10, 10, 10, 0, 0, 0, 0, 0, 200, 1e12, 1};
    w.op("QZNSyncDTS_OnInit", init, {3});
    w.op("QZNSyncDTS_OnGetCurPVA");
    w.op("QZNSyncDTS_OnGetCurPVA_U");
    w.op("QZNSyncDTS_OnDT", {0, 0, 0});
    Doubles far = {100, -50, 3};
    for (int k = 0; k < 700; ++k) {
        if (k % 7 == 3)
            w.op("QZNSyncDTS_OnDT2", far);
        else if (k % 11 == 5)
            w.op("QZNSyncDTS_OnDT_NoChange");
        else
            w.op("QZNSyncDTS_OnDT", far);
        if (k % 50 == 0) w.op("QZNSyncDTS_OnGetCurPVA");
        if (k == 350) w.state();
    }
    w.op("QZNSyncDTS_OnSetRunTimeLmt", {20, 80, 5, 0, 0, 0, 0, 0, 30, 30, 30});
    w.op("QZNSyncDTS_OnSetRunTimeVel", {25, 80.05, 5});
    w.op("QZNSyncDTS_OnSetRunTimeAcc", {30, 5, 31});
    for (int k = 0; k < 200; ++k)
        w.op("QZNSyncDTS_OnDT.same", {}, {}, {-100 + 0.1 * k, 20, std::sin(k * 0.05)});
    w.op("QZNSyncDTS_OnEmpty");
    w.op("QZNSyncDTS_OnGetCurPVA");
    w.op("QZNSyncDTS_OnGetCurPVA_U");
    for (int k = 0; k < 40; ++k) w.op("QZNSyncDTS_OnDT2", {1, 2, 3});
    w.set("axis[1].isInit", 0);  // a cleared axis counts as refusing
    for (int k = 0; k < 40; ++k) w.op("QZNSyncDTS_OnDT2", {4, 5, 6});
    w.end();

    w.seq("QZNSyncDTSState", "eight-axes-random-1ms");
    Doubles init8 = {1};
    for (int k = 0; k < 8; ++k) init8.push_back(Uniform(1, 100));
    for (int k = 0; k < 8; ++k) init8.push_back(Uniform(10, 500));
    for (int k = 0; k < 8; ++k) init8.push_back(Uniform(100, 50000));
    w.op("QZNSyncDTS_OnInit", init8, {8});
    Doubles t(8, 0.0);
    for (int k = 0; k < 400; ++k) {
        for (int a = 0; a < 8; ++a) {
            if (k % 53 == a) t[a] += Uniform(-5, 5);
            t[a] += Uniform(-0.01, 0.01);
        }
        w.op(k % 2 ? "QZNSyncDTS_OnDT2" : "QZNSyncDTS_OnDT", t);
    }
    w.end();
}

// ---- Multi-stage tracker ----
void TrackerM(Writer &w) {
    w.seq("QZVDTMState", "refusal-and-corr-scale");
    w.op("QZVDT_OnDT_BM", {1.0});
    for (double v : {1.8, 90.0, 36.0, Up(36.0), 500.0, kNaN}) {
        w.op("QZVDT_OnInitM", {4, v, 100}, {1});
        w.state();
    }
    w.end();
    for (int mode : {0, 1, 2, -1}) {
        w.seq("QZVDTMState", "cascade-mode-" + std::to_string(mode));
        w.op("QZVDT_OnInitM", {4, 90, 100}, {mode});
        w.set_int("mode", mode);  // the single-axis record leaves its mode to the caller
        w.op("QZVDT_OnDT_BM", {0.0});
        for (int k = 0; k < 400; ++k) w.op("QZVDT_OnDT_BM", {50.0});
        w.state();
        for (int k = 0; k < 200; ++k)
            w.op("QZVDT_OnDT_BM", {50.0 + 0.3 * std::sin(k * 0.1) + Uniform(-0.01, 0.01)});
        w.op("QZVDT_OnSetRunTimeLmtM", {60, 200}, {mode});
        for (int k = 0; k < 150; ++k) w.op("QZVDT_OnDT_BM", {-10.0});
        w.op("QZVDT_OnEmptyM");
        for (int k = 0; k < 30; ++k) w.op("QZVDT_OnDT_BM", {-9.0});
        w.end();
    }
}

// ---- Estimator ----
void EstimatorRun(Writer &w, int n, double cycleMs, int calls, int firstStamp) {
    Doubles init = {cycleMs};
    for (int k = 0; k < 8; ++k) init.push_back(k < n ? 60.0 : 0.0);
    for (int k = 0; k < 8; ++k) init.push_back(k < n ? 50.0 : 0.0);
    w.op("QZOnInitEst", init, {n});
    const int nominal = (int)cycleMs;
    int stamp = firstStamp, next = 0;
    double pos[8] = {0};
    for (int t = 0; t < calls; ++t) {
        double v = 40 * std::sin(t * 0.002) + 20;  // reference speed crosses 0.97 and 0.85 of 60
        if (t == next) {
            // arrival jitter: mostly on time, sometimes a little or much late or early, one gap
            double u = Uniform(0, 1);
            int gap = u < 0.6    ? nominal
                      : u < 0.75 ? nominal + 1
                      : u < 0.9  ? nominal - 1
                      : u < 0.97 ? nominal + 3
                                 : nominal * 3;
            if (t > calls / 2 && t < calls / 2 + nominal) gap = 60;  // beyond holdLimit
            if (gap < 1) gap = 1;
            next = t + gap;
            stamp = (stamp + gap) % 9993;
            for (int a = 0; a < n; ++a) pos[a] += v * gap * 0.001 * (a + 1) + Uniform(-1e-3, 1e-3);
        }
        Doubles d;
        for (int a = 0; a < 8; ++a) d.push_back(a < n ? pos[a] : 0.0);
        for (int a = 0; a < 8; ++a) d.push_back(a < n ? v * (a == 0 ? 1 : 0.5) : 0.0);
        if (t % 97 == 40) {
            Doubles x(d.begin(), d.begin() + 8), r(d.begin() + 8, d.end());
            w.op("QZNEst_OnDT.same", r, {stamp}, x);
        } else {
            w.op("QZNEst_OnDT", d, {stamp});
        }
        if (t == calls / 3) w.op("QZNEst_OnSetRunTimeLmt", {55, 70, 10, 80});
        if (t == (2 * calls) / 3) w.op("QZNEst_OnEmpty");
        if (t % 400 == 399) w.state();
    }
}

void Estimator(Writer &w) {
    w.seq("QZNEstState", "cycle4-two-axes");
    EstimatorRun(w, 2, 4, 1800, 9900);
    w.end();
    w.seq("QZNEstState", "cycle2-one-axis");
    EstimatorRun(w, 1, 2, 900, 9000);
    w.end();
    w.seq("QZNEstState", "cycle1-three-axes");
    EstimatorRun(w, 3, 1, 450, 0);
    w.end();
    w.seq("QZNEstState", "init-variants");
    for (double c : {20.0, 4.0, 2.5, 0.1, kNaN, 1e12, -3.0}) {
        w.op("QZOnInitEst", {c, 60, 60, 60, 60, 60, 60, 60, 60, 50, 50, 50, 50, 50, 50, 50, 50},
             {8});
        w.state();
        w.op("QZNEst_OnDT", {1, 2, 3, 4, 5, 6, 7, 8, 1, 1, 1, 1, 1, 1, 1, 1}, {17});
        w.op("QZNEst_OnDT", {2, 3, 4, 5, 6, 7, 8, 9, 59, 59, 59, 59, 59, 59, 59, 59}, {18});
    }
    for (int n : {0, 9, -2}) {
        w.op("QZOnInitEst", {4, 60, 60, 60, 60, 60, 60, 60, 60, 50, 50, 50, 50, 50, 50, 50, 50},
             {n});
        w.op("QZNEst_OnDT", {1, 2, 3, 4, 5, 6, 7, 8}, {3});
        w.state();
    }
    w.end();
}

// ---- Fitter and comparator ----
void Fitter(Writer &w) {
    w.seq("OneFitterState", "three-channels");
    w.op("OneFitterInit", {0.5, 1, 0, 0.25, 0.125, 0.9, 0.1, 0.3}, {3});
    for (int k = 0; k < 60; ++k) w.op("OneFitterRun", {1, Uniform(-1, 1), 5, 7, 7, 7, 7, 7});
    for (int k = 0; k < 10; ++k) w.op("OneFitterRun.same", {}, {}, {-1, kNaN, 2, 3, 3, 3, 3, 3});
    w.end();
    w.seq("OneFitterState", "counts");
    for (int n : {0, -1, 1, 8, 12}) {
        w.op("OneFitterInit", {0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5}, {n});
        for (int k = 0; k < 3; ++k) w.op("OneFitterRun", {1, 2, 3, 4, 5, 6, 7, 8});
        w.state();
    }
    w.end();
    w.seq("OneFitterState", "dirty-record");
    w.fill(0xa5);
    w.op("OneFitterInit", {0.5, -0.0, kInf}, {2});
    w.op("OneFitterRun", {-0.0, -0.0});
    w.end();
}

void Comparator(Writer &w) {
    w.seq("QZDCTRLErrorState", "dead-band-clamps-integrator");
    w.op("QZ_DCTRL_ErrorCompare_Init", {}, {123});
    const double errs[] = {0.1, 0.15, Up(0.15), Down(0.15), -0.15, -Up(0.15), 0, -0.0};
    for (double e : errs) {
        Doubles d(16, 0.0);
        for (int j = 0; j < 8; ++j) d[8 + j] = e;
        w.op("QZ_DCTRL_ErrorCompare", d, {0});
    }
    for (int k = 0; k < 40; ++k) {  // constant error 2: the integrator runs into its limit
        Doubles d(16, 0.0);
        for (int j = 0; j < 8; ++j) d[8 + j] = j % 2 ? 2.0 : -2.0;
        w.op("QZ_DCTRL_ErrorCompare", d, {k});
    }
    w.state();
    w.set("kProp[2]", 0.5);
    w.set("outLmt[3]", 100);
    for (int k = 0; k < 100; ++k) {
        Doubles d;
        for (int j = 0; j < 16; ++j) d.push_back(Uniform(-3, 3));
        w.op(k % 3 == 0   ? "QZ_DCTRL_ErrorCompare"
             : k % 3 == 1 ? "QZ_DCTRL_ErrorCompare.first"
                          : "QZ_DCTRL_ErrorCompare.second",
             Doubles(d.begin(), d.begin() + (k % 3 == 0 ? 16 : 8)), {0},
             k % 3 == 0 ? Doubles{} : Doubles(d.begin() + 8, d.end()));
    }
    w.op("QZ_DCTRL_ErrorCompare", {kNaN, 0, kInf, 0, 0, 0, 0, 0, 0, kNaN, 0, -kInf}, {0});
    w.end();
}

// ---- N-axis multi-stage tracker ----
Doubles InitM(double cycleMs, int n, double v, double a) {
    Doubles d = {cycleMs};
    for (int k = 0; k < 8; ++k) d.push_back(k < n ? v * (k + 1) : 0.0);
    for (int k = 0; k < 8; ++k) d.push_back(k < n ? a : 0.0);
    return d;
}

void TrackerNM(Writer &w) {
    w.seq("QZNSyncDTSMState", "init-spans-and-jerk-clamps");
    w.op("QZNSyncDTS_OnDTM", Fill8(1, 8));
    w.op("QZNSyncDTS_OnInitM", InitM(4, 1, 10, 10), {0, 0}, {500, 5e7});
    w.op("QZNSyncDTS_OnInitM", InitM(4, 1, 10, 10), {9, 0}, {500, 5e7});
    w.op("QZNSyncDTS_OnInitM", InitM(1, 3, 10, 100), {3, 0}, {1000, 5e7, kNaN});
    w.state();
    w.op("QZNSyncDTS_OnInitM", InitM(1, 3, 10, 100), {3, 1}, {Down(1000.0), Up(1e7), 1e4});
    w.op("QZNSyncDTS_OnInitM", InitM(1, 3, 10, 100), {3, 2}, {500, 5e7, 1e4});
    w.op("QZNSyncDTS_OnInitM", InitM(0.5, 2, 10, 1e6), {2, 0}, {1000, 1000});
    w.state();
    w.op("QZNSyncDTS_OnGetCurPVAM");
    w.op("QZNSyncDTS_OnGetCurPVA_UM");
    w.op("QZNSyncDTS_OnDT_UM");
    w.end();

    w.seq("QZNSyncDTSMState", "mode0-resummation");
    w.op("QZNSyncDTS_OnInitM", InitM(1, 2, 25, 100), {2, 0}, {1000, 5000});
    Doubles t = {0, 0};
    for (int k = 0; k < 2100; ++k) {
        if (k % 400 == 10) t[0] += Uniform(-30, 30);
        t[1] = 5 * std::sin(k * 0.004) + Uniform(-0.002, 0.002);
        if (k % 13 == 7)
            w.op("QZNSyncDTS_OnDT_UM");
        else
            w.op("QZNSyncDTS_OnDTM", t);
        if (k % 250 == 0) w.op("QZNSyncDTS_OnGetCurPVAM");
        if (k == 990 || (k >= 998 && k <= 1003)) w.state();
        if (k == 1500) w.op("QZNSyncDTS_OnSetRunTimeLmtM", {10, 80, 0, 0, 0, 0, 0, 0, 300, 300});
    }
    w.end();

    for (int mode : {1, 2}) {
        w.seq("QZNSyncDTSMState", "cascade-three-axes-mode-" + std::to_string(mode));
        w.op("QZNSyncDTS_OnInitM", InitM(2, 3, 30, 200), {3, mode}, {20000, 20000, 20000});
        Doubles t3 = {1, -1, 0.5};
        for (int k = 0; k < 500; ++k) {
            if (k == 200) t3 = {40, -1, 0.5};  // a jump on axis 0 only
            if (k > 300) t3[2] += 0.002;
            if (k % 5 == 0)
                w.op("QZNSyncDTS_OnDTM.same", {}, {}, t3);
            else
                w.op("QZNSyncDTS_OnDTM", t3);
            if (k == 250) w.state();
        }
        w.op("QZNSyncDTS_OnEmptyM");
        w.op("QZNSyncDTS_OnGetCurPVAM");
        w.op("QZNSyncDTS_OnGetCurPVA_UM");
        w.op("QZNSyncDTS_OnDT_UM");
        for (int k = 0; k < 50; ++k) w.op("QZNSyncDTS_OnDTM", {2, 2, 2});
        w.set("axis[2].stage[1].isInit", 0);
        for (int k = 0; k < 50; ++k) w.op("QZNSyncDTS_OnDTM", {3, 2, 3});
        w.end();
    }
}

Register tracker("QZDT_tracker", Tracker);
Register trackerN("QZDT_tracker_n", TrackerN);
Register trackerM("QZDT_tracker_multistage", TrackerM);
Register estimator("QZDT_estimator", Estimator);
Register fitter("QZDT_fitter", Fitter);
Register comparator("QZDT_error_compare", Comparator);
Register trackerNM("QZDT_tracker_n_multistage", TrackerNM);

}  // namespace
}  // namespace qzgen
