// Fuzz target for QZDT: every tracker family, the estimator, the fitter and the comparator.
//
// One record of each family lives (zeroed, guarded) for the whole input; the input is a
// sequence of operations on them, including runs of many steps so that rings wrap, running sums
// are recomputed and stamps wrap. Only what a caller may legitimately do is done: records are
// used through the API, plus the mutations the header allows (clearing an embedded tracker's
// isInit, setting a multi-stage record's mode, overwriting the comparator's gains and limits).
//
// Besides crashes, sanitizer reports and hangs, the target checks after every call: the guards
// around every record and output array; that outputs beyond the axes in use are not written;
// that input arrays are read only over the axes in use; that an operation on a record whose
// isInit is 0 returns 0 and touches neither the record nor its outputs; that the readers leave
// their const record alone; and that results are 0 or 1 where the header says so.
#include <cstdint>
#include <cstring>

#include "QZDT.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

struct Records {
    Guarded<QZVDTState> vdt;
    Guarded<QZNSyncDTSState> ns;
    Guarded<QZVDTMState> vm;
    Guarded<QZNEstState> est;
    Guarded<OneFitterState> fit;
    Guarded<QZDCTRLErrorState> err;
    Guarded<QZNSyncDTSMState> nm;
    int32_t stamp = 0;  // the estimator's sample stamp, advanced by the runs
};

// A parameter that is usually sensible (so that runs reach late behaviour) and otherwise any
// double at all.
double Param(Input &in, double lo, double hi) {
    return (in.Byte() & 3) == 0 ? in.Double() : in.Within(lo, hi);
}

// Steps in a run: mostly a few, rarely over a thousand (past the periodic re-summing; such runs
// cost as much as hundreds of ordinary inputs, so they are kept rare).
int RunLength(Input &in) {
    const int k = in.Byte();
    return k == 255 ? 1000 + 8 * in.Byte() : 1 + k % 8;
}

// Target of step k of a run: fixed, ramping, or alternating between two values.
double RunTarget(double base, double rate, int shape, int k) {
    switch (shape) {
        case 0: return base;
        case 1: return base + rate * k;
        default: return (k / 7) % 2 ? base : base + rate;
    }
}

// A run of an N-axis tracker: every axis's target moves from `a` (filled from the input) in
// one shape at one rate; `step(t, i)` makes call i of the run with targets t.
template <class Step>
void AxesRun(Input &in, In<8> &a, Step step) {
    a.Fill(in);
    const double rate = Param(in, -1.0, 1.0);
    const int shape = in.Byte() % 3, k = RunLength(in);
    In<8> t;
    for (int i = 0; i < k; ++i) {
        QZ_UNPOISON(&t[0], sizeof(double) * 8);
        for (int j = 0; j < 8; ++j) t[j] = RunTarget(a[j], rate, shape, i);
        step(t, i);
    }
}

int Axes8(int32_t n) { return n < 0 ? 0 : (n > 8 ? 8 : n); }
int InitCount(int32_t n) { return (n >= 1 && n <= 8) ? n : 0; }

void CheckFlag(unsigned r, const char *where) { QZ_FUZZ_CHECK(r <= 1, where); }

// ---- Single-axis tracker ------------------------------------------------------------------

void VdtStep(Records &R, double target, const char *where) {
    Out<double, 1> out;
    const bool init = R.vdt->isInit != 0;
    Snapshot<QZVDTState> snap(R.vdt.get(), !init);
    const uint8_t r = QZVDT_OnDT(R.vdt.get(), target, out.get());
    R.vdt.Check(where);
    if (!init) {
        QZ_FUZZ_CHECK(r == 0, where);
        snap.ExpectSame(where);
    }
    out.Check(r == 1 ? 1 : 0, where);
}

