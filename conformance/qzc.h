/*
 * Conformance kit core: the table of exported functions, the record layouts, and the text format
 * of the golden vectors. Plain C99 and integer-only: the runner built on it does no floating-point
 * arithmetic of its own, so what it compares is exactly what the library produced.
 */
#ifndef QZC_H
#define QZC_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Capacities of one call frame. QZC_GUARD slots after every output area must stay untouched. */
enum {
    QZC_MAXD = 256, /* double inputs */
    QZC_MAXI = 16,  /* int32 inputs */
    QZC_MAXX = 128, /* in/out doubles (given before the call, compared after) */
    QZC_MAXO = 256, /* double outputs */
    QZC_MAXB = 16,  /* uint8 outputs */
    QZC_MAXN = 32,  /* int32 outputs */
    QZC_GUARD = 8,
    QZC_RECMAX = 32768, /* largest record */
    QZC_RECGUARD = 64   /* guard bytes after a record */
};

/* Sentinels: outputs a call leaves unwritten keep these bits, so "unwritten" is checked too. */
#define QZC_SENTINEL_D 0x7ffa5a5a5a5a0000ull /* quiet NaN; the low bits carry the slot index */
#define QZC_SENTINEL_B 0xa5u
#define QZC_SENTINEL_N ((int32_t)0xa5a50000) /* the low bits carry the slot index */

typedef struct qzc_record qzc_record;

/* One field of a record: 'd' double, 'i' int32, 'u' uint8, 'r' embedded record (sub). */
typedef struct qzc_field {
    const char *name;
    size_t offset;
    char type;
    int count;
    const qzc_record *sub;
} qzc_field;

struct qzc_record {
    const char *name;
    size_t size;
    const qzc_field *fields;
    int nfields;
};

typedef struct qzc_frame {
    double d[QZC_MAXD];
    int32_t i[QZC_MAXI];
    double x[QZC_MAXX + QZC_GUARD];
    double o[QZC_MAXO + QZC_GUARD];
    uint8_t b[QZC_MAXB + QZC_GUARD];
    int32_t n[QZC_MAXN + QZC_GUARD];
    uint64_t ret; /* result bits: a double's bits, or an integer zero-extended */
    void *rec;    /* the record of the sequence, NULL for pure functions */
} qzc_frame;

/* One exported function: result kind ('d' double, 'i' int32, 'u' uint8, 'v' none), the record it
 * works on (NULL for a pure function), its argument counts (nn: int32 outputs, after the byte
 * outputs), and the thunk that calls it. */
typedef struct qzc_fn {
    const char *name;
    char ret;
    const qzc_record *rec;
    int nd, ni, nx, no, nb, nn;
    void (*call)(qzc_frame *f);
} qzc_fn;

extern const qzc_fn qzc_functions[];
extern const int qzc_function_count;
extern const qzc_record *const qzc_records[];
extern const int qzc_record_count;

const qzc_fn *qzc_find_fn(const char *name);
const qzc_record *qzc_find_record(const char *name);

/* Row-pointer view of a row-major block for functions that take double ** (slot 0..3 picks one
 * of four independent views, for functions taking several). */
double **qzc_rows(double *base, int rows, int cols, int slot);
/* As qzc_rows for counts read from a case: rows below 1 give no rows, cols below 1 a row stride
 * of 1, and rows that would reach past cap doubles are not set up (the view ends early). */
double **qzc_rows_n(double *base, int32_t rows, int32_t cols, int cap, int slot);

/* ---- Calls ---- */
/* Fills every output and guard slot with its sentinel and the x guards; inputs are left alone. */
void qzc_prepare(const qzc_fn *fn, qzc_frame *f);
/* 1 when no guard slot after the outputs was written. */
int qzc_guards_ok(const qzc_fn *fn, const qzc_frame *f);

/* ---- Records ---- */
/* The record buffer: aligned, followed by guard bytes. */
void *qzc_rec_buffer(void);
void qzc_rec_fill(const qzc_record *r, unsigned byte); /* whole record to byte, guards re-armed */
int qzc_rec_guard_ok(const qzc_record *r);
/* Number of scalar elements of a record, flattened in field order. */
int qzc_rec_count(const qzc_record *r);
/* Flattens the record's fields into bits[] and types[] ('d' 'i' 'u'); returns the count. */
int qzc_rec_flatten(const qzc_record *r, const void *p, uint64_t *bits, char *types, int max);
/* Name of flattened element k, e.g. "axis[2].vel" or "ringBuf[105]". */
void qzc_rec_name(const qzc_record *r, int k, char *buf, size_t len);
/* FNV-1a 64 of the flattened fields (each NaN counted as the one canonical NaN). */
uint64_t qzc_rec_digest(const qzc_record *r, const void *p);
/* Sets the element named path to value bits; 0 when no element has that name. */
int qzc_rec_set(const qzc_record *r, void *p, const char *path, uint64_t bits);

/* ---- Values ---- */
uint64_t qzc_bits(double v);
double qzc_double(uint64_t bits);
int qzc_is_nan_bits(uint64_t bits);
/* Equality of two values of kind type: bits for doubles, except that any NaN equals any NaN
 * unless strict_nan is set (NaN sign and payload differ between CPUs). */
int qzc_same(char type, uint64_t a, uint64_t b, int strict_nan);
/* Formats one value of kind type: 'd' as the hex digits of its bits without leading zeros (+0.0
 * is "0"), 'i' signed decimal, 'u' decimal. */
void qzc_format(char type, uint64_t bits, char *buf);
/* Parses one value of kind type; 0 on a malformed token. */
int qzc_parse(char type, const char *tok, uint64_t *bits);
/* Next whitespace-separated token of *p (modified in place), or NULL at the end. */
char *qzc_token(char **p);

/* ---- Case lines ---- */
/* Appends the inputs of a call (d, i, x in that order) to buf. */
void qzc_format_inputs(const qzc_fn *fn, const qzc_frame *f, char *buf);
/* Appends the results of a call (result, x, o, b, and the record digest for a record function);
 * an output slot left unwritten is written "~". */
void qzc_format_outputs(const qzc_fn *fn, const qzc_frame *f, char *buf);
/* Longest line the formatter can produce. */
enum { QZC_LINEMAX = 1 << 20 };

#ifdef __cplusplus
}
#endif

#endif
