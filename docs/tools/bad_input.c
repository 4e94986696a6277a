/*
 * Prints the tables of docs/bad-input.md: what every function family of the C layer returns and
 * writes when one argument is NaN, infinite, zero, negative or huge, and what it does with counts
 * out of range. Every cell is the library's own answer, so the page follows the library.
 *
 * Only calls whose behaviour the headers define are made: no null pointers (no function checks
 * one) and no count beyond what a function is documented to guard.
 */
#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"

/* ---- Formatting ------------------------------------------------------------------------- */

/* Outputs are filled with this before a call; an element still holding it is shown as "·"
 * (unwritten: the caller's value is kept). */
#define UNW (-777.0)

static const double kBad[] = {NAN, INFINITY, -INFINITY, 0.0, -1.0, 1e300};
#define NBAD 6

static char *Buf(void) {
    static char bufs[128][512];
    static int next;
    next = (next + 1) % 128;
    return bufs[next];
}

static const char *F(const char *fmt, ...) {
    char *b = Buf();
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(b, 512, fmt, ap);
    va_end(ap);
    return b;
}

/* One number: NaN whatever its sign bit (the bit differs between processors), -0 kept. */
static const char *G(double x) {
    if (x != x) return "NaN";
    if (isinf(x)) return x > 0 ? "Inf" : "-Inf";
    if (x == UNW) return "·";
    if (x == 0.0) return signbit(x) ? "-0" : "0";
    return F("%.6g", x);
}

/* A short vector, element by element. */
static const char *V(const double *v, int n) {
    char *b = Buf();
    int k = snprintf(b, 512, "(");
    for (int i = 0; i < n; ++i) k += snprintf(b + k, 512 - k, "%s%s", i ? ", " : "", G(v[i]));
    snprintf(b + k, 512 - k, ")");
    return b;
}

/* A matrix or a long vector, summarised: unwritten, all finite with the largest magnitude, or
 * how many entries are NaN and infinite. */
static const char *M(const double *m, int n) {
    int nan = 0, inf = 0, unw = 0;
    double big = 0.0;
    for (int i = 0; i < n; ++i) {
        if (m[i] != m[i])
            ++nan;
        else if (isinf(m[i]))
            ++inf;
        else if (m[i] == UNW)
            ++unw;
        else if (fabs(m[i]) > big)
            big = fabs(m[i]);
    }
    if (unw == n) return "unwritten";
    const char *part = unw ? F(", %d unwritten", unw) : "";
    if (nan == 0 && inf == 0) return F("finite, max %s%s", G(big), part);
    if (nan == n) return "all NaN";
    return F("%d NaN, %d Inf of %d%s", nan, inf, n, part);
}

static void Fill(double *v, int n) {
    for (int i = 0; i < n; ++i) v[i] = UNW;
}

static void Section(const char *title, const char *text) {
    printf("### %s\n\n", title);
    if (*text) printf("%s\n\n", text);
}

/* A grid: one row per call, one column per bad value x; cell(row, x) gives the cell. */
typedef const char *(*Cell)(int row, double x);

static void Grid(const char *const *rows, int nrows, Cell cell) {
    printf("| call, x the bad value |");
    for (int k = 0; k < NBAD; ++k) printf(" x = %s |", G(kBad[k]));
    printf("\n|---|");
    for (int k = 0; k < NBAD; ++k) printf("---|");
    printf("\n");
    for (int r = 0; r < nrows; ++r) {
        printf("| `%s` |", rows[r]);
        for (int k = 0; k < NBAD; ++k) printf(" %s |", cell(r, kBad[k]));
        printf("\n");
    }
    printf("\n");
}

/* A list of calls with fixed arguments (counts out of range, degenerate shapes). */
static void Fixed(const char *const *rows, int nrows, const char *(*cell)(int row)) {
    printf("| call | result |\n|---|---|\n");
    for (int r = 0; r < nrows; ++r) printf("| `%s` | %s |\n", rows[r], cell(r));
    printf("\n");
}

#define COUNT(a) ((int)(sizeof(a) / sizeof((a)[0])))

/* ---- Scalar primitives, polynomials, plane geometry ------------------------------------- */

static const char *const kScalarRows[] = {
    "QZ_Sqrt(x)",    "QZ_Fabs(x)",      "QZ_3Root(x)",    "QZ_SIN_ARC(x)",
    "QZ_COS_ARC(x)", "QZ_SIN_DEG(x)",   "QZ_COS_DEG(x)",  "QZ_SIN_COS_ARC(x) -> (sin, cos)",
    "QZ_Sigmod(x)",  "QZ_ATan2(x, 1)",  "QZ_ATan2(1, x)", "QZ_ACOS(x)",
    "QZ_MAX(x, 1)",  "QZ_MIN(x, 1)",    "QZ_IsZero(x)",   "QZ_IsZeroL(x)",
    "QZ_Floor(x)",   "QZ_Value_Sig(x)",
};

static const char *ScalarCell(int row, double x) {
    double s = UNW, c = UNW;
    switch (row) {
        case 0: return G(QZ_Sqrt(x));
        case 1: return G(QZ_Fabs(x));
        case 2: return G(QZ_3Root(x));
        case 3: return G(QZ_SIN_ARC(x));
        case 4: return G(QZ_COS_ARC(x));
        case 5: return G(QZ_SIN_DEG(x));
        case 6: return G(QZ_COS_DEG(x));
        case 7: QZ_SIN_COS_ARC(x, &s, &c); return V((double[]){s, c}, 2);
        case 8: return G(QZ_Sigmod(x));
        case 9: return G(QZ_ATan2(x, 1.0));
        case 10: return G(QZ_ATan2(1.0, x));
        case 11: return G(QZ_ACOS(x));
        case 12: return G(QZ_MAX(x, 1.0));
        case 13: return G(QZ_MIN(x, 1.0));
        case 14: return F("%d", QZ_IsZero(x));
        case 15: return F("%d", QZ_IsZeroL(x));
        case 16: return G(QZ_Floor(x));
        default: return G(QZ_Value_Sig(x));
    }
}

static const char *const kPolyRows[] = {
    "QZ_SqureSolve(x, -3, 2, r)",
    "QZ_SqureSolve(1, -3, x, r)",
    "QZ_CubicSolve(x, -6, 11, -6, r)",
    "QZ_CubicSolve(1, -6, 11, x, r)",
    "QZ_CubicSolve_Min_Pos(1, -6, 11, x, &o)",
    "QZ_Solve2OrderEq(x, 0, 1, re, im)",
    "QZ_Solve3OrderEq(1, x, 0, -1, re, im)",
    "QZ_Solve4OrderEq(x, 0, -5, 0, 4, re, im)",
    "QZ_Solve4OrderEqR(1, 0, -5, 0, x, r)",
    "QZ_SolvePolynomialResult({1, 2, 3}, x, 3)",
};

