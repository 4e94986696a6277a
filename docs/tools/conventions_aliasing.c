/* The aliasing examples of docs/conventions.md: a product into a distinct array, an inverse in
 * place, and a tracker writing its positions over its targets. */
#include <stdio.h>

#include "QZDT.h"
#include "QZMatrix.h"

int main(void) {
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0};
    double z[3], a[9] = {4, 1, 2, 1, 3, 0, 2, 0, 5};
    printf("```text\n");
    QZ_VectCross(x, y, z);
    printf(
        "x = (1, 0, 0), y = (0, 1, 0):  QZ_VectCross(x, y, z)  ->  z = (%g, %g, %g)   "
        "(z distinct from x, y)\n",
        z[0], z[1], z[2]);
    const int r = QZ_MatrixInv3(a, a);
    printf("QZ_MatrixInv3(A, A) with A = {4,1,2, 1,3,0, 2,0,5}  ->  %d, A = {%g, %g, %g, ...}\n", r,
           a[0], a[1], a[2]);

    static QZNSyncDTSState s;
    const double v[2] = {50, 50}, acc[2] = {100, 100}, jerk[2] = {1000, 1000};
    double tg[2] = {1, 2};
    QZNSyncDTS_OnInit(&s, 2, 4.0, v, acc, jerk);
    QZNSyncDTS_OnDT(&s, tg, tg);
    tg[0] = 5, tg[1] = 5;
    QZNSyncDTS_OnDT(&s, tg, tg);
    printf(
        "QZNSyncDTS_OnDT(&s, tg, tg) at (1, 2): targets (5, 5) in, positions (%.7g, %.7g) out, "
        "same array\n",
        tg[0], tg[1]);
    printf("```\n");
    return 0;
}