void Vdt(Input &in, Records &R, int op) {
    QZVDTState *s = R.vdt.get();
    const bool init = s->isInit != 0;
    Snapshot<QZVDTState> snap(s, !init);
    uint8_t r = 1;
    switch (op) {
        case 0:
            r = QZVDT_OnInit(s, Param(in, 0.5, 12.0), Param(in, 0.05, 250.0),
                             Param(in, 0.5, 1200.0));
            QZ_FUZZ_CHECK(r == 1 && s->isInit == 1, "QZVDT_OnInit");
            break;
        case 1: r = QZVDT_OnEmpty(s); break;
        case 2: VdtStep(R, in.Double(), "QZVDT_OnDT"); return;
        case 3: {
            const double base = in.Double(), rate = Param(in, -1.0, 1.0);
            const int shape = in.Byte() % 3, k = RunLength(in);
            for (int i = 0; i < k; ++i)
                VdtStep(R, RunTarget(base, rate, shape, i), "QZVDT_OnDT run");
            return;
        }
        case 4: r = QZVDT_OnSetRunTimeLmt(s, Param(in, 0.05, 250.0), Param(in, 0.5, 1200.0)); break;
        case 5: r = QZVDT_OnSetRunTimeVel(s, Param(in, 0.05, 250.0)); break;
        default: r = QZVDT_OnSetRunTimeAcc(s, Param(in, 0.5, 1200.0)); break;
    }
    R.vdt.Check("single-axis tracker");
    CheckFlag(r, "single-axis tracker");
    if (!init && op != 0) {
        QZ_FUZZ_CHECK(r == 0, "single-axis tracker refusal");
        snap.ExpectSame("single-axis tracker refusal");
    }
}

// ---- N-axis smoothed tracker --------------------------------------------------------------

void NsStep(Records &R, In<8> &t, int variant, const char *where) {
    QZNSyncDTSState *s = R.ns.get();
    const bool init = s->isInit != 0;
    const int n = init ? s->axisNum : 0;
    Snapshot<QZNSyncDTSState> snap(s, !init);
    Out<double, 8> pos, vel, acc;
    uint8_t r;
    if (variant == 0) {
        r = QZNSyncDTS_OnDT(s, t.Exact(n), pos.get());
        t.Release(where);
    } else if (variant == 1) {
        r = QZNSyncDTS_OnDT2(s, t.Exact(n), pos.get(), vel.get(), acc.get());
        t.Release(where);
    } else if (variant == 2) {
        r = QZNSyncDTS_OnDT_NoChange(s, pos.get());
    } else {
        // The output may be the target array.
        double *io = pos.get();
        for (int i = 0; i < 8; ++i) io[i] = t[i];
        r = QZNSyncDTS_OnDT(s, io, io);
        if (r == 0) {
            for (int i = 0; i < 8; ++i) QZ_FUZZ_CHECK(BitsOf(io[i]) == BitsOf(t[i]), where);
        }
        pos.Arm();  // the slots were inputs: only the guards are checked below
    }
    R.ns.Check(where);
    CheckFlag(r, where);
    if (!init) {
        QZ_FUZZ_CHECK(r == 0, where);
        snap.ExpectSame(where);
    }
    const int w = r == 1 ? n : 0;
    pos.Check(variant == 3 ? 0 : w, where);
    vel.Check(variant == 1 ? w : 0, where);
    acc.Check(variant == 1 ? w : 0, where);
}