static const char *PolyCell(int row, double x) {
    double r[4], im[4];
    int32_t n;
    Fill(r, 4);
    Fill(im, 4);
    switch (row) {
        case 0: n = QZ_SqureSolve(x, -3, 2, r); return F("%d: %s", n, V(r, 2));
        case 1: n = QZ_SqureSolve(1, -3, x, r); return F("%d: %s", n, V(r, 2));
        case 2: n = QZ_CubicSolve(x, -6, 11, -6, r); return F("%d: %s", n, V(r, 3));
        case 3: n = QZ_CubicSolve(1, -6, 11, x, r); return F("%d: %s", n, V(r, 3));
        case 4: n = QZ_CubicSolve_Min_Pos(1, -6, 11, x, r); return F("%d: %s", n, G(r[0]));
        case 5:
            n = QZ_Solve2OrderEq(x, 0, 1, r, im);
            return F("%d: re %s im %s", n, V(r, 2), V(im, 2));
        case 6:
            n = QZ_Solve3OrderEq(1, x, 0, -1, r, im);
            return F("%d: re %s im %s", n, V(r, 3), V(im, 3));
        case 7:
            n = QZ_Solve4OrderEq(x, 0, -5, 0, 4, r, im);
            return F("%d: re %s im %s", n, V(r, 4), V(im, 4));
        case 8: n = QZ_Solve4OrderEqR(1, 0, -5, 0, x, r); return F("%d: %s", n, V(r, 4));
        default: return G(QZ_SolvePolynomialResult((const double[]){1, 2, 3}, x, 3));
    }
}

static const char *const kGeomRows[] = {
    "QZ_CalAngleCDEG(x, 1, 1)",
    "QZ_CalAngleCDEG(1, 1, x)",
    "QZ_PointToLine(0, (1,0,0), P = (x,1,0), F) -> F",
    "QZ_PointToLine(0, B = (x,0,0), (0,1,0), F) -> F",
    "QZ_MinDif_Circle(10, &b), b = x -> result, b",
    "QZ_MinDif_Circle(x, &b), b = 10 -> result, b",
    "ValueToTarget(&v, x, 0.1), v = 0 -> v",
    "ValueToTarget(&v, 1, x), v = 0 -> v",
};

static const char *GeomCell(int row, double x) {
    double f[3], b, d, v = 0.0;
    const double o[3] = {0, 0, 0};
    int32_t n;
    Fill(f, 3);
    switch (row) {
        case 0: return G(QZ_CalAngleCDEG(x, 1, 1));
        case 1: return G(QZ_CalAngleCDEG(1, 1, x));
        case 2:
            n = QZ_PointToLine(o, (const double[]){1, 0, 0}, (const double[]){x, 1, 0}, f);
            return F("%d: %s", n, V(f, 3));
        case 3:
            n = QZ_PointToLine(o, (const double[]){x, 0, 0}, (const double[]){0, 1, 0}, f);
            return F("%d: %s", n, V(f, 3));
        case 4:
            b = x;
            d = QZ_MinDif_Circle(10, &b);
            return F("%s, b %s", G(d), G(b));
        case 5:
            b = 10;
            d = QZ_MinDif_Circle(x, &b);
            return F("%s, b %s", G(d), G(b));
        case 6: ValueToTarget(&v, x, 0.1); return G(v);
        default: ValueToTarget(&v, 1, x); return G(v);
    }
}

static const char *const kPolyCountRows[] = {"QZ_SolvePolynomialResult(p, 2, 0)",
                                             "QZ_SolvePolynomialResult(p, 2, -5)"};
static const char *PolyCountCell(int row) {
    const double p[1] = {UNW};
    return G(QZ_SolvePolynomialResult(p, 2, row ? -5 : 0));
}

static void ScalarFamilies(void) {
    Section("Scalar primitives",
            "No guard beyond the ones shown: every function returns a value for every double, "
            "and the callers inside the library test the sign of a radicand themselves.");
    Grid(kScalarRows, COUNT(kScalarRows), ScalarCell);
    Section("Polynomial solvers",
            "Each cell is the root count, then the output array (· = left as the caller had it). "
            "A coefficient that is not finite is divided through like any other: the count is "
            "still a count, and the roots may be NaN or infinite. Output arrays must hold the "
            "documented size (2, 3 or 4): caller's responsibility.");
    Grid(kPolyRows, COUNT(kPolyRows), PolyCell);
    Fixed(kPolyCountRows, COUNT(kPolyCountRows), PolyCountCell);
    Section("Plane geometry and target helpers",
            "`QZ_MinDif_Circle` works in bounded time for any argument: a difference that is "
            "infinite, NaN or too large to hold a whole turn (beyond 2^62 degrees) gives NaN.");
    Grid(kGeomRows, COUNT(kGeomRows), GeomCell);
}

/* ---- Trackers --------------------------------------------------------------------------- */

/* The four tracker families behind one set of calls, so that each meets the same scenarios. A
 * family without a separate velocity or acceleration setter leaves those pointers null. The
 * N-axis families run two axes; the bad value goes to axis 0 and axis 1 tracks 1.0. */
typedef struct {
    uint8_t (*init)(double cycleMs, double vel, double acc, double jerk);
    uint8_t (*step)(double target, double *out);
    uint8_t (*setVel)(double vel);
    uint8_t (*setAcc)(double acc);
    uint8_t (*setLmt)(double vel, double acc);
    const QZVDTState *(*axis0)(void); /* the single-axis record that holds axis 0's limits */
    int jerk;                         /* 1: the family takes a jerk limit */
} Tracker;

static QZVDTState t1;
static uint8_t T1Init(double c, double v, double a, double j) {
    (void)j;
    memset(&t1, 0, sizeof t1);
    return QZVDT_OnInit(&t1, c, v, a);
}
static uint8_t T1Step(double x, double *o) { return QZVDT_OnDT(&t1, x, o); }
static uint8_t T1Vel(double v) { return QZVDT_OnSetRunTimeVel(&t1, v); }
static uint8_t T1Acc(double a) { return QZVDT_OnSetRunTimeAcc(&t1, a); }
static uint8_t T1Lmt(double v, double a) { return QZVDT_OnSetRunTimeLmt(&t1, v, a); }
static const QZVDTState *T1Axis(void) { return &t1; }

