/* Interposition: built twice from this file, once plainly and once (QZ_FOREIGN) with a definition
 * of every unprefixed exported name that returns garbage, exported from the executable so that
 * the dynamic linker would hand it to any library that looked such a name up. Both builds call
 * the library's own functions (looked up in the library itself) and print the bits of every
 * result; the test compares the two listings, which differ if the library reached any of its own
 * functions through the process-wide name lookup. */
#include <QZBaseMath.h>
#include <QZDT.h>
#include <QZMatrix.h>
#include <QZQuaternions.h>
#include <QZVersion.h>
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static void *lib;

#define OWN(name) ((__typeof__(&name))own(#name))
static void *own(const char *name) {
    void *f = dlsym(lib, name);
    if (!f) {
        fprintf(stderr, "%s not found in the library\n", name);
        _exit(2);
    }
    return f;
}

static void show(const char *what, const double *v, int n) {
    printf("%s", what);
    for (int i = 0; i < n; ++i) {
        unsigned long long b;
        memcpy(&b, &v[i], sizeof b);
        printf(" %llx", b);
    }
    printf("\n");
}

#ifdef QZ_FOREIGN
// clang-format off
static const double junk = 1234.5;
static void fill(double *v, int n) { for (int i = 0; i < n; ++i) v[i] = junk; }
void ValueToTarget(double *v, double t, double s) { (void)t; (void)s; *v = junk; }
int32_t Cholesky(const double *A, double *L, int32_t n) { (void)A; (void)n; fill(L, 36); return 0; }
int32_t Cholesky7(const double *A, double *L, int32_t n) { (void)A; (void)n; fill(L, 49); return 0; }
double VMV(const double *v, const double *M, int32_t n) { (void)v; (void)M; (void)n; return junk; }
uint8_t eig(int32_t n, double *A, double *V, double e) { (void)e; fill(A, n * n); fill(V, n * n); return 1; }
uint8_t eig7(double *A, double *V, double e) { (void)e; fill(A, 49); fill(V, 49); return 1; }
uint8_t generalized_eig(double e, const double *A, const double *B, double *V, double *l) {
    (void)e; (void)A; (void)B; fill(V, 36); fill(l, 6); return 1; }
uint8_t generalized_eig7(double e, const double *A, const double *B, double *V, double *l) {
    (void)e; (void)A; (void)B; fill(V, 49); fill(l, 7); return 1; }
void MVmult677(const double *M, const double *x, double *y) { (void)M; (void)x; fill(y, 6); }
void Mat4433Transpose(const double *A, double *B) { (void)A; fill(B, 9); }
void Mat67Transpose(const double *A, double *B) { (void)A; fill(B, 42); }
void MatTr33(const double *A, double *B) { (void)A; fill(B, 9); }
void MatTr44(const double *A, double *B) { (void)A; fill(B, 16); }
void OneFitterInit(OneFitterState *s, int32_t n, const double *a) { (void)a; memset(s, 0, sizeof *s); s->axisNum = n; }
int32_t OneFitterRun(OneFitterState *s, const double *x, double *o) { (void)s; (void)x; fill(o, 1); return 1; }
void VectNormalized(const double *v, int32_t n, double *o) { (void)v; fill(o, n); }
void CalShadowVector(const double *a, const double *b, double *o, int32_t n) { (void)a; (void)b; fill(o, n); }
void axis_angle_to_rotmat(const double *r, double *R) { (void)r; fill(R, 9); }
void rotmat_to_axis_angle(const double *R, double *r) { (void)R; fill(r, 3); }
void AngleMult(const double *a, const double *b, double *o) { (void)a; (void)b; fill(o, 3); }
void relative_rotation(const double *a, const double *b, double *o) { (void)a; (void)b; fill(o, 9); }
void relative_Angle(const double *a, const double *b, double *o) { (void)a; (void)b; fill(o, 3); }
// clang-format on
#endif

