// Helpers shared by the vector, matrix, inverse and LUP tests: random entries with signed zeros,
// array comparison to the bit and row-pointer matrices.
#ifndef QZ_TEST_LINALG_SUPPORT_H
#define QZ_TEST_LINALG_SUPPORT_H

#include <vector>

#include "QZMatrix.h"
#include "test_util.h"

namespace qztest {

constexpr double kSentinel = -777.25;

// count random entries in [-4, 4], with zeros about a third of them exact zeros of either sign
// (so that the start of a sum shows in the sign of a zero result), then one sentinel past the end.
inline std::vector<double> RandomEntries(std::mt19937_64 &rng, int count, bool zeros = true) {
    std::vector<double> v(count + 1, kSentinel);
    for (int i = 0; i < count; ++i) {
        const double r = zeros ? Uniform(rng, 0.0, 1.0) : 1.0;
        v[i] = r < 0.15 ? 0.0 : r < 0.3 ? -0.0 : Uniform(rng, -4.0, 4.0);
    }
    return v;
}

inline ::testing::AssertionResult SameArray(const double *a, const double *b, int count) {
    for (int i = 0; i < count; ++i) {
        if (auto r = SameBits(a[i], b[i]); !r) return r << " at element " << i;
    }
    return ::testing::AssertionSuccess();
}

// A row-pointer matrix whose rows are separate heap blocks, so that a read past a row's end shows
// under the address sanitizer and exchanging pointers instead of contents shows in ptr.
struct Rows {
    std::vector<std::vector<double>> r;
    std::vector<double *> ptr;
    Rows(int m, int n, double fill = 0.0) : r(m, std::vector<double>(n, fill)), ptr(m) { Point(); }
    Rows(const Rows &o) : r(o.r), ptr(o.r.size()) { Point(); }
    void Point() {
        for (size_t i = 0; i < r.size(); ++i) ptr[i] = r[i].data();
    }
    double *const *p() const { return ptr.data(); }
};

using InvFn = uint8_t (*)(const double *, double *);
inline const InvFn kInv[9] = {nullptr,       nullptr,       QZ_MatrixInv2,
                              QZ_MatrixInv3, QZ_MatrixInv4, QZ_MatrixInv5,
                              QZ_MatrixInv6, QZ_MatrixInv7, QZ_MatrixInv8};

}  // namespace qztest

#endif