static QZNSyncDTSState tn;
static uint8_t TnInit(double c, double v, double a, double j) {
    memset(&tn, 0, sizeof tn);
    return QZNSyncDTS_OnInit(&tn, 2, c, (const double[]){v, 2}, (const double[]){a, 10},
                             (const double[]){j, 1000});
}
static uint8_t TnStep(double x, double *o) {
    double pos[2] = {UNW, UNW};
    const uint8_t r = QZNSyncDTS_OnDT(&tn, (const double[]){x, 1.0}, pos);
    *o = pos[0];
    return r;
}
static uint8_t TnVel(double v) { return QZNSyncDTS_OnSetRunTimeVel(&tn, (const double[]){v, 2}); }
static uint8_t TnAcc(double a) { return QZNSyncDTS_OnSetRunTimeAcc(&tn, (const double[]){a, 10}); }
static uint8_t TnLmt(double v, double a) {
    return QZNSyncDTS_OnSetRunTimeLmt(&tn, (const double[]){v, 2}, (const double[]){a, 10});
}
static const QZVDTState *TnAxis(void) { return &tn.axis[0]; }

static QZVDTMState tm;
static uint8_t TmInit(double c, double v, double a, double j) {
    (void)j;
    memset(&tm, 0, sizeof tm);
    const uint8_t r = QZVDT_OnInitM(&tm, c, v, a, 2);
    tm.mode = 2;
    return r;
}
static uint8_t TmStep(double x, double *o) { return QZVDT_OnDT_BM(&tm, x, o); }
static uint8_t TmLmt(double v, double a) { return QZVDT_OnSetRunTimeLmtM(&tm, v, a, 2); }
static const QZVDTState *TmAxis(void) { return &tm.stage[0]; }

static QZNSyncDTSMState tnm;
static uint8_t TnmInit(double c, double v, double a, double j) {
    double jerk[2] = {j, 1000};
    memset(&tnm, 0, sizeof tnm);
    return QZNSyncDTS_OnInitM(&tnm, 2, c, (const double[]){v, 2}, (const double[]){a, 10}, jerk, 2);
}
static uint8_t TnmStep(double x, double *o) {
    double pos[2] = {UNW, UNW};
    const uint8_t r = QZNSyncDTS_OnDTM(&tnm, (const double[]){x, 1.0}, pos);
    *o = pos[0];
    return r;
}
static uint8_t TnmLmt(double v, double a) {
    return QZNSyncDTS_OnSetRunTimeLmtM(&tnm, (const double[]){v, 2}, (const double[]){a, 10});
}
static const QZVDTState *TnmAxis(void) { return &tnm.axis[0].stage[0]; }

static const Tracker kTrackers[] = {
    {T1Init, T1Step, T1Vel, T1Acc, T1Lmt, T1Axis, 0},
    {TnInit, TnStep, TnVel, TnAcc, TnLmt, TnAxis, 1},
    {TmInit, TmStep, NULL, NULL, TmLmt, TmAxis, 0},
    {TnmInit, TnmStep, NULL, NULL, TnmLmt, TnmAxis, 1},
};
static const Tracker *tr;

/* Steps n cycles towards target; the last output (UNW when no step wrote one). */
static double Run(double target, int n) {
    double o = UNW;
    for (int i = 0; i < n; ++i) tr->step(target, &o);
    return o;
}

/* Cycle 1 ms, velocity limit 2, acceleration limit 10, jerk limit 1000; the first step places
 * the axis at 0, and 200 cycles towards 1.0 bring it to full speed (position 0.2). */
static void Moving(void) {
    tr->init(1.0, 2.0, 10.0, 1000.0);
    Run(0.0, 1);
    Run(1.0, 200);
}

static const char *const kTrackerRows[] = {
    "step towards x while moving",
    "init: cycle time x (ms)",
    "init: velocity limit x",
    "init: acceleration limit x",
    "init: jerk limit x",
    "run time: velocity limit x",
    "run time: acceleration limit x",
    "run time: both limits x",
    "run time: limits (2, x), after 100 cycles (2, 10) again",
};

static const char *TrackerCell(int row, double x) {
    uint8_t r;
    const char *kept = "";
    double p;
    if (row == 0) {
        Moving();
        double o = UNW;
        r = tr->step(x, &o);
        p = Run(x, 99);
        if (p == UNW) p = o;
    } else if (row <= 4) {
        if (row == 4 && !tr->jerk) return "—";
        r = tr->init(row == 1 ? x : 1.0, row == 2 ? x : 2.0, row == 3 ? x : 10.0,
                     row == 4 ? x : 1000.0);
        const QZVDTState *a = tr->axis0();
        if (row == 1) kept = F(" (%s ms)", G(a->baseDt * 1000.0));
        if (row == 2) kept = F(" (%s)", G(a->velLmt));
        if (row == 3) kept = F(" (%s)", G(a->accLmt));
        Run(0.0, 1);
        p = Run(1.0, 100);
    } else {
        Moving();
        if (row == 5 && !tr->setVel) return "—";
        if (row == 6 && !tr->setAcc) return "—";
        r = row == 5   ? tr->setVel(x)
            : row == 6 ? tr->setAcc(x)
            : row == 7 ? tr->setLmt(x, x)
                       : tr->setLmt(2.0, x);
        p = Run(1.0, 100);
        if (row == 8) tr->setLmt(2.0, 10.0);
    }
    return F("%d%s; %s → %s", r, kept, G(p), G(Run(1.0, 3000)));
}

static const char *const kTrackerFamilies[] = {
    "Single-axis tracker (`QZVDT_*`)",
    "N-axis smoothed tracker (`QZNSyncDTS_*`)",
    "Multi-stage tracker (`QZVDT_*M`, cascade mode 2)",
    "N-axis multi-stage tracker (`QZNSyncDTS_*M`, cascade mode 2)",
};

static const char *const kTrackerCountRows[] = {
    "QZVDT_OnDT on a zeroed record",
    "QZNSyncDTS_OnInit(s, 0, ...) / (s, 9, ...)",
    "QZNSyncDTS_OnDT after a refused init",
    "QZNSyncDTS_OnInitM(s, 0, ...) / (s, 9, ...)",
    "QZNSyncDTS_OnInitM jerk {0.5, 1e9}: the array afterwards",
    "QZVDT_OnDT_BM on a zeroed record",
};