void Ns(Input &in, Records &R, int op) {
    QZNSyncDTSState *s = R.ns.get();
    const bool init = s->isInit != 0;
    const int n = init ? s->axisNum : 0;
    Snapshot<QZNSyncDTSState> snap(s, !init);
    In<8> a, b, c;
    uint8_t r = 1;
    const char *where = "N-axis tracker";
    switch (op) {
        case 0: {
            const int32_t m = in.Count();
            const double cyc = Param(in, 0.5, 12.0);
            for (int i = 0; i < 8; ++i) {
                a[i] = Param(in, 0.05, 250.0);
                b[i] = Param(in, 0.5, 1200.0);
                c[i] = Param(in, 0.5, 1e6);
            }
            const int k = InitCount(m);
            r = QZNSyncDTS_OnInit(s, m, cyc, a.Exact(k), b.Exact(k), c.Exact(k));
            a.Release("QZNSyncDTS_OnInit");
            b.Release("QZNSyncDTS_OnInit");
            c.Release("QZNSyncDTS_OnInit");
            R.ns.Check("QZNSyncDTS_OnInit");
            CheckFlag(r, "QZNSyncDTS_OnInit");
            if (r == 1) QZ_FUZZ_CHECK(s->axisNum == m && s->isInit == 1, "QZNSyncDTS_OnInit");
            if (r == 0)
                QZ_FUZZ_CHECK(s->isInit == 0, "QZNSyncDTS_OnInit refusal leaves it unusable");
            return;
        }
        case 1: r = QZNSyncDTS_OnEmpty(s); break;
        case 2:
        case 3:
        case 4:
            a.Fill(in);
            b.Fill(in);
            if (op == 2) r = QZNSyncDTS_OnSetRunTimeLmt(s, a.Exact(n), b.Exact(n));
            if (op == 3) r = QZNSyncDTS_OnSetRunTimeVel(s, a.Exact(n));
            if (op == 4) r = QZNSyncDTS_OnSetRunTimeAcc(s, b.Exact(n));
            a.Release("QZNSyncDTS_OnSetRunTime*");
            b.Release("QZNSyncDTS_OnSetRunTime*");
            break;
        case 5:
        case 6: {
            a.Fill(in);
            NsStep(R, a, in.Byte() % 4, "QZNSyncDTS_OnDT*");
            return;
        }
        case 7: {
            Out<double, 8> t, p, v, ac;
            Snapshot<QZNSyncDTSState> before(s);
            const bool pending = s->resetPending == 1;
            if (in.Byte() & 1) {
                r = QZNSyncDTS_OnGetCurPVA(s, t.get(), p.get(), v.get(), ac.get());
                QZ_FUZZ_CHECK(r == ((init && !pending) ? 1 : 0), "QZNSyncDTS_OnGetCurPVA");
                t.Check(r ? n : 0, "QZNSyncDTS_OnGetCurPVA");
            } else {
                r = QZNSyncDTS_OnGetCurPVA_U(s, p.get(), v.get(), ac.get());
                QZ_FUZZ_CHECK(r == (init ? 1 : 0), "QZNSyncDTS_OnGetCurPVA_U");
            }
            before.ExpectSame("QZNSyncDTS_OnGetCurPVA*");
            p.Check(r ? n : 0, where);
            v.Check(r ? n : 0, where);
            ac.Check(r ? n : 0, where);
            R.ns.Check(where);
            return;
        }
        case 8:
            // The caller may stop an axis by clearing its tracker's isInit.
            s->axis[in.Byte() % 8].isInit = 0;
            return;
        default:
            AxesRun(in, a, [&](In<8> &t, int i) {
                NsStep(R, t, i % 3 == 2 ? 2 : 0, "QZNSyncDTS_OnDT run");
            });
            return;
    }
    R.ns.Check(where);
    CheckFlag(r, where);
    if (!init) {
        QZ_FUZZ_CHECK(r == 0, "N-axis tracker refusal");
        snap.ExpectSame("N-axis tracker refusal");
    }
}

// ---- Multi-stage tracker ------------------------------------------------------------------

void VmStep(Records &R, double target, const char *where) {
    Out<double, 1> out;
    const bool init = R.vm->stage[0].isInit != 0;
    Snapshot<QZVDTMState> snap(R.vm.get(), !init);
    const uint8_t r = QZVDT_OnDT_BM(R.vm.get(), target, out.get());
    R.vm.Check(where);
    CheckFlag(r, where);
    if (!init) {
        QZ_FUZZ_CHECK(r == 0, where);
        snap.ExpectSame(where);
    }
    out.Check(r, where);
}

void Vm(Input &in, Records &R, int op) {
    QZVDTMState *s = R.vm.get();
    switch (op) {
        case 0: {
            const int32_t mode = in.Count();
            QZ_FUZZ_CHECK(QZVDT_OnInitM(s, Param(in, 0.5, 12.0), Param(in, 0.05, 250.0),
                                        Param(in, 0.5, 1200.0), mode) == 1,
                          "QZVDT_OnInitM");
            s->mode = (in.Byte() & 7) ? mode : in.Count();  // the caller sets the mode itself
            break;
        }
        case 1: QZ_FUZZ_CHECK(QZVDT_OnEmptyM(s) == 1, "QZVDT_OnEmptyM"); break;
        case 2: VmStep(R, in.Double(), "QZVDT_OnDT_BM"); return;
        case 3:
            QZ_FUZZ_CHECK(QZVDT_OnSetRunTimeLmtM(s, Param(in, 0.05, 250.0), Param(in, 0.5, 1200.0),
                                                 in.Count()) == 1,
                          "QZVDT_OnSetRunTimeLmtM");
            break;
        case 4: {
            const std::uint8_t b = in.Byte();
            if (b & 1) {
                s->mode = in.Count();
            } else {
                s->stage[(b >> 1) % 4].isInit = 0;
            }
            return;
        }
        default: {
            const double base = in.Double(), rate = Param(in, -1.0, 1.0);
            const int shape = in.Byte() % 3, k = RunLength(in);
            for (int i = 0; i < k; ++i)
                VmStep(R, RunTarget(base, rate, shape, i), "QZVDT_OnDT_BM run");
            return;
        }
    }
    R.vm.Check("multi-stage tracker");
}

