// Shared pieces of the fuzz targets: decoding the fuzz input into arguments, and guard regions
// that catch a write outside what a function may write.
//
// Decoding. The input is read front to back; once it runs out every read gives zero, so a
// target's operation loop ends by testing Input::Done(). Doubles come as raw bit patterns (any
// NaN payload, infinities, subnormals), as values from a table of thresholds the library tests
// against, or as moderate values on a coarse grid, so that trackers and filters also reach their
// ordinary late behaviour. Counts are mostly small (including 0 and negative) and sometimes
// huge or extreme.
//
// Guards. Every record and output array lives between canary bytes, checked after each call;
// under AddressSanitizer the canaries are also poisoned, so a stray write is reported where it
// happens. Output arrays are pre-filled with a sentinel so that a slot the function may not
// write (beyond the axes in use, beyond a returned root count, or any slot after a refusal) is
// seen to change. Input arrays are handed over with exactly the elements the function may read:
// the rest is poisoned, so an over-read is a report too.
#ifndef QZ_FUZZ_SUPPORT_H
#define QZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QZ_FUZZ_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define QZ_FUZZ_ASAN 1
#endif
#ifdef QZ_FUZZ_ASAN
#include <sanitizer/asan_interface.h>
#define QZ_POISON(p, n) ASAN_POISON_MEMORY_REGION((p), (n))
#define QZ_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION((p), (n))
#else
#define QZ_POISON(p, n) ((void)(p), (void)(n))
#define QZ_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace qzfuzz {

// Reports a finding and stops: libFuzzer records the input that led here.
[[noreturn]] inline void Fail(const char *what, const char *where) {
    std::fprintf(stderr, "\n*** QZMath fuzz finding: %s in %s\n", what, where);
    std::abort();
}