static const char *TrackerCountCell(int row) {
    double o = UNW, pos[2] = {UNW, UNW};
    const double v[2] = {2, 2}, a[2] = {10, 10};
    double j[2] = {1000, 1000};
    uint8_t r;
    switch (row) {
        case 0:
            memset(&t1, 0, sizeof t1);
            r = QZVDT_OnDT(&t1, 1, &o);
            return F("%d, out %s", r, G(o));
        case 1:
            memset(&tn, 0, sizeof tn);
            return F("%d / %d", QZNSyncDTS_OnInit(&tn, 0, 1, v, a, j),
                     QZNSyncDTS_OnInit(&tn, 9, 1, v, a, j));
        case 2:
            memset(&tn, 0, sizeof tn);
            QZNSyncDTS_OnInit(&tn, 9, 1, v, a, j);
            r = QZNSyncDTS_OnDT(&tn, v, pos);
            return F("%d, pos %s", r, V(pos, 2));
        case 3:
            memset(&tnm, 0, sizeof tnm);
            return F("%d / %d", QZNSyncDTS_OnInitM(&tnm, 0, 1, v, a, j, 0),
                     QZNSyncDTS_OnInitM(&tnm, 9, 1, v, a, j, 0));
        case 4:
            j[0] = 0.5;
            j[1] = 1e9;
            r = QZNSyncDTS_OnInitM(&tnm, 2, 1, v, a, j, 0);
            return F("%d, jerk %s", r, V(j, 2));
        default:
            memset(&tm, 0, sizeof tm);
            r = QZVDT_OnDT_BM(&tm, 1, &o);
            return F("%d, out %s", r, G(o));
    }
}

static void TrackerFamilies(void) {
    for (int f = 0; f < 4; ++f) {
        tr = &kTrackers[f];
        Section(kTrackerFamilies[f],
                "Each cell: the call's result (and the value kept, for an initialisation); the "
                "output position after 100 cycles; → the output after 3 s more towards 1.0. "
                "Cycle 1 ms, velocity limit 2, acceleration limit 10, jerk limit 1000 unless x "
                "replaces one; \"while moving\": at full speed, position 0.2, towards 1.0.");
        Grid(kTrackerRows, COUNT(kTrackerRows), TrackerCell);
    }
    Section("Tracker counts and records",
            "A record must be zeroed before its first use: the refusals below rely on isInit "
            "being 0. Axis arrays must hold the record's axis count: caller's responsibility.");
    Fixed(kTrackerCountRows, COUNT(kTrackerCountRows), TrackerCountCell);
}

/* ---- Estimator, fitter, comparator, filters --------------------------------------------- */

static const char *const kEstRows[] = {
    "QZOnInitEst(s, 1, x, ...): sample period x (ms)",
    "QZOnInitEst(s, 1, 1, {x}, {x}): velocity limits x",
    "QZNEst_OnDT: sample x, once",
    "QZNEst_OnSetRunTimeLmt(s, {x})",
};

/* One axis, 1 ms samples of a ramp at 1 unit/s (limits 2). The bad value enters on call 100 (a
 * sample or a limit) or at initialisation; the cell is the output and the velocity estimate
 * after call 100, then → both after 100 more calls with the ramp restored. */
static const char *EstCell(int row, double x) {
    static QZNEstState e;
    double o = UNW, smp;
    int k = 0;
    memset(&e, 0, sizeof e);
    QZOnInitEst(&e, 1, row == 0 ? x : 1.0, (const double[]){row == 1 ? x : 2.0},
                (const double[]){row == 1 ? x : 2.0});
    for (; k < 100; ++k) {
        smp = 0.001 * k;
        if (row == 2 && k == 99) smp = x;
        if (row == 3 && k == 99) QZNEst_OnSetRunTimeLmt(&e, (const double[]){x});
        QZNEst_OnDT(&e, k, &smp, &o, (const double[]){1.0});
    }
    const char *first = F("%s, vel %s", G(o), G(e.velEst[0]));
    for (; k < 200; ++k) {
        smp = 0.001 * k;
        QZNEst_OnDT(&e, k, &smp, &o, (const double[]){1.0});
    }
    return F("%s → %s, vel %s", first, G(o), G(e.velEst[0]));
}

static const char *const kFitRows[] = {"OneFitterInit(s, 1, {x}), then run on 1.0",
                                       "OneFitterRun: sample x once, then 1.0 ten times"};

static const char *FitCell(int row, double x) {
    OneFitterState s;
    double o = UNW, in = 1.0;
    int32_t r;
    OneFitterInit(&s, 1, (const double[]){row == 0 ? x : 0.5});
    if (row == 0) {
        r = OneFitterRun(&s, &in, &o);
        return F("%d: %s", r, G(o));
    }
    r = OneFitterRun(&s, &x, &o);
    const double first = o;
    for (int k = 0; k < 10; ++k) OneFitterRun(&s, &in, &o);
    return F("%d: %s → %s", r, G(first), G(o));
}

static const char *const kCmpRows[] = {
    "QZ_DCTRL_ErrorCompare: joint 0 of first = x, once; then 100 calls with equal vectors"};

static const char *CmpCell(int row, double x) {
    QZDCTRLErrorState s;
    double a[7] = {0}, b[7] = {0}, c[7];
    (void)row;
    Fill(c, 7);
    QZ_DCTRL_ErrorCompare_Init(0, &s);
    a[0] = x;
    const int32_t r = QZ_DCTRL_ErrorCompare(0, a, b, &s, c);
    const double first = c[0];
    a[0] = 0.0;
    for (int k = 0; k < 100; ++k) QZ_DCTRL_ErrorCompare(0, a, b, &s, c);
    return F("%d: %s → %s", r, G(first), G(c[0]));
}

static const char *const kFltRows[] = {
    "QZAVGF_OnInit(s, 1, 5, x): sample period x, then filter 1.0 -> avg, dAvg",
    "QZAVGF_OnFilt: sample x once, then 1.0 (5-sample window) -> avg after 1, after 10",
    "QZSMV_OnInit(s, 0, x, 0.1, 0.01) -> result (alpha kept)",
    "QZSMV_OnInit(s, 0, 0.5, x, 0.01) -> result (stepMax kept)",
    "QZSMV_OnUpdateV: target x once, then 1.0 -> value after 1, after 100",
};