// ---- N-axis estimator ---------------------------------------------------------------------

void EstStep(Records &R, int32_t stamp, In<8> &x, In<8> &ref, bool aliased, const char *where) {
    QZNEstState *s = R.est.get();
    const int n = Axes8(s->axisNum);
    const bool restart = s->resetPending == 1;
    const bool sample = !restart && stamp != s->lastStamp;
    Out<double, 8> out;
    int32_t r;
    if (aliased) {
        double *io = out.get();
        for (int i = 0; i < 8; ++i) io[i] = x[i];
        r = QZNEst_OnDT(s, stamp, io, io, ref.Exact(restart || sample ? n : 0));
        out.Arm();
    } else {
        r = QZNEst_OnDT(s, stamp, x.Exact(n), out.get(), ref.Exact(restart || sample ? n : 0));
        x.Release(where);
    }
    ref.Release(where);
    R.est.Check(where);
    QZ_FUZZ_CHECK(r == 1, where);
    out.Check(aliased ? 0 : n, where);
}

void Est(Input &in, Records &R, int op) {
    QZNEstState *s = R.est.get();
    In<8> a, b;
    a.Fill(in);
    b.Fill(in);
    const char *where = "estimator";
    switch (op) {
        case 0: {
            const int32_t m = in.Count();
            const int k = Axes8(m);
            QZOnInitEst(s, m, Param(in, 0.5, 40.0), a.Exact(k), b.Exact(k));
            a.Release("QZOnInitEst");
            b.Release("QZOnInitEst");
            QZ_FUZZ_CHECK(s->holdLimit <= 50, "QZOnInitEst hold limit");
            break;
        }
        case 1: QZ_FUZZ_CHECK(QZNEst_OnEmpty(s) == 1, "QZNEst_OnEmpty"); break;
        case 2:
            QZ_FUZZ_CHECK(QZNEst_OnSetRunTimeLmt(s, a.Exact(Axes8(s->axisNum))) == 1,
                          "QZNEst_OnSetRunTimeLmt");
            a.Release("QZNEst_OnSetRunTimeLmt");
            break;
        case 3: {
            const std::uint8_t b0 = in.Byte();
            // The next stamp: any value, or the last one advanced by 0 to 2 (wrapping like a
            // sensor's counter, so the harness itself never overflows).
            const int32_t stamp =
                (b0 & 1) ? in.Int32()
                         : static_cast<int32_t>(static_cast<uint32_t>(R.stamp) + (b0 >> 1) % 3);
            R.stamp = stamp;
            EstStep(R, stamp, a, b, (b0 & 8) != 0, "QZNEst_OnDT");
            return;
        }
        default: {
            // A run of 1 ms calls with a new sample every `every` calls, the samples moving.
            const int every = 1 + in.Byte() % 12, k = RunLength(in) * 4;
            const double rate = Param(in, -0.5, 0.5);
            for (int i = 0; i < k; ++i) {
                if (i % every == 0) {
                    R.stamp = R.stamp >= 9992 ? 0 : R.stamp + 1;
                    QZ_UNPOISON(&a[0], sizeof(double) * 8);
                    for (int j = 0; j < 8; ++j) a[j] = a[j] + rate;
                }
                EstStep(R, R.stamp, a, b, false, "QZNEst_OnDT run");
            }
            return;
        }
    }
    R.est.Check(where);
}

// ---- One-step fitter and control error comparator -----------------------------------------

