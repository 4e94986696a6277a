/* The table of exported functions: one thunk per entry of the fn_*.def lists, each calling its
 * function with arguments taken from a call frame. */
#include <string.h>

#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "QZKinematics.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "qzc.h"
#include "qzrecords.h"

/* Record layouts (records.c), named qzc_rec_<record type>. */
#define QZC_DECLARE_RECORD(T) extern const qzc_record qzc_rec_##T;
#define QZC_NO_FIELD(...)
QZ_RECORDS(QZC_DECLARE_RECORD, QZC_NO_FIELD, QZC_NO_FIELD, QZC_NO_FIELD)

/* Row-pointer view of a block of cap doubles for counts read from a case (see qzc_rows_n). */
#define QZC_ROWS(base, rows, cols, cap, slot) qzc_rows_n((base), (rows), (cols), (cap), (slot))

/* Sizes 2 to 8, for stamping size families in the lists. */
#define QZC_SIZES_2_8(X) X(2) X(3) X(4) X(5) X(6) X(7) X(8)

#define QZC_RET_d(call)        \
    {                          \
        double r_ = (call);    \
        f->ret = qzc_bits(r_); \
    }
#define QZC_RET_i(call)                  \
    {                                    \
        int32_t r_ = (call);             \
        f->ret = (uint64_t)(uint32_t)r_; \
    }
#define QZC_RET_u(call)      \
    {                        \
        uint8_t r_ = (call); \
        f->ret = r_;         \
    }
#define QZC_RET_v(call) \
    { call; }
#define QZC_RETC_d 'd'
#define QZC_RETC_i 'i'
#define QZC_RETC_u 'u'
#define QZC_RETC_v 'v'

#define QZC_BODY(ret, call) \
    double *D = f->d;       \
    int32_t *I = f->i;      \
    double *X = f->x;       \
    double *O = f->o;       \
    uint8_t *B = f->b;      \
    int32_t *N = f->n;      \
    (void)D;                \
    (void)I;                \
    (void)X;                \
    (void)O;                \
    (void)B;                \
    (void)N;                \
    QZC_RET_##ret(call)

/* First pass: the thunks. */
#define QZP(id, ret, nd, ni, nx, no, nb, call) \
    static void t_##id(qzc_frame *f) { QZC_BODY(ret, call) }
#define QZPV(id, var, ret, nd, ni, nx, no, nb, call) \
    static void t_##id##__##var(qzc_frame *f) { QZC_BODY(ret, call) }
#define QZPN(id, ret, nd, ni, nx, no, nb, nn, call) \
    static void t_##id(qzc_frame *f) { QZC_BODY(ret, call) }
#define QZS(id, ret, T, nd, ni, nx, no, nb, call) \
    static void t_##id(qzc_frame *f) {            \
        T *S = (T *)f->rec;                       \
        QZC_BODY(ret, call)                       \
    }
#define QZSV(id, var, ret, T, nd, ni, nx, no, nb, call) \
    static void t_##id##__##var(qzc_frame *f) {         \
        T *S = (T *)f->rec;                             \
        QZC_BODY(ret, call)                             \
    }
#include "modules.def"
#undef QZP
#undef QZPN
#undef QZPV
#undef QZS
#undef QZSV

/* Second pass: the table. */
#define QZP(id, ret, nd, ni, nx, no, nb, call) \
    {#id, QZC_RETC_##ret, NULL, nd, ni, nx, no, nb, 0, t_##id},
#define QZPN(id, ret, nd, ni, nx, no, nb, nn, call) \
    {#id, QZC_RETC_##ret, NULL, nd, ni, nx, no, nb, nn, t_##id},
#define QZPV(id, var, ret, nd, ni, nx, no, nb, call) \
    {#id "." #var, QZC_RETC_##ret, NULL, nd, ni, nx, no, nb, 0, t_##id##__##var},
#define QZS(id, ret, T, nd, ni, nx, no, nb, call) \
    {#id, QZC_RETC_##ret, &qzc_rec_##T, nd, ni, nx, no, nb, 0, t_##id},
#define QZSV(id, var, ret, T, nd, ni, nx, no, nb, call) \
    {#id "." #var, QZC_RETC_##ret, &qzc_rec_##T, nd, ni, nx, no, nb, 0, t_##id##__##var},
const qzc_fn qzc_functions[] = {
#include "modules.def"
};
const int qzc_function_count = (int)(sizeof qzc_functions / sizeof qzc_functions[0]);