static const char *FltCell(int row, double x) {
    QZAVGFState f;
    QZSMVState m;
    double avg = UNW, d = UNW, in = 1.0, first;
    int32_t r;
    memset(&f, 0, sizeof f);
    switch (row) {
        case 0:
            r = QZAVGF_OnInit(&f, 1, 5, x);
            QZAVGF_OnFilt(&f, &in, &avg, &d);
            QZAVGF_OnFilt(&f, &in, &avg, &d);
            return F("%d: %s, %s", r, G(avg), G(d));
        case 1:
            QZAVGF_OnInit(&f, 1, 5, 0.001);
            QZAVGF_OnFilt(&f, &in, &avg, &d);
            r = QZAVGF_OnFilt(&f, &x, &avg, &d);
            first = avg;
            for (int k = 0; k < 10; ++k) QZAVGF_OnFilt(&f, &in, &avg, &d);
            return F("%d: %s → %s", r, G(first), G(avg));
        case 2: r = QZSMV_OnInit(&m, 0, x, 0.1, 0.01); return F("%d (%s)", r, G(m.alpha));
        case 3: r = QZSMV_OnInit(&m, 0, 0.5, x, 0.01); return F("%d (%s)", r, G(m.stepMax));
        default:
            QZSMV_OnInit(&m, 0, 0.5, 0.1, 0.01);
            QZSMV_OnUpdateV(&m, x, &avg);
            first = avg;
            for (int k = 0; k < 100; ++k) QZSMV_OnUpdateV(&m, 1.0, &avg);
            return F("%s → %s", G(first), G(avg));
    }
}

static const char *const kStateCountRows[] = {
    "QZOnInitEst(s, 0, ...), then QZNEst_OnDT",
    "QZOnInitEst(s, 9, ...), then QZNEst_OnDT (arrays of 8)",
    "OneFitterInit(s, 0, a), then OneFitterRun",
    "OneFitterInit(s, 9, a), then OneFitterRun (arrays of 8)",
    "QZAVGF_OnInit(s, chNum, avgLen, 0.001): (0, 5), (9, 5), (1, 0), (1, 101)",
    "QZAVGF_OnFilt after a refused init",
};

static const char *StateCountCell(int row) {
    static QZNEstState e;
    OneFitterState s;
    QZAVGFState f;
    double lim[8], x[8], o[8];
    int32_t r;
    for (int i = 0; i < 8; ++i) lim[i] = 2.0, x[i] = 0.5;
    Fill(o, 8);
    memset(&f, 0, sizeof f);
    switch (row) {
        case 0:
        case 1:
            memset(&e, 0, sizeof e);
            QZOnInitEst(&e, row ? 9 : 0, 1, lim, lim);
            r = QZNEst_OnDT(&e, 1, x, o, lim);
            return F("%d, axisNum %d, out %s", r, e.axisNum, V(o, 8));
        case 2:
        case 3:
            OneFitterInit(&s, row == 3 ? 9 : 0, lim);
            r = OneFitterRun(&s, x, o);
            return F("%d, out %s", r, V(o, 8));
        case 4:
            return F("%d, %d, %d, %d", QZAVGF_OnInit(&f, 0, 5, 0.001),
                     QZAVGF_OnInit(&f, 9, 5, 0.001), QZAVGF_OnInit(&f, 1, 0, 0.001),
                     QZAVGF_OnInit(&f, 1, 101, 0.001));
        default:
            QZAVGF_OnInit(&f, 9, 5, 0.001);
            r = QZAVGF_OnFilt(&f, x, o, o + 1);
            return F("%d, outputs %s", r, V(o, 2));
    }
}

static void StateFamilies(void) {
    Section("N-axis estimator (`QZOnInitEst`, `QZNEst_*`)",
            "One axis, a sample every 1 ms call on a ramp of 1 unit/s, velocity limits 2; the bad "
            "value enters on call 100. Each cell: the output and the velocity estimate then; → "
            "both after 100 more good samples. The record has no "
            "isInit field: calling before `QZOnInitEst` is the caller's responsibility.");
    Grid(kEstRows, COUNT(kEstRows), EstCell);
    Section("One-step fitter (`OneFitterInit`, `OneFitterRun`)",
            "The weights are not checked. Each cell: the run's result and output (→ the output "
            "after ten more samples of 1.0). Running before `OneFitterInit` is the caller's "
            "responsibility.");
    Grid(kFitRows, COUNT(kFitRows), FitCell);
    Section("Control error comparator (`QZ_DCTRL_ErrorCompare*`)",
            "Each cell: the result and joint 0's correction; → after 100 calls with no error.");
    Grid(kCmpRows, COUNT(kCmpRows), CmpCell);
    Section("Filters (`QZAVGF_*`, `QZSMV_*`)",
            "A refused `QZSMV_OnInit` still leaves a usable record with the default parameters "
            "(alpha 0.002, stepMax 0.01, stepMin 0.002).");
    Grid(kFltRows, COUNT(kFltRows), FltCell);
    Section("Counts of the estimator, fitter and filters", "");
    Fixed(kStateCountRows, COUNT(kStateCountRows), StateCountCell);
}

/* ---- Vectors and matrices --------------------------------------------------------------- */

/* The bad value enters a vector as v = (x, 0, 0), so that x = 0 is the zero vector, and a matrix
 * as its entry [0][0] ("A00 = x") or as a factor of the whole matrix ("x A"). */

static const char *const kVecRows[] = {
    "QZ_VectNorm3(v)",
    "QZ_VectSA3(a, x, b, out)",
    "QZ_VectLength(v, 3)",
    "QZ_VectNorm(v, 3)",
    "QZ_VectAngle(v, (1,1,0), 3)",
    "VectNormalized(v, 3, out)",
    "CalShadowVector((1,1,0), v, out, 3)",
    "QZ_VectCross(v, (0,1,0), out)",
    "QZ_GetVectNormA2B(0, v, out)",
    "QZ_GetVectNormLenA2B(0, v, out, &len) -> len",
};

static const char *VecCell(int row, double x) {
    double v[3] = {x, 0, 0}, o[3], len = UNW;
    const double a[3] = {1, 1, 0}, b[3] = {0, 1, 0}, z[3] = {0, 0, 0};
    int32_t r;
    Fill(o, 3);
    switch (row) {
        case 0: r = QZ_VectNorm3(v); return F("%d: %s", r, V(v, 3));
        case 1: QZ_VectSA3(a, x, b, o); return V(o, 3);
        case 2: return G(QZ_VectLength(v, 3));
        case 3: r = QZ_VectNorm(v, 3); return F("%d: %s", r, V(v, 3));
        case 4: return G(QZ_VectAngle(v, a, 3));
        case 5: VectNormalized(v, 3, o); return V(o, 3);
        case 6: CalShadowVector(a, v, o, 3); return V(o, 3);
        case 7: QZ_VectCross(v, b, o); return V(o, 3);
        case 8: r = QZ_GetVectNormA2B(z, v, o); return F("%d: %s", r, V(o, 3));
        default: r = QZ_GetVectNormLenA2B(z, v, o, &len); return F("%d: %s", r, G(len));
    }
}