void Fit(Input &in, Records &R, int op) {
    OneFitterState *s = R.fit.get();
    In<8> a;
    a.Fill(in);
    if (op == 0) {
        const int32_t m = in.Count();
        OneFitterInit(s, m, a.Exact(Axes8(m)));
        a.Release("OneFitterInit");
        R.fit.Check("OneFitterInit");
        return;
    }
    const int n = s->axisNum < 1 ? 0 : Axes8(s->axisNum);
    Snapshot<OneFitterState> snap(s);
    Out<double, 8> out;
    int32_t r;
    const bool aliased = op == 2;
    if (aliased) {
        double *io = out.get();
        for (int i = 0; i < 8; ++i) io[i] = a[i];
        r = OneFitterRun(s, io, io);
        if (r == 0) {
            for (int i = 0; i < 8; ++i)
                QZ_FUZZ_CHECK(BitsOf(io[i]) == BitsOf(a[i]), "OneFitterRun");
        }
        out.Arm();
    } else {
        r = OneFitterRun(s, a.Exact(n), out.get());
        a.Release("OneFitterRun");
    }
    R.fit.Check("OneFitterRun");
    QZ_FUZZ_CHECK(r == n, "OneFitterRun count");
    if (r == 0) snap.ExpectSame("OneFitterRun refusal");
    out.Check(aliased ? 0 : r, "OneFitterRun");
}

void Err(Input &in, Records &R, int op) {
    QZDCTRLErrorState *s = R.err.get();
    if (op == 0) {
        QZ_FUZZ_CHECK(QZ_DCTRL_ErrorCompare_Init(in.Int32(), s) == 1, "QZ_DCTRL_ErrorCompare_Init");
    } else if (op == 1) {
        // The caller may overwrite any gain or limit.
        double *fields[5] = {s->kInteg, s->kProp, s->outLmt, s->errLmt, s->integLmt};
        const std::uint8_t b = in.Byte();
        fields[b % 5][(b / 5) % 8] = in.Double();
    } else {
        In<8> f, g;
        f.Fill(in);
        g.Fill(in);
        Out<double, 8> corr;
        const int how = in.Byte() % 3;  // corr separate, or the first or the second array
        int32_t r;
        if (how == 0) {
            r = QZ_DCTRL_ErrorCompare(in.Int32(), f.Exact(7), g.Exact(7), s, corr.get());
            f.Release("QZ_DCTRL_ErrorCompare");
            g.Release("QZ_DCTRL_ErrorCompare");
            corr.Check(7, "QZ_DCTRL_ErrorCompare");
        } else {
            double *io = corr.get();
            In<8> &other = how == 1 ? g : f;
            In<8> &mine = how == 1 ? f : g;
            for (int i = 0; i < 8; ++i) io[i] = mine[i];
            const double *o = other.Exact(7);
            r = how == 1 ? QZ_DCTRL_ErrorCompare(0, io, o, s, io)
                         : QZ_DCTRL_ErrorCompare(0, o, io, s, io);
            other.Release("QZ_DCTRL_ErrorCompare aliased");
            QZ_FUZZ_CHECK(BitsOf(io[7]) == BitsOf(mine[7]), "QZ_DCTRL_ErrorCompare slot 7");
            corr.Arm();
        }
        QZ_FUZZ_CHECK(r == 1, "QZ_DCTRL_ErrorCompare");
    }
    R.err.Check("control error comparator");
}

// ---- N-axis multi-stage tracker -----------------------------------------------------------

void NmStep(Records &R, In<8> &t, int variant, const char *where) {
    QZNSyncDTSMState *s = R.nm.get();
    const bool init = s->isInit != 0;
    const bool pending = s->resetPending == 1;
    const int n = init ? s->axisNum : 0;
    Snapshot<QZNSyncDTSMState> snap(s, !init || (variant == 1 && pending));
    Out<double, 8> pos;
    uint8_t r;
    if (variant == 0) {
        r = QZNSyncDTS_OnDTM(s, t.Exact(n), pos.get());
        t.Release(where);
        QZ_FUZZ_CHECK(r == (init ? 1 : 0), where);
    } else if (variant == 1) {
        r = QZNSyncDTS_OnDT_UM(s, pos.get());
        QZ_FUZZ_CHECK(r == ((init && !pending) ? 1 : 0), where);
    } else {
        double *io = pos.get();
        for (int i = 0; i < 8; ++i) io[i] = t[i];
        r = QZNSyncDTS_OnDTM(s, io, io);
        pos.Arm();
    }
    R.nm.Check(where);
    if (r == 0) snap.ExpectSame(where);
    pos.Check(variant == 2 ? 0 : (r == 1 ? n : 0), where);
}

