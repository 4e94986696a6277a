/* Batch loops of the qzmath Python package: each runs one of libQZMath's own functions over a
 * batch, so that a batch costs one foreign call from Python instead of one per element.
 *
 * Nothing here computes anything itself. The function to run is handed over as a pointer into
 * the libQZMath the package loaded (so results carry that library's exact bits, and this helper
 * has no link dependency of its own and pairs with whichever library the package chose). Loops
 * are named after the C signature they call: p a double pointer, s a double by value, with the
 * arguments in that order. Element i of a pointer argument is base + i * step (steps counted in
 * doubles; a step of 0 repeats one element), of a by-value argument s[i * step].
 *
 * ret selects the function's result type, which is stored in res[i] as a double when res is not
 * NULL: 0 void, 1 uint8_t, 2 uint32_t, 3 int32_t, 4 double. */
#include <stddef.h>
#include <stdint.h>

#include "QZDT.h"

#define QZB_API __attribute__((visibility("default")))

typedef double D;
typedef int64_t I;

/* One loop per result type: the cast gives the call the function's true result type. */
#define QZB_CALLS(R, PARAMS, ARGS)            \
    for (i = 0; i < n; ++i) {                 \
        const D r = (D)((R(*) PARAMS)fn)ARGS; \
        if (res) res[i] = r;                  \
    }                                         \
    break

#define QZB_LOOP(PARAMS, ARGS)                                     \
    do {                                                           \
        I i;                                                       \
        switch (ret) {                                             \
            case 1: QZB_CALLS(uint8_t, PARAMS, ARGS);              \
            case 2: QZB_CALLS(uint32_t, PARAMS, ARGS);             \
            case 3: QZB_CALLS(int32_t, PARAMS, ARGS);              \
            case 4: QZB_CALLS(D, PARAMS, ARGS);                    \
            default:                                               \
                for (i = 0; i < n; ++i) ((void(*) PARAMS)fn) ARGS; \
        }                                                          \
    } while (0)

#define P(k) (p##k + i * s##k)

QZB_API void qzb_p(void *fn, int ret, I n, D *p0, I s0, D *res) { QZB_LOOP((D *), (P(0))); }

QZB_API void qzb_pp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *res) {
    QZB_LOOP((D *, D *), (P(0), P(1)));
}

QZB_API void qzb_ppp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *res) {
    QZB_LOOP((D *, D *, D *), (P(0), P(1), P(2)));
}

QZB_API void qzb_pppp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *p3, I s3,
                      D *res) {
    QZB_LOOP((D *, D *, D *, D *), (P(0), P(1), P(2), P(3)));
}

QZB_API void qzb_sp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *res) {
    QZB_LOOP((D, D *), (*P(0), P(1)));
}

QZB_API void qzb_sssp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *p3, I s3,
                      D *res) {
    QZB_LOOP((D, D, D, D *), (*P(0), *P(1), *P(2), P(3)));
}

QZB_API void qzb_ssssp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *p3, I s3,
                       D *p4, I s4, D *res) {
    QZB_LOOP((D, D, D, D, D *), (*P(0), *P(1), *P(2), *P(3), P(4)));
}

QZB_API void qzb_ppsp(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *p3, I s3,
                      D *res) {
    QZB_LOOP((D *, D *, D, D *), (P(0), P(1), *P(2), P(3)));
}

/* The factor-form slerp: the fifth argument is the record that carries the pair's angle from one
 * call to the next, the same for every element. */
QZB_API void qzb_ppspr(void *fn, int ret, I n, D *p0, I s0, D *p1, I s1, D *p2, I s2, D *p3, I s3,
                       void *rec, D *res) {
    QZB_LOOP((D *, D *, D, D *, void *), (P(0), P(1), *P(2), P(3), rec));
}

/* Rotation of vectors by quaternions: the quaternion's matrix (to_matrix), then the matrix times
 * the vector (mat_vec), the two library calls a single element makes, without the intermediate
 * batch of matrices. */
QZB_API void qzb_quat_rotate(void *to_matrix, void *mat_vec, I n, D *p0, I s0, D *p1, I s1, D *p2,
                             I s2) {
    D m[9];
    for (I i = 0; i < n; ++i) {
        ((void (*)(D *, D *))to_matrix)(P(0), m);
        ((void (*)(D *, D *, D *))mat_vec)(m, P(1), P(2));
    }
}

/* Tracker runs: n cycles, the target (or row of targets) of cycle i at target + i * tstep, so
 * that a tstep of 0 holds one target for every cycle. Each returns the number of cycles stepped,
 * which is n unless the step function refused a cycle (the record not initialised): that cycle
 * and the ones after it are not written. */

/* Single-axis tracker: positions and the record's velocity after each cycle. */
QZB_API I qzb_run_tracker(void *step, QZVDTState *s, I n, const D *target, I tstep, D *pos,
                          D *vel) {
    uint8_t (*f)(QZVDTState *, D, D *) = (uint8_t(*)(QZVDTState *, D, D *))step;
    for (I i = 0; i < n; ++i) {
        if (!f(s, target[i * tstep], pos + i)) return i;
        vel[i] = s->vel;
    }
    return n;
}

/* Single-axis multi-stage tracker: positions only (its record keeps no summed velocity). */
QZB_API I qzb_run_tracker_m(void *step, void *s, I n, const D *target, I tstep, D *pos) {
    uint8_t (*f)(void *, D, D *) = (uint8_t(*)(void *, D, D *))step;
    for (I i = 0; i < n; ++i)
        if (!f(s, target[i * tstep], pos + i)) return i;
    return n;
}

/* N-axis smoothed tracker: one step that writes positions, velocities and accelerations. Output
 * rows are `axes` doubles apart. */
QZB_API I qzb_run_rows(void *step, void *s, I n, I axes, const D *target, I tstep, D *pos, D *vel,
                       D *acc) {
    uint8_t (*f)(void *, const D *, D *, D *, D *) =
        (uint8_t(*)(void *, const D *, D *, D *, D *))step;
    for (I i = 0, k = 0; i < n; ++i, k += axes)
        if (!f(s, target + i * tstep, pos + k, vel + k, acc + k)) return i;
    return n;
}

/* N-axis multi-stage tracker: a step that writes positions, then the query of the velocities and
 * accelerations it reached (its targets and positions go to scratch, 16 doubles). */
QZB_API I qzb_run_rows_query(void *step, void *query, void *s, I n, I axes, const D *target,
                             I tstep, D *pos, D *vel, D *acc, D *scratch) {
    uint8_t (*f)(void *, const D *, D *) = (uint8_t(*)(void *, const D *, D *))step;
    uint8_t (*q)(void *, D *, D *, D *, D *) = (uint8_t(*)(void *, D *, D *, D *, D *))query;
    for (I i = 0, k = 0; i < n; ++i, k += axes) {
        if (!f(s, target + i * tstep, pos + k)) return i;
        q(s, scratch, scratch + 8, vel + k, acc + k);
    }
    return n;
}
