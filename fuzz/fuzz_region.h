// Guarded arrays whose readable and writable part is not a plain prefix: a block of a larger
// row-major storage (a leading n-by-n block at some row stride, a lower triangle, the rotation
// block of a 4x4 transform), and row-pointer matrices whose rows live apart.
//
// A Region holds S elements between canaries. Open() makes exactly the chosen elements
// addressable and poisons every other one (and the canaries) while a call runs, so reading or
// writing anything else is reported where it happens; Close() checks the canaries and that the
// elements the call may not change still hold what they held before. Elements outside the
// opened part hold the sentinel, so a stray write also shows without AddressSanitizer.
#ifndef QZ_FUZZ_REGION_H
#define QZ_FUZZ_REGION_H

#include <cstdint>
#include <cstring>

#include "fuzz_support.h"

namespace qzfuzz {

template <class T, int S>
class Region {
    static_assert(sizeof(T) <= 8, "one sentinel per element");

  public:
    Region() {
        std::memset(pre_, kCanary, sizeof pre_);
        std::memset(post_, kCanary, sizeof post_);
        for (int i = 0; i < S; ++i) std::memcpy(&v_[i], &kSentinelBits, sizeof(T));
        std::memset(open_, 0, sizeof open_);
    }
    ~Region() { Unpoison(); }
    Region(const Region &) = delete;
    Region &operator=(const Region &) = delete;

    T *get() { return v_; }
    T &operator[](int i) { return v_[i]; }
    bool Untouched(int i) const { return std::memcmp(&v_[i], &kSentinelBits, sizeof(T)) == 0; }

    // Elements [i*stride + j] for i < rows and j < cols (j <= i only with lower) are opened;
    // rows or cols below 1 open nothing.
    QZ_FUZZ_NO_COVERAGE void Open(int rows, int cols, int stride, bool lower = false) {
        std::memset(open_, 0, sizeof open_);
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < cols && (!lower || j <= i); ++j) open_[i * stride + j] = true;
        }
        Hand();
    }
    // The first count elements (none for count below 1).
    void Open(int count) { Open(count > 0 ? 1 : 0, count, 0); }

    // Checks after the call: the canaries, and that nothing outside the opened part changed
    // (nothing at all unless mayWrite). The region stays addressable until the next Open().
    QZ_FUZZ_NO_COVERAGE void Close(const char *where, bool mayWrite) {
        Unpoison();
        if (!CanariesIntact(pre_)) Fail("write before an array", where);
        if (!CanariesIntact(post_)) Fail("write after an array", where);
        for (int i = 0; i < S; ++i) {
            if ((!mayWrite || !open_[i]) && std::memcmp(&v_[i], &copy_[i], sizeof(T)) != 0) {
                Fail(mayWrite ? "element outside what the call may write changed" : "input changed",
                     where);
            }
        }
    }

  private:
    QZ_FUZZ_NO_COVERAGE void Hand() {
        std::memcpy(copy_, v_, sizeof v_);
        QZ_POISON(pre_, sizeof pre_);
        QZ_POISON(post_, sizeof post_);
        QZ_POISON(v_, sizeof v_);
        for (int i = 0; i < S; ++i) {
            if (open_[i]) QZ_UNPOISON(&v_[i], sizeof(T));
        }
    }
    void Unpoison() {
        QZ_UNPOISON(pre_, sizeof pre_);
        QZ_UNPOISON(v_, sizeof v_);
        QZ_UNPOISON(post_, sizeof post_);
    }

    alignas(64) unsigned char pre_[kGuardBytes];
    T v_[S];
    alignas(8) unsigned char post_[kGuardBytes];
    T copy_[S];
    bool open_[S];
};

// A row-pointer matrix of up to R rows of up to C elements, every row in its own guarded region,
// the pointer array in another.
template <int R, int C>
class RowMat {
  public:
    RowMat() {
        for (int i = 0; i < R; ++i) ptr_[i] = row_[i].get();
    }
    double *const *get() { return ptr_.get(); }
    double &at(int i, int j) { return row_[i][j]; }

    void Fill(Input &in, int rows, int cols) {
        for (int i = 0; i < rows && i < R; ++i)
            for (int j = 0; j < cols && j < C; ++j) row_[i][j] = in.Double();
    }
    // Makes `rows` row pointers readable (none below 1) and cols elements of each of those rows
    // accessible; everything else is poisoned.
    void Open(int rows, int cols) {
        ptr_.Open(rows);
        for (int i = 0; i < R; ++i) row_[i].Open(i < rows ? cols : 0);
    }
    void Close(const char *where, bool mayWrite) {
        ptr_.Close(where, false);
        for (int i = 0; i < R; ++i) row_[i].Close(where, mayWrite);
    }

  private:
    Region<double *, R> ptr_;
    Region<double, C> row_[R];
};

}  // namespace qzfuzz

#endif