void Nm(Input &in, Records &R, int op) {
    QZNSyncDTSMState *s = R.nm.get();
    const bool init = s->isInit != 0;
    const int n = init ? s->axisNum : 0;
    Snapshot<QZNSyncDTSMState> snap(s, !init || op == 5);
    In<8> a, b;
    uint8_t r = 1;
    const char *where = "N-axis multi-stage tracker";
    switch (op) {
        case 0: {
            const int32_t m = in.Count();
            const double cyc = Param(in, 0.5, 12.0);
            In<8> j;
            for (int i = 0; i < 8; ++i) {
                a[i] = Param(in, 0.05, 250.0);
                b[i] = Param(in, 0.5, 1200.0);
                j[i] = Param(in, 100.0, 2e7);
            }
            const int32_t mode = in.Byte() % 4 == 0 ? in.Count() : in.Byte() % 3;
            const int k = InitCount(m);
            r = QZNSyncDTS_OnInitM(s, m, cyc, a.Exact(k), b.Exact(k), j.ExactMutable(k), mode);
            a.Release("QZNSyncDTS_OnInitM");
            b.Release("QZNSyncDTS_OnInitM");
            j.Release("QZNSyncDTS_OnInitM", true);  // the jerk limits are clamped in place
            R.nm.Check("QZNSyncDTS_OnInitM");
            CheckFlag(r, "QZNSyncDTS_OnInitM");
            QZ_FUZZ_CHECK(r == (k > 0 ? 1 : 0), "QZNSyncDTS_OnInitM");
            return;
        }
        case 1: r = QZNSyncDTS_OnEmptyM(s); break;
        case 2:
            a.Fill(in);
            b.Fill(in);
            r = QZNSyncDTS_OnSetRunTimeLmtM(s, a.Exact(n), b.Exact(n));
            a.Release("QZNSyncDTS_OnSetRunTimeLmtM");
            b.Release("QZNSyncDTS_OnSetRunTimeLmtM");
            break;
        case 3:
        case 4:
            a.Fill(in);
            NmStep(R, a, in.Byte() % 3, "QZNSyncDTS_OnDTM/OnDT_UM");
            return;
        case 5: {
            Out<double, 8> t, p, v, ac;
            const bool pending = s->resetPending == 1;
            if (in.Byte() & 1) {
                r = QZNSyncDTS_OnGetCurPVAM(s, t.get(), p.get(), v.get(), ac.get());
                QZ_FUZZ_CHECK(r == ((init && !pending) ? 1 : 0), "QZNSyncDTS_OnGetCurPVAM");
                t.Check(r ? n : 0, "QZNSyncDTS_OnGetCurPVAM");
            } else {
                r = QZNSyncDTS_OnGetCurPVA_UM(s, p.get(), v.get(), ac.get());
                QZ_FUZZ_CHECK(r == (init ? 1 : 0), "QZNSyncDTS_OnGetCurPVA_UM");
            }
            snap.ExpectSame("QZNSyncDTS_OnGetCurPVA*M");
            p.Check(r ? n : 0, where);
            v.Check(r ? n : 0, where);
            ac.Check(r ? n : 0, where);
            R.nm.Check(where);
            return;
        }
        case 6: {
            const std::uint8_t b0 = in.Byte();
            s->axis[b0 % 8].stage[(b0 / 8) % 4].isInit = 0;  // the caller stops one stage
            return;
        }
        default:
            AxesRun(in, a, [&](In<8> &t, int i) {
                NmStep(R, t, i % 4 == 3 ? 1 : 0, "QZNSyncDTS_OnDTM run");
            });
            return;
    }
    R.nm.Check(where);
    CheckFlag(r, where);
    if (!init) {
        QZ_FUZZ_CHECK(r == 0, "N-axis multi-stage tracker refusal");
        snap.ExpectSame("N-axis multi-stage tracker refusal");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Records R;
    Input in(data, size);
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        const int sub = op / 7;
        switch (op % 7) {
            case 0: Vdt(in, R, sub % 7); break;
            case 1: Ns(in, R, sub % 10); break;
            case 2: Vm(in, R, sub % 6); break;
            case 3: Est(in, R, sub % 5); break;
            case 4: Fit(in, R, sub % 3); break;
            case 5: Err(in, R, sub % 3); break;
            default: Nm(in, R, sub % 8); break;
        }
    }
    return 0;
}
