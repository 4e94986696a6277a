/* Conformance kit core: frames, record flattening and digests, and the value text format. */
#include "qzc.h"

#include <stdlib.h>
#include <string.h>

const qzc_fn *qzc_find_fn(const char *name) {
    int k;
    for (k = 0; k < qzc_function_count; ++k)
        if (strcmp(qzc_functions[k].name, name) == 0) return &qzc_functions[k];
    return NULL;
}

const qzc_record *qzc_find_record(const char *name) {
    int k;
    for (k = 0; k < qzc_record_count; ++k)
        if (strcmp(qzc_records[k]->name, name) == 0) return qzc_records[k];
    return NULL;
}

double **qzc_rows(double *base, int rows, int cols, int slot) {
    static double *views[4][16];
    int r;
    if (rows > 16) rows = 16;
    for (r = 0; r < rows; ++r) views[slot & 3][r] = base + r * cols;
    return views[slot & 3];
}

double **qzc_rows_n(double *base, int32_t rows, int32_t cols, int cap, int slot) {
    int stride = cols < 1 ? 1 : cols > cap ? cap : (int)cols;
    int r = rows < 1 ? 0 : rows > 16 ? 16 : (int)rows;
    while (r > 0 && r * stride > cap) --r;
    return qzc_rows(base, r, stride, slot);
}

/* ---- Calls ---------------------------------------------------------------------------------- */

void qzc_prepare(const qzc_fn *fn, qzc_frame *f) {
    int k;
    for (k = 0; k < QZC_MAXO + QZC_GUARD; ++k) f->o[k] = qzc_double(QZC_SENTINEL_D | (uint64_t)k);
    for (k = fn->nx; k < QZC_MAXX + QZC_GUARD; ++k)
        f->x[k] = qzc_double(QZC_SENTINEL_D | (uint64_t)(0x800 + k));
    memset(f->b, QZC_SENTINEL_B, sizeof f->b);
    for (k = 0; k < QZC_MAXN + QZC_GUARD; ++k) f->n[k] = QZC_SENTINEL_N | k;
    f->ret = 0;
}

int qzc_guards_ok(const qzc_fn *fn, const qzc_frame *f) {
    int k;
    for (k = fn->no; k < fn->no + QZC_GUARD; ++k)
        if (qzc_bits(f->o[k]) != (QZC_SENTINEL_D | (uint64_t)k)) return 0;
    for (k = fn->nx; k < fn->nx + QZC_GUARD; ++k)
        if (qzc_bits(f->x[k]) != (QZC_SENTINEL_D | (uint64_t)(0x800 + k))) return 0;
    for (k = fn->nb; k < fn->nb + QZC_GUARD; ++k)
        if (f->b[k] != QZC_SENTINEL_B) return 0;
    for (k = fn->nn; k < fn->nn + QZC_GUARD; ++k)
        if (f->n[k] != (QZC_SENTINEL_N | k)) return 0;
    return 1;
}

/* ---- Records -------------------------------------------------------------------------------- */

static union {
    double d;
    int64_t i;
    void *p;
    unsigned char c[QZC_RECMAX + QZC_RECGUARD];
} rec_store;

void *qzc_rec_buffer(void) { return rec_store.c; }

void qzc_rec_fill(const qzc_record *r, unsigned byte) {
    memset(rec_store.c, (int)(byte & 0xffu), r->size);
    memset(rec_store.c + r->size, QZC_SENTINEL_B, QZC_RECGUARD);
}

int qzc_rec_guard_ok(const qzc_record *r) {
    int k;
    for (k = 0; k < QZC_RECGUARD; ++k)
        if (rec_store.c[r->size + (size_t)k] != QZC_SENTINEL_B) return 0;
    return 1;
}

static uint64_t load(char type, const unsigned char *p) {
    double d;
    int32_t i;
    switch (type) {
        case 'd': memcpy(&d, p, 8); return qzc_bits(d);
        case 'i': memcpy(&i, p, 4); return (uint64_t)(uint32_t)i;
        default: return *p;
    }
}

static size_t width(char type) { return type == 'd' ? 8 : type == 'i' ? 4 : 1; }

/* Visits every scalar element in field order; visit returns nonzero to stop. */
typedef int (*visit_fn)(void *ctx, int k, char type, const unsigned char *p, const char *prefix,
                        const qzc_field *fd, int idx);