static const char *const kVecCountRows[] = {
    "QZ_VectSub(a, 0, b, out) / QZ_VectScale(v, -1, 2, out)",
    "QZ_VectDot(a, b, 0) / QZ_VectLength(v, -1)",
    "QZ_VectNorm(v, 0) / QZ_VectAngle(a, b, 0)",
    "CalShadowVector(a, b, out, 4)",
};

static const char *VecCountCell(int row) {
    double v[4] = {1, 2, 3, 4}, o[4];
    Fill(o, 4);
    switch (row) {
        case 0:
            QZ_VectSub(v, 0, v, o);
            QZ_VectScale(v, -1, 2.0, o);
            return F("out %s", V(o, 4));
        case 1: return F("%s / %s", G(QZ_VectDot(v, v, 0)), G(QZ_VectLength(v, -1)));
        case 2: return F("%d / %s; v %s", QZ_VectNorm(v, 0), G(QZ_VectAngle(v, v, 0)), V(v, 4));
        default: CalShadowVector(v, v, o, 4); return F("out %s", V(o, 4));
    }
}

/* A symmetric positive definite 3-by-3 matrix, and 6 and 7 columns of a well-conditioned
 * Jacobian-like matrix. */
static const double kSpd3[9] = {4, 1, 2, 1, 3, 0, 2, 0, 5};

static void Spd(double *m, int n, double x, int scaled) {
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) m[i * n + j] = i == j ? 4.0 + i : 1.0 / (1 + i + j);
    if (scaled)
        for (int i = 0; i < n * n; ++i) m[i] = x * m[i];
    else
        m[0] = x;
}

static void Wide67(double *m, double x) {
    for (int i = 0; i < 6; ++i)
        for (int j = 0; j < 7; ++j) m[i * 7 + j] = (i == j ? 2.0 : 0.0) + 0.1 * (i + 1) * (j % 3);
    m[0] = x;
}

static const char *const kMatRows[] = {
    "QZ_MatrixMult3(A00 = x, I, out)",
    "QZ_MatrixInv3(A00 = x, out)",
    "QZ_MatrixInv3(x A, out)",
    "QZ_PGMatrixInv(T with position x, out)",
    "QZ_MatrixDeterminant(A00 = x, 3)",
    "QZ_MatLUPD(A00 = x, 3, 3, P) -> result, P, det",
    "QZ_LUPSolveEq(LU of A, 3, P, b = (x,0,0), out)",
    "QZ_LeftPsoInv76(A00 = x, out)",
    "QZ_RightPsoInv67(A00 = x, out)",
    "QZ_RightPsoInv67(x A, out)",
    "Cholesky(A00 = x, L, 3)",
    "Cholesky7(x A, L, 3)",
    "VMV((x,0,0), A, 3)",
    "eig(3, A00 = x, V, 1e-12) -> result, V",
    "eig(3, A, V, eps = x)",
    "eig7(x A, V, 1e-12)",
    "generalized_eig(1e-12, A, B00 = x, V, lambda) -> result, lambda",
    "generalized_eig7(x, A, I, V, lambda): eps = x",
};

static const char *MatCell(int row, double x) {
    double a[64], o[64], b[8] = {0}, e[8];
    double *rows[8];
    int32_t p[8], r;
    double det;
    Fill(o, 64);
    Fill(e, 8);
    for (int i = 0; i < 8; ++i) rows[i] = a + 3 * i;
    switch (row) {
        case 0:
            memcpy(a, kSpd3, sizeof kSpd3);
            a[0] = x;
            QZ_MatrixMult3(a, (const double[]){1, 0, 0, 0, 1, 0, 0, 0, 1}, o);
            return M(o, 9);
        case 1:
        case 2:
            Spd(a, 3, x, row == 2);
            r = QZ_MatrixInv3(a, o);
            return F("%d: %s", r, M(o, 9));
        case 3:
            QZ_XYZABC2Matrix4DEG((const double[]){x, 0, 0, 10, 20, 30}, a);
            r = QZ_PGMatrixInv(a, o);
            return F("%d: %s", r, M(o, 16));
        case 4:
            for (int i = 0; i < 64; ++i) a[i] = (i % 9 == 0) ? 2.0 : 0.0;
            a[0] = x;
            return G(QZ_MatrixDeterminant(a, 3));
        case 5:
        case 6:
            memcpy(a, kSpd3, sizeof kSpd3);
            if (row == 5) a[0] = x;
            r = QZ_MatLUPD(rows, 3, 3, p);
            if (row == 5) {
                det = QZ_MatLUPDet(rows, 3, p);
                return F("%d: P (%d, %d, %d; %d), det %s", r, p[0], p[1], p[2], p[3], G(det));
            }
            b[0] = x;
            QZ_LUPSolveEq(rows, 3, p, b, o);
            return V(o, 3);
        case 7:
        case 8:
        case 9:
            Wide67(a, x);
            if (row == 9)
                for (int i = 0; i < 42; ++i) a[i] = (i ? a[i] : 2.0) * x;
            if (row == 7) {
                double t[42];
                Mat67Transpose(a, t);
                t[0] = x;
                r = QZ_LeftPsoInv76(t, o);
            } else {
                r = QZ_RightPsoInv67(a, o);
            }
            return F("%d: %s", r, M(o, 42));
        case 10:
            Spd(a, 6, x, 0);
            r = Cholesky(a, o, 3);
            return F("%d: %s", r, M(o, 36));
        case 11:
            Spd(a, 7, x, 1);
            r = Cholesky7(a, o, 3);
            return F("%d: %s", r, M(o, 49));
        case 12: Spd(a, 7, 1, 1); return G(VMV((const double[]){x, 0, 0}, a, 3));
        case 13:
        case 14:
            Spd(a, 3, row == 13 ? x : 1.0, 0);
            r = eig(3, a, o, row == 14 ? x : 1e-12);
            return F("%d: %s", r, M(o, 9));
        case 15:
            Spd(a, 7, x, 1);
            r = eig7(a, o, 1e-12);
            return F("%d: %s", r, M(o, 49));
        default: {
            double bb[36];
            Spd(a, 6, 1, 1);
            Spd(bb, 6, row == 16 ? x : 1.0, 0);
            if (row == 16) {
                r = generalized_eig(1e-12, a, bb, o, e);
            } else {
                double a7[49], b7[49];
                Spd(a7, 7, 1, 1);
                QZ_MatrixIdentity7(b7);
                r = generalized_eig7(x, a7, b7, o, e);
            }
            return F("%d: %s", r, M(e, row == 16 ? 6 : 7));
        }
    }
}