#define QZ_FUZZ_CHECK(cond, where)                                  \
    do {                                                            \
        if (!(cond)) ::qzfuzz::Fail("check failed: " #cond, where); \
    } while (0)

inline std::uint64_t BitsOf(double x) {
    std::uint64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

inline double FromBits(std::uint64_t b) {
    double x;
    std::memcpy(&x, &b, sizeof x);
    return x;
}

class Input {
  public:
    Input(const std::uint8_t *data, std::size_t size) : p_(data), n_(size) {}

    bool Done() const { return n_ == 0; }

    std::uint8_t Byte() {
        if (n_ == 0) return 0;
        --n_;
        return *p_++;
    }

    std::uint64_t Bytes(int k) {
        std::uint64_t v = 0;
        for (int i = 0; i < k; ++i) v = (v << 8) | Byte();
        return v;
    }

    // Any double: raw bits a quarter of the time, a threshold from the table a quarter, and a
    // moderate value (a 16-bit integer times 2^-10, 2^-5, 1 or 2^5) otherwise.
    double Double() {
        const std::uint8_t tag = Byte();
        if (tag < 64) return FromBits(Bytes(8));
        if (tag < 128) return Special(Byte());
        static constexpr double kScale[4] = {1.0 / 1024.0, 1.0 / 32.0, 1.0, 32.0};
        const auto v = static_cast<std::int16_t>(Bytes(2));
        return static_cast<double>(v) * kScale[tag & 3];
    }

    // A positive moderate value in [lo, hi], for parameters that must be sensible for a run to
    // reach late behaviour (cycle times, limits); the raw form still comes through Double().
    double Within(double lo, double hi) {
        const double u = static_cast<double>(Bytes(2)) / 65535.0;
        return lo + (hi - lo) * u;
    }

    // A count: mostly -2..9, sometimes a boundary of the record sizes or of int32_t, sometimes
    // any 32-bit value.
    std::int32_t Count() {
        const std::uint8_t tag = Byte();
        if (tag < 192) return static_cast<std::int32_t>(tag % 12) - 2;
        if (tag < 232) {
            static constexpr std::int32_t kTable[] = {
                0,  1,  7,    8,         9,         99,    100,  101,  1000, 1001,
                -1, -8, -100, INT32_MAX, INT32_MIN, 65536, 9992, 9993, 9994, -9993};
            return kTable[tag % (sizeof kTable / sizeof kTable[0])];
        }
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(Bytes(4)));
    }

    std::int32_t Int32() { return static_cast<std::int32_t>(static_cast<std::uint32_t>(Bytes(4))); }

  private:
    static double Special(std::uint8_t i) {
        const double inf = std::numeric_limits<double>::infinity();
        const double nan = std::numeric_limits<double>::quiet_NaN();
        static const double kTable[] = {0.0,
                                        -0.0,
                                        1.0,
                                        -1.0,
                                        0.5,
                                        -0.5,
                                        2.0,
                                        3.0,
                                        nan,
                                        -nan,
                                        inf,
                                        -inf,
                                        std::numeric_limits<double>::denorm_min(),
                                        -std::numeric_limits<double>::denorm_min(),
                                        std::numeric_limits<double>::min(),
                                        std::numeric_limits<double>::max(),
                                        -std::numeric_limits<double>::max(),
                                        std::numeric_limits<double>::epsilon(),
                                        1e-16,
                                        -1e-16,
                                        1.0000000000000002e-16,
                                        9.999999999999999e-17,
                                        1e-15,
                                        -1e-15,
                                        1.0000000000000002e-15,
                                        1e-8,
                                        1e-9,
                                        1e-5,
                                        0.1,
                                        0.15,
                                        0.85,
                                        0.97,
                                        0.9999999999,
                                        180.0,
                                        -180.0,
                                        360.0,
                                        -360.0,
                                        540.0,
                                        1e10,
                                        -1e10,
                                        1e12,
                                        1e7,
                                        1000.0,
                                        200.0,
                                        100.0,
                                        2147483648.0,
                                        -2147483648.0,
                                        2147483647.5,
                                        -2147483648.5,
                                        4503599627370496.0,
                                        72057594037927936.0,
                                        72057594037927928.0,
                                        4611686018427387904.0,
                                        4611686018427388928.0,
                                        9.223372036854775807e18,
                                        1e300,
                                        -1e300,
                                        1e-300,
                                        1.5707963267948966,
                                        3.141592653589793,
                                        6.283185307179586,
                                        7.0,
                                        8.5,
                                        0.001};
        return kTable[i % (sizeof kTable / sizeof kTable[0])];
    }

    const std::uint8_t *p_;
    std::size_t n_;
};

constexpr std::size_t kGuardBytes = 64;
constexpr unsigned char kCanary = 0xA5;
constexpr std::uint64_t kSentinelBits =
    0x7FF4DEADBEEF0A5Aull;  // a signalling NaN no function forms

// The harness's own bookkeeping is kept out of the coverage feedback, which should describe the
// library; it also runs on every call, so it is written as a few word compares.
#if defined(__clang__)
#define QZ_FUZZ_NO_COVERAGE __attribute__((no_sanitize("coverage")))
#else
#define QZ_FUZZ_NO_COVERAGE
#endif

QZ_FUZZ_NO_COVERAGE inline bool CanariesIntact(const unsigned char *g) {
    std::uint64_t diff = 0;
    for (std::size_t i = 0; i < kGuardBytes; i += 8) {
        std::uint64_t w;
        std::memcpy(&w, g + i, 8);
        diff |= w ^ 0xA5A5A5A5A5A5A5A5ull;
    }
    return diff == 0;
}

// A record of type T between two canaries. The record is zeroed first, as a caller zeroes a new
// record before its first use.
template <class T>
class Guarded {
  public:
    Guarded() {
        std::memset(pre_, kCanary, sizeof pre_);
        std::memset(post_, kCanary, sizeof post_);
        std::memset(static_cast<void *>(&obj_), 0, sizeof obj_);
        QZ_POISON(pre_, sizeof pre_);
        QZ_POISON(post_, sizeof post_);
    }
    ~Guarded() {
        QZ_UNPOISON(pre_, sizeof pre_);
        QZ_UNPOISON(post_, sizeof post_);
    }
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;

    T *get() { return &obj_; }
    T *operator->() { return &obj_; }

    QZ_FUZZ_NO_COVERAGE void Check(const char *where) {
        QZ_UNPOISON(pre_, sizeof pre_);
        QZ_UNPOISON(post_, sizeof post_);
        if (!CanariesIntact(pre_)) Fail("write before the record", where);
        if (!CanariesIntact(post_)) Fail("write after the record", where);
        QZ_POISON(pre_, sizeof pre_);
        QZ_POISON(post_, sizeof post_);
    }

  private:
    alignas(64) unsigned char pre_[kGuardBytes];
    T obj_;
    alignas(8) unsigned char post_[kGuardBytes];
};

// A snapshot of a record, to show that a call left it untouched; taken only when `active`,
// since the large records make copying on every step costly.
template <class T>
class Snapshot {
  public:
    explicit Snapshot(const T *p, bool active = true) : p_(active ? p : nullptr) {
        if (p_) std::memcpy(copy_, static_cast<const void *>(p), sizeof(T));
    }
    void ExpectSame(const char *where) const {
        if (p_ && std::memcmp(copy_, static_cast<const void *>(p_), sizeof(T)) != 0) {
            Fail("record changed", where);
        }
    }

  private:
    const T *p_;
    unsigned char copy_[sizeof(T)];
};

// N output slots of type T between canaries. Arm() fills them with the sentinel; Check(k)
// verifies the canaries and that slots k.. still hold it.
template <class T, int N>
class Out {
  public:
    Out() {
        std::memset(pre_, kCanary, sizeof pre_);
        std::memset(post_, kCanary, sizeof post_);
        QZ_POISON(pre_, sizeof pre_);
        QZ_POISON(post_, sizeof post_);
        Arm();
    }
    ~Out() {
        QZ_UNPOISON(pre_, sizeof pre_);
        QZ_UNPOISON(post_, sizeof post_);
    }
    Out(const Out &) = delete;
    Out &operator=(const Out &) = delete;

    T *get() { return v_; }
    T &operator[](int i) { return v_[i]; }

    QZ_FUZZ_NO_COVERAGE void Arm() {
        for (int i = 0; i < N; ++i) std::memcpy(&v_[i], &kSentinelBits, sizeof(T));
    }
    bool Untouched(int i) const { return std::memcmp(&v_[i], &kSentinelBits, sizeof(T)) == 0; }

    QZ_FUZZ_NO_COVERAGE void Check(int mayWrite, const char *where) {
        QZ_UNPOISON(pre_, sizeof pre_);
        QZ_UNPOISON(post_, sizeof post_);
        if (!CanariesIntact(pre_)) Fail("write before the output", where);
        if (!CanariesIntact(post_)) Fail("write after the output", where);
        QZ_POISON(pre_, sizeof pre_);
        QZ_POISON(post_, sizeof post_);
        for (int i = mayWrite < 0 ? 0 : mayWrite; i < N; ++i) {
            if (!Untouched(i)) Fail("output slot written beyond what the call may write", where);
        }
    }

  private:
    alignas(64) unsigned char pre_[kGuardBytes];
    T v_[N];
    alignas(8) unsigned char post_[kGuardBytes];
};

// Up to N input doubles, handed over so that exactly `count` of them are readable: the slots
// before the returned pointer are poisoned while the call runs, and so is the guard after it.
// The values are also checked to be unchanged after the call (inputs are const).
template <int N>
class In {
  public:
    In() {
        std::memset(post_, kCanary, sizeof post_);
        QZ_POISON(post_, sizeof post_);
    }
    ~In() {
        QZ_UNPOISON(v_, sizeof v_);
        QZ_UNPOISON(post_, sizeof post_);
    }
    In(const In &) = delete;
    In &operator=(const In &) = delete;

    void Fill(Input &in) {
        QZ_UNPOISON(v_, sizeof v_);
        for (int i = 0; i < N; ++i) v_[i] = in.Double();
    }
    double &operator[](int i) { return v_[i]; }

    // Pointer to the last `count` slots (count clamped to 0..N), the others poisoned.
    const double *Exact(int count) {
        count_ = count < 0 ? 0 : (count > N ? N : count);
        handed_ = true;
        std::memcpy(copy_, v_, sizeof v_);
        QZ_POISON(v_, sizeof(double) * (N - count_));
        return v_ + (N - count_);
    }
    // As Exact, for a function that clamps the array in place (a documented input-output).
    double *ExactMutable(int count) { return const_cast<double *>(Exact(count)); }

    QZ_FUZZ_NO_COVERAGE void Release(const char *where, bool mayChange = false) {
        if (!handed_) return;
        handed_ = false;
        QZ_UNPOISON(v_, sizeof v_);
        QZ_UNPOISON(post_, sizeof post_);
        if (!CanariesIntact(post_)) Fail("write after an input array", where);
        QZ_POISON(post_, sizeof post_);
        if (!mayChange && std::memcmp(copy_, v_, sizeof v_) != 0)
            Fail("input array changed", where);
        if (mayChange && std::memcmp(copy_, v_, sizeof(double) * (N - count_)) != 0) {
            Fail("input slot beyond the count changed", where);
        }
    }

  private:
    alignas(64) double v_[N];
    alignas(8) unsigned char post_[kGuardBytes];
    double copy_[N];
    int count_ = 0;
    bool handed_ = false;
};

}  // namespace qzfuzz

#endif