int main(void) {
    printf("version %u\n", (unsigned)QZ_Version()); /* a direct call keeps the library linked */
    lib = dlopen("libQZMath.so.1", RTLD_NOW | RTLD_NOLOAD);
    if (!lib) {
        fprintf(stderr, "libQZMath.so.1 is not loaded\n");
        return 2;
    }
    /* Symmetric A and positive definite B, 7 by 7 (the 6-by-6 problem uses rows of 6). */
    double A[49], B[49], A6[36], B6[36], V[49], lam[7];
    for (int i = 0; i < 7; ++i)
        for (int j = 0; j < 7; ++j) {
            A[i * 7 + j] = 1.0 / (1.0 + i + j) + (i == j ? i : 0.0);
            B[i * 7 + j] = (i == j ? 4.0 : 0.0) + (i == j + 1 || j == i + 1 ? 1.0 : 0.0);
            if (i < 6 && j < 6) {
                A6[i * 6 + j] = A[i * 7 + j];
                B6[i * 6 + j] = B[i * 7 + j];
            }
        }
    printf("generalized_eig %d\n", OWN(generalized_eig)(1e-14, A6, B6, V, lam));
    show("  V", V, 36);
    show("  lambda", lam, 6);
    printf("generalized_eig7 %d\n", OWN(generalized_eig7)(1e-14, A, B, V, lam));
    show("  V", V, 49);
    show("  lambda", lam, 7);

    double L[49], M[49];
    printf("Cholesky7 %d\n", OWN(Cholesky7)(B, L, 7));
    show("  L", L, 49);
    memcpy(M, A, sizeof M);
    printf("eig7 %d\n", OWN(eig7)(M, V, 1e-14));
    show("  V", V, 49);
    printf("VMV %a\n", OWN(VMV)(lam, A, 7));

    /* The estimator moves its velocity estimate towards each measurement with ValueToTarget. */
    QZNEstState est;
    memset(&est, 0, sizeof est);
    const double vmax[2] = {50.0, 50.0}, vcur[2] = {40.0, 40.0};
    OWN(QZOnInitEst)(&est, 2, 4.0, vmax, vcur);
    double x[2], out[2], ref[2] = {1.0, -1.0};
    for (int k = 0; k < 40; ++k) {
        x[0] = 0.01 * k * k;
        x[1] = -0.02 * k;
        OWN(QZNEst_OnDT)(&est, k / 4, x, out, ref);
    }
    show("estimator", out, 2);
    show("  velEst", est.velEst, 2); /* where ValueToTarget's steps show */

    /* Rotation vectors compose through the matrix conversions. */
    const double r1[3] = {0.3, -0.2, 0.5}, r2[3] = {-0.1, 0.4, 0.2};
    double R1[9], R2[9], r[3], R[9];
    OWN(axis_angle_to_rotmat)(r1, R1);
    OWN(axis_angle_to_rotmat)(r2, R2);
    OWN(AngleMult)(r1, r2, r);
    show("AngleMult", r, 3);
    OWN(relative_Angle)(r1, r2, r);
    show("relative_Angle", r, 3);
    OWN(relative_rotation)(R1, R2, R);
    show("relative_rotation", R, 9);
    OWN(CalShadowVector)(r1, r2, r, 3);
    show("CalShadowVector", r, 3);

    /* Jacobian transforms and the pseudo-inverse. */
    double J[42], Jt[42], P[42];
    for (int i = 0; i < 42; ++i) J[i] = (i % 7 == i / 7 ? 2.0 : 0.0) + 0.1 * (i % 5);
    OWN(QZ_JACOB_TRAN_T67)(J, R1, Jt);
    show("QZ_JACOB_TRAN_T67", Jt, 42);
    printf("QZ_RightPsoInv67 %d\n", OWN(QZ_RightPsoInv67)(J, P));
    show("  P", P, 42);
    return 0;
}
