/* The result examples of docs/conventions.md: what success and failure look like, and the
 * refusals of a record that was never initialised. */
#include <stdio.h>
#include <string.h>

#include "QZDT.h"
#include "QZFLT.h"
#include "QZMatrix.h"

static void Lup(const char *what, const double *m) {
    double a[9], *rows[3] = {a, a + 3, a + 6};
    int32_t p[4];
    memcpy(a, m, sizeof a);
    const int r = QZ_MatLUPD(rows, 3, 3, p);
    printf("QZ_MatLUPD(rows of %s, 3, 3, P)  ->  %d", what, r);
    if (r == 0) printf(", P = (%d, %d, %d), exchanges: %d", p[0], p[1], p[2], p[3]);
    printf("\n");
}

int main(void) {
    const double sing[9] = {1, 2, 3, 2, 4, 6, 1, 1, 1};
    double out[36], l[36] = {0};
    printf("```text\n");
    const int r = QZ_MatrixInv3(sing, out);
    printf("QZ_MatrixInv3({1,2,3, 2,4,6, 1,1,1}, out)  ->  %d, out not written\n", r);
    Lup("the same matrix", sing);
    Lup("{4,1,2, 1,3,0, 2,0,5}", (const double[]){4, 1, 2, 1, 3, 0, 2, 0, 5});
    Lup("{0,1,0, 1,0,0, 0,0,1}", (const double[]){0, 1, 0, 1, 0, 0, 0, 0, 1});

    double a[36] = {0};
    a[0] = 4, a[6] = 2, a[7] = 3;
    int c = Cholesky(a, l, 2);
    printf("Cholesky({4,2; 2,3}, L, 2)  ->  %d, L = (%g, %g; %g, %g)\n", c, l[0], l[1], l[6], l[7]);
    a[7] = 1;
    c = Cholesky(a, l, 2);
    printf("Cholesky({4,2; 2,1}, L, 2)  ->  %d\n\n", c);

    QZVDTState s = {0};
    double o = 7.0;
    const int rs = QZVDT_OnDT(&s, 5, &o);
    printf("QZVDTState s = {0};  QZVDT_OnDT(&s, 5, &out)  ->  %d, out unchanged (%g)\n", rs, o);
    static QZNSyncDTSState n;
    const double v[1] = {50}, acc[1] = {100}, jerk[1] = {0.5};
    const int rn = QZNSyncDTS_OnInit(&n, 1, 4.0, v, acc, jerk);
    printf("QZNSyncDTS_OnInit with a jerk limit of 0.5     ->  %d, isInit %d\n", rn, n.isInit);
    static QZAVGFState f;
    printf("QZAVGF_OnInit with 9 channels                  ->  %d\n",
           QZAVGF_OnInit(&f, 9, 10, 0.001));
    printf("```\n");
    return 0;
}