static const char *const kMatCountRows[] = {
    "QZ_MatrixDeterminant(A, 0) / (A, 9)",
    "QZ_MatLUPD(A, -1, 3, P) -> result, P[0]",
    "QZ_MatLUPDet(LU, 0, P)",
    "Cholesky(A, L, 0) / (A, L, 7); Cholesky7(A, L, 8) -> result, L",
    "VMV(v, A, 0) / VMV(v, A, 8)",
    "eig(0, A, V, 1e-12) / eig(9, A, V, 1e-12)",
    "QZ_MatrixMultXmX(A, 2, 0, B, 2, Out) -> Out",
    "QZ_VectAddMV(v, m, 0, 2, x, out) / (v, m, 2, 0, x, out)",
    "QZ_MatrixInv3(zero matrix, out) / QZ_LeftPsoInv76(zero, out)",
};

static const char *MatCountCell(int row) {
    double a[64], o[64];
    double *rp[2] = {a, a + 2}, *op[2] = {o, o + 2};
    int32_t p[4] = {-7, -7, -7, -7}, r;
    Fill(o, 64);
    for (int i = 0; i < 64; ++i) a[i] = 1.0 + i;
    switch (row) {
        case 0: return F("%s / %s", G(QZ_MatrixDeterminant(a, 0)), G(QZ_MatrixDeterminant(a, 9)));
        case 1: r = QZ_MatLUPD(rp, -1, 3, p); return F("%d, P[0] %d", r, p[0]);
        case 2: return G(QZ_MatLUPDet(rp, 0, p));
        case 3: {
            const int32_t r0 = Cholesky(a, o, 0), r7 = Cholesky(a, o, 7), r8 = Cholesky7(a, o, 8);
            return F("%d / %d; %d, L %s", r0, r7, r8, M(o, 49));
        }
        case 4: return F("%s / %s", G(VMV(a, a, 0)), G(VMV(a, a, 8)));
        case 5: {
            const uint8_t r0 = eig(0, a, o, 1e-12), r9 = eig(9, a, o, 1e-12);
            return F("%d / %d, V %s", r0, r9, M(o, 64));
        }
        case 6: QZ_MatrixMultXmX(rp, 2, 0, rp, 2, op); return V(o, 4);
        case 7:
            QZ_VectAddMV(a, rp, 0, 2, a, o);
            QZ_VectAddMV(a + 10, rp, 2, 0, a, o + 2);
            return F("%s / %s", V(o, 2), V(o + 2, 2));
        default: {
            double z[49] = {0};
            const uint8_t r3 = QZ_MatrixInv3(z, o), r76 = QZ_LeftPsoInv76(z, o);
            return F("%d / %d, out %s", r3, r76, M(o, 42));
        }
    }
}

static void LinearAlgebraFamilies(void) {
    Section("Vectors (`QZ_Vect*`, `VectNormalized`, `CalShadowVector`, ...)",
            "Here v = (x, 0, 0): x = 0 is the zero vector. The size-suffixed families "
            "(`QZ_VectAdd3` ...) compute element by element and pass NaN and infinities on.");
    Grid(kVecRows, COUNT(kVecRows), VecCell);
    Fixed(kVecCountRows, COUNT(kVecCountRows), VecCountCell);
    Section("Matrices, inversion and determinant, LUP, pseudo-inverses, Cholesky and eigen",
            "A00 = x puts x in the first entry of a symmetric positive definite matrix; x A "
            "scales the whole matrix (x = 0 is the zero matrix). Outputs are summarised: "
            "\"finite, max m\", how many entries are NaN or infinite, or \"unwritten\". The "
            "inversions test only the size of a pivot, so a NaN or infinite entry is not "
            "refused: it spreads through the result. The eigen solvers refuse non-finite entries "
            "and a threshold that is not positive, so their work stays bounded.");
    Grid(kMatRows, COUNT(kMatRows), MatCell);
    Fixed(kMatCountRows, COUNT(kMatCountRows), MatCountCell);
}

/* ---- Orientation: quaternions, conversions, interpolation, rotation vectors, Euler, frames,
 * Jacobians --------------------------------------------------------------------------------- */

/* The bad value enters a quaternion as q = (0, 0, 0, x): x = 0 is the zero quaternion, x = -1 the
 * identity rotation written negated. A matrix gets it as x I or as R00 = x of a rotation. */