static int walk(const qzc_record *r, const unsigned char *p, int *k, visit_fn visit, void *ctx,
                const char *prefix) {
    int f, j;
    for (f = 0; f < r->nfields; ++f) {
        const qzc_field *fd = &r->fields[f];
        for (j = 0; j < fd->count; ++j) {
            if (fd->type == 'r') {
                char sub[256];
                if (fd->count > 1)
                    sprintf(sub, "%s%s[%d].", prefix, fd->name, j);
                else
                    sprintf(sub, "%s%s.", prefix, fd->name);
                if (walk(fd->sub, p + fd->offset + (size_t)j * fd->sub->size, k, visit, ctx, sub))
                    return 1;
            } else {
                if (visit(ctx, *k, fd->type, p + fd->offset + (size_t)j * width(fd->type), prefix,
                          fd, j))
                    return 1;
                ++*k;
            }
        }
    }
    return 0;
}

static void element_name(char *buf, size_t len, const char *prefix, const qzc_field *fd, int idx) {
    char tmp[320];
    if (fd->count > 1)
        sprintf(tmp, "%s%s[%d]", prefix, fd->name, idx);
    else
        sprintf(tmp, "%s%s", prefix, fd->name);
    if (strlen(tmp) >= len) tmp[len - 1] = 0;
    memcpy(buf, tmp, strlen(tmp) + 1);
}

struct flat_ctx {
    uint64_t *bits;
    char *types;
    int max;
};
static int flat_visit(void *c, int k, char type, const unsigned char *p, const char *prefix,
                      const qzc_field *fd, int idx) {
    struct flat_ctx *x = (struct flat_ctx *)c;
    (void)prefix;
    (void)fd;
    (void)idx;
    if (k >= x->max) return 1;
    if (x->bits) x->bits[k] = load(type, p);
    if (x->types) x->types[k] = type;
    return 0;
}

int qzc_rec_flatten(const qzc_record *r, const void *p, uint64_t *bits, char *types, int max) {
    struct flat_ctx c;
    int k = 0;
    c.bits = bits;
    c.types = types;
    c.max = max;
    walk(r, (const unsigned char *)p, &k, flat_visit, &c, "");
    return k;
}

int qzc_rec_count(const qzc_record *r) {
    return qzc_rec_flatten(r, rec_store.c, NULL, NULL, 1 << 30);
}

struct name_ctx {
    int want;
    char *buf;
    size_t len;
};
static int name_visit(void *c, int k, char type, const unsigned char *p, const char *prefix,
                      const qzc_field *fd, int idx) {
    struct name_ctx *x = (struct name_ctx *)c;
    (void)type;
    (void)p;
    if (k != x->want) return 0;
    element_name(x->buf, x->len, prefix, fd, idx);
    return 1;
}

void qzc_rec_name(const qzc_record *r, int k, char *buf, size_t len) {
    struct name_ctx c;
    int n = 0;
    c.want = k;
    c.buf = buf;
    c.len = len;
    buf[0] = 0;
    walk(r, rec_store.c, &n, name_visit, &c, "");
}

struct digest_ctx {
    uint64_t h;
};
static int digest_visit(void *c, int k, char type, const unsigned char *p, const char *prefix,
                        const qzc_field *fd, int idx) {
    struct digest_ctx *x = (struct digest_ctx *)c;
    uint64_t v = load(type, p);
    size_t w = width(type), j;
    (void)k;
    (void)prefix;
    (void)fd;
    (void)idx;
    if (type == 'd' && qzc_is_nan_bits(v)) v = 0x7ff8000000000000ull;
    for (j = 0; j < w; ++j) {
        x->h ^= (v >> (8 * j)) & 0xffu;
        x->h *= 0x100000001b3ull;
    }
    return 0;
}

uint64_t qzc_rec_digest(const qzc_record *r, const void *p) {
    struct digest_ctx c;
    int k = 0;
    c.h = 0xcbf29ce484222325ull;
    walk(r, (const unsigned char *)p, &k, digest_visit, &c, "");
    return c.h;
}

struct set_ctx {
    const char *path;
    uint64_t bits;
    int done;
};
static int set_visit(void *c, int k, char type, const unsigned char *p, const char *prefix,
                     const qzc_field *fd, int idx) {
    struct set_ctx *x = (struct set_ctx *)c;
    char name[320];
    (void)k;
    element_name(name, sizeof name, prefix, fd, idx);
    if (strcmp(name, x->path) != 0) return 0;
    {
        unsigned char *w = (unsigned char *)p; /* the record buffer itself is writable */
        double d = qzc_double(x->bits);
        int32_t i = (int32_t)(uint32_t)x->bits;
        uint8_t u = (uint8_t)x->bits;
        if (type == 'd')
            memcpy(w, &d, 8);
        else if (type == 'i')
            memcpy(w, &i, 4);
        else
            memcpy(w, &u, 1);
    }
    x->done = 1;
    return 1;
}

