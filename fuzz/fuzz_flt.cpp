// Fuzz target for QZFLT: the averaging filter and the smoothed velocity.
//
// One record of each family lives (zeroed, guarded) for the whole input, which is a sequence of
// operations on them, with runs long enough to wrap the averaging ring many times. After every
// call the target checks the guards, that channels beyond chNum are neither read nor written,
// that a refused call (before initialisation, or an initialisation with a count out of range)
// leaves the record and the outputs untouched, and that the smoothed value's flags are 0 or 1.
#include <cstdint>

#include "QZFLT.h"
#include "fuzz_support.h"

using namespace qzfuzz;

namespace {

struct Records {
    Guarded<QZAVGFState> avg;
    Guarded<QZSMVState> smv;
};

void Filt(Records &R, In<8> &x, bool aliased, const char *where) {
    QZAVGFState *s = R.avg.get();
    const bool init = s->isInit != 0;
    const int n = init ? s->chNum : 0;
    Snapshot<QZAVGFState> snap(s, !init);
    Out<double, 8> avg, dAvg;
    int32_t r;
    if (aliased) {
        // avg may be the x array.
        double *io = avg.get();
        for (int i = 0; i < 8; ++i) io[i] = x[i];
        r = QZAVGF_OnFilt(s, io, io, dAvg.get());
        for (int i = n; i < 8; ++i) QZ_FUZZ_CHECK(BitsOf(io[i]) == BitsOf(x[i]), where);
        avg.Arm();
    } else {
        r = QZAVGF_OnFilt(s, x.Exact(n), avg.get(), dAvg.get());
        x.Release(where);
    }
    R.avg.Check(where);
    QZ_FUZZ_CHECK(r == (init ? 1 : 0), where);
    snap.ExpectSame(where);
    avg.Check(aliased ? 0 : n, where);
    dAvg.Check(n, where);
}

void Avg(Input &in, Records &R, int op) {
    QZAVGFState *s = R.avg.get();
    const bool init = s->isInit != 0;
    switch (op) {
        case 0: {
            const int32_t ch = in.Count();
            const int32_t len = (in.Byte() & 1) ? in.Count() : 1 + in.Byte() % 100;
            const double dt = (in.Byte() & 3) == 0 ? in.Double() : in.Within(1e-4, 0.1);
            const bool ok = ch >= 1 && ch <= 8 && len >= 1 && len <= 100;
            Snapshot<QZAVGFState> snap(s, !ok);
            const int32_t r = QZAVGF_OnInit(s, ch, len, dt);
            R.avg.Check("QZAVGF_OnInit");
            QZ_FUZZ_CHECK(r == (ok ? 1 : 0), "QZAVGF_OnInit");
            snap.ExpectSame("QZAVGF_OnInit refusal");
            return;
        }
        case 1: {
            Snapshot<QZAVGFState> snap(s, !init);
            QZ_FUZZ_CHECK(QZAVGF_OnEmpty(s) == (init ? 1 : 0), "QZAVGF_OnEmpty");
            snap.ExpectSame("QZAVGF_OnEmpty refusal");
            R.avg.Check("QZAVGF_OnEmpty");
            return;
        }
        case 2: {
            In<8> x;
            x.Fill(in);
            Filt(R, x, (in.Byte() & 1) != 0, "QZAVGF_OnFilt");
            return;
        }
        default: {
            // A run of samples on a noisy ramp: mostly a few, sometimes enough (up to 400) to wrap
            // any ring several times.
            In<8> x;
            x.Fill(in);
            const double rate = (in.Byte() & 3) == 0 ? in.Double() : in.Within(-1.0, 1.0);
            const std::uint8_t len = in.Byte();
            const int k = len < 224 ? 1 + len % 16 : 4 * (len - 124);
            for (int i = 0; i < k; ++i) {
                QZ_UNPOISON(&x[0], sizeof(double) * 8);
                for (int j = 0; j < 8; ++j) x[j] = x[j] + ((i * 7 + j) % 5 - 2) * rate;
                Filt(R, x, false, "QZAVGF_OnFilt run");
            }
            return;
        }
    }
}

void Smv(Input &in, Records &R, int op) {
    QZSMVState *s = R.smv.get();
    const char *where = "smoothed velocity";
    switch (op) {
        case 0: {
            const double start = in.Double();
            const bool any = (in.Byte() & 3) == 0;
            const double alpha = any ? in.Double() : in.Within(0.0, 1.0);
            const double hi = any ? in.Double() : in.Within(0.0, 0.5);
            const double lo = any ? in.Double() : in.Within(0.0, 0.05);
            const int32_t r = QZSMV_OnInit(s, start, alpha, hi, lo);
            QZ_FUZZ_CHECK(r == 0 || r == 1, "QZSMV_OnInit");
            QZ_FUZZ_CHECK(BitsOf(s->value) == BitsOf(start), "QZSMV_OnInit start value");
            break;
        }
        default: {
            const double target = in.Double();
            const std::uint8_t len = op == 1 ? 0 : in.Byte();
            const int k = len < 240 ? 1 + len % 16 : 256;
            for (int i = 0; i < k; ++i) {
                Out<double, 1> v;
                Out<std::uint8_t, 2> flags;
                switch ((op + i) % 3) {
                    case 0:
                        QZSMV_OnUpdateV(s, target, v.get());
                        v.Check(1, "QZSMV_OnUpdateV");
                        flags.Check(0, "QZSMV_OnUpdateV");
                        break;
                    case 1:
                        QZSMV_OnUpdateVZO(s, target, v.get(), &flags[0], &flags[1]);
                        v.Check(1, "QZSMV_OnUpdateVZO");
                        flags.Check(2, "QZSMV_OnUpdateVZO");
                        QZ_FUZZ_CHECK(flags[0] <= 1 && flags[1] <= 1, "QZSMV_OnUpdateVZO flags");
                        break;
                    default:
                        QZSMV_OnUpdateZO(s, target, &flags[0], &flags[1]);
                        v.Check(0, "QZSMV_OnUpdateZO");
                        flags.Check(2, "QZSMV_OnUpdateZO");
                        QZ_FUZZ_CHECK(flags[0] <= 1 && flags[1] <= 1, "QZSMV_OnUpdateZO flags");
                        break;
                }
                R.smv.Check(where);
            }
            return;
        }
    }
    R.smv.Check(where);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Records R;
    Input in(data, size);
    while (!in.Done()) {
        const std::uint8_t op = in.Byte();
        if (op & 1) {
            Avg(in, R, (op >> 1) % 4);
        } else {
            Smv(in, R, (op >> 1) % 3);
        }
    }
    return 0;
}