static const double kI3[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
static const double kQ1[4] = {0, 0, 0, 1};
static const double kQz90[4] = {0, 0, 0.7071067811865476, 0.7071067811865476};

static const char *const kQuatRows[] = {
    "QZ_QuatMult(q, (0,0,0,1), out)",
    "QZ_QuaternionNorm(q)",
    "QZ_QuaternionSqrtNorm(q)",
    "QZ_QuaternionInverse(q, out)",
    "QZ_QuaternionAngleDeg(q, (0,0,0,1))",
    "QZ_Quaternion2Matrix3(q, R)",
    "QZ_Matrix2Quaternion3(x I, q)",
    "QZ_Matrix2Quaternion3(R00 = x, q)",
    "QZ_PosQuat2Matrix_UnNorm((0,0,0, q), T)",
    "QZ_XYZABC2XYZQ((0,0,0, x,0,0)) -> result, quaternion",
    "QZ_QuatSlerp((0,0,0,1), q, 0.5, out)",
    "QZ_QuatSlerp((0,0,0,1), z90, t = x, out)",
    "QZ_QuatSlerpDir((0,0,0,1), q, (0,0,1))",
    "axis_angle_to_rotmat((x,0,0), R)",
    "rotmat_to_axis_angle(x I, r)",
    "rotmat_to_axis_angle(R00 = x, r)",
    "relative_Angle((x,0,0), (0,0,0), out)",
};

static const char *QuatCell(int row, double x) {
    double q[4] = {0, 0, 0, x}, o[16], m[9], pose[7] = {0, 0, 0, 0, 0, 0, x};
    double z90[4];
    uint32_t r;
    Fill(o, 16);
    memcpy(m, kI3, sizeof m);
    memcpy(z90, kQz90, sizeof z90);
    switch (row) {
        case 0: QZ_QuatMult(q, kQ1, o); return V(o, 4);
        case 1: r = QZ_QuaternionNorm(q); return F("%u: %s", r, V(q, 4));
        case 2: return G(QZ_QuaternionSqrtNorm(q));
        case 3: r = QZ_QuaternionInverse(q, o); return F("%u: %s", r, V(o, 4));
        case 4: return G(QZ_QuaternionAngleDeg(q, kQ1));
        case 5: QZ_Quaternion2Matrix3(q, o); return M(o, 9);
        case 6:
            for (int i = 0; i < 9; ++i) m[i] = m[i] * x;
            QZ_Matrix2Quaternion3(m, o);
            return V(o, 4);
        case 7:
            m[0] = x;
            QZ_Matrix2Quaternion3(m, o);
            return V(o, 4);
        case 8: r = QZ_PosQuat2Matrix_UnNorm(pose, o); return F("%u: %s", r, M(o, 16));
        case 9: {
            double buf[7] = {0, 0, 0, x, 0, 0, UNW};
            r = QZ_XYZABC2XYZQ(buf);
            return F("%u: %s", r, V(buf + 3, 4));
        }
        case 10: QZ_QuatSlerp(kQ1, q, 0.5, o); return V(o, 4);
        case 11: QZ_QuatSlerp(kQ1, z90, x, o); return V(o, 4);
        case 12: return F("%d", QZ_QuatSlerpDir(kQ1, q, (const double[]){0, 0, 1}));
        case 13: axis_angle_to_rotmat((const double[]){x, 0, 0}, o); return M(o, 9);
        case 14:
            for (int i = 0; i < 9; ++i) m[i] = m[i] * x;
            rotmat_to_axis_angle(m, o);
            return V(o, 3);
        case 15:
            m[0] = x;
            rotmat_to_axis_angle(m, o);
            return V(o, 3);
        default:
            relative_Angle((const double[]){x, 0, 0}, (const double[]){0, 0, 0}, o);
            return V(o, 3);
    }
}

static const char *const kEulerRows[] = {
    "QZ_RotXARC(x, R)",
    "QZ_ZYZ2Matrix(x, 0.5, 0.2, R)",
    "QZ_Matrix2ZYZ(x I, abc)",
    "QZ_Matrix2XYZ(x I, abc)",
    "QZ_Matrix2XYZ(R00 = x, abc)",
    "QZ_ABC2Matrix3DEG((x,0,0), R)",
    "QZ_XYZABC2Matrix4DEG((0,0,0, x,0,0), T)",
    "QZ_Matrix2XYZABC4DEG_ZYZ(x T, pose)",
    "QZ_Matrix2XYZABC4ARC_XYZ(T00 = x, pose) (angles in degrees)",
    "QZ_DH2Matrix(0, 1, 0, x, T)",
    "QZ_Skew((x,0,0), S)",
    "QZ_LineCross(0, d1 = (x,0,0), (0,1,0), (0,0,1), X)",
    "QZ_JACOB_TRAN_T67(J00 = x, I, out)",
    "QZ_JACOB_TRAN_T67(J, R00 = x, out)",
    "MVmult677(J, (x,0,...), y)",
};

static const char *EulerCell(int row, double x) {
    double m[16], o[42], j[42], abc[3];
    double pose[6];
    uint32_t r;
    Fill(o, 42);
    Fill(abc, 3);
    Fill(pose, 6);
    memcpy(m, kI3, sizeof kI3);
    for (int i = 0; i < 42; ++i) j[i] = (i % 8 == 0) ? 1.0 : 0.1;
    switch (row) {
        case 0: QZ_RotXARC(x, o); return M(o, 9);
        case 1: QZ_ZYZ2Matrix(x, 0.5, 0.2, o); return M(o, 9);
        case 2:
        case 3:
            for (int i = 0; i < 9; ++i) m[i] = m[i] * x;
            r = row == 2 ? QZ_Matrix2ZYZ(m, abc) : QZ_Matrix2XYZ(m, abc);
            return F("%u: %s", r, V(abc, 3));
        case 4:
            m[0] = x;
            r = QZ_Matrix2XYZ(m, abc);
            return F("%u: %s", r, V(abc, 3));
        case 5: r = QZ_ABC2Matrix3DEG((const double[]){x, 0, 0}, o); return F("%u: %s", r, M(o, 9));
        case 6: QZ_XYZABC2Matrix4DEG((const double[]){0, 0, 0, x, 0, 0}, o); return M(o, 16);
        case 7:
        case 8:
            QZ_XYZABC2Matrix4DEG((const double[]){1, 2, 3, 10, 20, 30}, m);
            if (row == 7) {
                for (int i = 0; i < 16; ++i) m[i] = m[i] * x;
                r = QZ_Matrix2XYZABC4DEG_ZYZ(m, pose);
            } else {
                m[0] = x;
                r = QZ_Matrix2XYZABC4ARC_XYZ(m, pose);
            }
            return F("%u: %s", r, V(pose, 6));
        case 9: QZ_DH2Matrix(0, 1, 0, x, o); return M(o, 16);
        case 10: QZ_Skew((const double[]){x, 0, 0}, o); return M(o, 9);
        case 11: {
            double d1[3] = {x, 0, 0}, d2[3] = {0, 0, 1};
            r = QZ_LineCross((const double[]){0, 0, 0}, d1, (const double[]){0, 1, 0}, d2, o);
            return F("%u: %s", r, V(o, 3));
        }
        case 12:
            j[0] = x;
            QZ_JACOB_TRAN_T67(j, kI3, o);
            return M(o, 42);
        case 13:
            m[0] = x;
            QZ_JACOB_TRAN_T67(j, m, o);
            return M(o, 42);
        default: MVmult677(j, (const double[]){x, 0, 0, 0, 0, 0, 0}, o); return V(o, 6);
    }
}

static void OrientationFamilies(void) {
    Section("Quaternions, conversions, interpolation, rotation vectors",
            "Here q = (0, 0, 0, x): x = 0 is the zero quaternion. The conversions take their "
            "quaternions as unit length and do not test them: a zero or non-finite quaternion "
            "gives a matrix or an angle that looks valid, or NaN.");
    Grid(kQuatRows, COUNT(kQuatRows), QuatCell);
    Section("Euler angles, frames and Jacobians",
            "x I scales the identity, x T a whole transform (x = 0 is the zero matrix); R00 = x "
            "and T00 = x replace one entry of a rotation. Nothing is tested for being a "
            "rotation: the angle extraction turns any matrix into angles.");
    Grid(kEulerRows, COUNT(kEulerRows), EulerCell);
}

int main(void) {
    ScalarFamilies();
    TrackerFamilies();
    StateFamilies();
    LinearAlgebraFamilies();
    OrientationFamilies();
    return 0;
}