int qzc_rec_set(const qzc_record *r, void *p, const char *path, uint64_t bits) {
    struct set_ctx c;
    int k = 0;
    c.path = path;
    c.bits = bits;
    c.done = 0;
    walk(r, (const unsigned char *)p, &k, set_visit, &c, "");
    return c.done;
}

/* ---- Values --------------------------------------------------------------------------------- */

uint64_t qzc_bits(double v) {
    uint64_t b;
    memcpy(&b, &v, 8);
    return b;
}

double qzc_double(uint64_t bits) {
    double v;
    memcpy(&v, &bits, 8);
    return v;
}

int qzc_is_nan_bits(uint64_t b) {
    return (b & 0x7ff0000000000000ull) == 0x7ff0000000000000ull && (b & 0x000fffffffffffffull) != 0;
}

int qzc_same(char type, uint64_t a, uint64_t b, int strict_nan) {
    if (a == b) return 1;
    return type == 'd' && !strict_nan && qzc_is_nan_bits(a) && qzc_is_nan_bits(b);
}

void qzc_format(char type, uint64_t bits, char *buf) {
    static const char hex[] = "0123456789abcdef";
    int k;
    if (type == 'd') {
        int n = 0;
        for (k = 0; k < 16; ++k) {
            unsigned h = (unsigned)(bits >> (60 - 4 * k)) & 0xfu;
            if (h || n || k == 15) buf[n++] = hex[h];
        }
        buf[n] = 0;
    } else if (type == 'i') {
        sprintf(buf, "%ld", (long)(int32_t)(uint32_t)bits);
    } else {
        sprintf(buf, "%u", (unsigned)(bits & 0xffu));
    }
}

int qzc_parse(char type, const char *tok, uint64_t *bits) {
    char *end;
    if (type == 'd') {
        uint64_t v = 0;
        int k;
        for (k = 0; tok[k] != 0; ++k) {
            char c = tok[k];
            int h = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
            if (h < 0) return 0;
            if (k == 16) return 0;
            v = (v << 4) | (uint64_t)h;
        }
        if (k == 0) return 0;
        *bits = v;
        return 1;
    } else {
        long v = strtol(tok, &end, 10);
        if (*end != 0 || end == tok) return 0;
        if (type == 'i')
            *bits = (uint64_t)(uint32_t)(int32_t)v;
        else
            *bits = (uint64_t)(v & 0xff);
        return 1;
    }
}

char *qzc_token(char **p) {
    char *s = *p, *t;
    while (*s == ' ' || *s == '\t' || *s == '\n' || *s == '\r') ++s;
    if (*s == 0) {
        *p = s;
        return NULL;
    }
    t = s;
    while (*s && *s != ' ' && *s != '\t' && *s != '\n' && *s != '\r') ++s;
    if (*s) *s++ = 0;
    *p = s;
    return t;
}

/* ---- Case lines ----------------------------------------------------------------------------- */

static void append(char *buf, char type, uint64_t bits) {
    char *end = buf + strlen(buf);
    *end++ = ' ';
    qzc_format(type, bits, end);
}

/* An output the call left unwritten still holds its sentinel: written as "~". */
static void append_out(char *buf, char type, uint64_t bits, uint64_t sentinel) {
    if (bits == sentinel)
        strcat(buf, " ~");
    else
        append(buf, type, bits);
}

void qzc_format_inputs(const qzc_fn *fn, const qzc_frame *f, char *buf) {
    int k;
    for (k = 0; k < fn->nd; ++k) append(buf, 'd', qzc_bits(f->d[k]));
    for (k = 0; k < fn->ni; ++k) append(buf, 'i', (uint64_t)(uint32_t)f->i[k]);
    for (k = 0; k < fn->nx; ++k) append(buf, 'd', qzc_bits(f->x[k]));
}

void qzc_format_outputs(const qzc_fn *fn, const qzc_frame *f, char *buf) {
    int k;
    if (fn->ret != 'v') append(buf, fn->ret, f->ret);
    for (k = 0; k < fn->nx; ++k) append(buf, 'd', qzc_bits(f->x[k]));
    for (k = 0; k < fn->no; ++k)
        append_out(buf, 'd', qzc_bits(f->o[k]), QZC_SENTINEL_D | (uint64_t)k);
    for (k = 0; k < fn->nb; ++k) append_out(buf, 'u', f->b[k], QZC_SENTINEL_B);
    for (k = 0; k < fn->nn; ++k)
        append_out(buf, 'i', (uint64_t)(uint32_t)f->n[k], (uint64_t)(uint32_t)(QZC_SENTINEL_N | k));
    if (fn->rec) append(buf, 'd', qzc_rec_digest(fn->rec, f->rec));
}
