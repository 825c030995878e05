#include "dsp/LFFT.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

LFFT::LFFT(int32_t n) : nSize(n), vForward(2 * static_cast<size_t>(n)), vInverse(2 * static_cast<size_t>(n)), vReverse(n)
{
    for (int32_t h = 1; h < n; h *= 2)
        for (int32_t k = 0; k < h; ++k) {
            const double fAngle = M_PI * k / h;
            const size_t i = 2 * static_cast<size_t>(h + k);
            vForward[i] = vInverse[i] = std::cos(fAngle);
            vForward[i + 1] = -std::sin(fAngle);
            vInverse[i + 1] = std::sin(fAngle);
        }
    int32_t nBits = 0;
    while ((1 << nBits) < n)
        ++nBits;
    for (int32_t i = 0; i < n; ++i) {
        int32_t r = 0;
        for (int32_t b = 0; b < nBits; ++b)
            r |= ((i >> b) & 1) << (nBits - 1 - b);
        vReverse[i] = r;
    }
}

void LFFT::Forward(std::complex<double>* pData) const
{
    Permute(pData);
    TimeStages(pData, vForward.data());
}

void LFFT::Inverse(std::complex<double>* pData) const
{
    Permute(pData);
    TimeStages(pData, vInverse.data());
}

void LFFT::ForwardScrambled(std::complex<double>* pData) const
{
    FrequencyStages(pData, vForward.data());
}

void LFFT::InverseScrambled(std::complex<double>* pData) const
{
    TimeStages(pData, vInverse.data());
}

void LFFT::Permute(std::complex<double>* pData) const
{
    for (int32_t i = 0; i < nSize; ++i)
        if (i < vReverse[i])
            std::swap(pData[i], pData[vReverse[i]]);
}

namespace {

// Complex numbers are laid out as re/im pairs; plain doubles let the compiler keep the
// butterflies in registers instead of going through the library's checked product.
// Decimation in time: the twiddle is applied before the butterfly.
inline void TimeButterfly(double* a, double* b, const double* w)
{
    const double tr = w[0] * b[0] - w[1] * b[1];
    const double ti = w[0] * b[1] + w[1] * b[0];
    const double ur = a[0], ui = a[1];
    a[0] = ur + tr;
    a[1] = ui + ti;
    b[0] = ur - tr;
    b[1] = ui - ti;
}

// Decimation in frequency: the twiddle is applied after.
inline void FrequencyButterfly(double* a, double* b, const double* w)
{
    const double dr = a[0] - b[0], di = a[1] - b[1];
    a[0] += b[0];
    a[1] += b[1];
    b[0] = w[0] * dr - w[1] * di;
    b[1] = w[0] * di + w[1] * dr;
}

// Runs one stage: every pair (a, b) half a width apart, with the width's twiddle w.
template <class Butterfly>
void Stage(double* p, size_t n2, size_t h2, const double* w, Butterfly butterfly)
{
    for (size_t nStart = 0; nStart < n2; nStart += 2 * h2) {
        double* a = p + nStart;
        double* b = a + h2;
        for (size_t k = 0; k < h2; k += 2)
            butterfly(a + k, b + k, w + k);
    }
}

// Two stages in one pass over the data: the wide one of half-width h2 and the narrow one of
// half-width h2 / 2, applied to each group of four entries a quarter of a width apart in the
// order bWideFirst says. Every entry goes through the very operations of the two stages run one
// after the other, so the result is the same to the last bit; the data are walked half as often.
template <size_t kStep = 2, class Butterfly>
[[gnu::always_inline]] inline void StagePair(double* p, size_t n2, size_t h2, const double* wWide,
                                             const double* wNarrow, bool bWideFirst, Butterfly butterfly)
{
    const size_t q2 = h2 / 2;
    for (size_t nStart = 0; nStart < n2; nStart += 2 * h2) {
        double* x0 = p + nStart;
        double* x1 = x0 + q2;
        double* x2 = x0 + h2;
        double* x3 = x2 + q2;
        for (size_t k = 0; k < q2; k += kStep) {
            if (bWideFirst) {
                butterfly(x0 + k, x2 + k, wWide + k);
                butterfly(x1 + k, x3 + k, wWide + q2 + k);
                butterfly(x0 + k, x1 + k, wNarrow + k);
                butterfly(x2 + k, x3 + k, wNarrow + k);
            } else {
                butterfly(x0 + k, x1 + k, wNarrow + k);
                butterfly(x2 + k, x3 + k, wNarrow + k);
                butterfly(x0 + k, x2 + k, wWide + k);
                butterfly(x1 + k, x3 + k, wWide + q2 + k);
            }
        }
    }
}

#if defined(__x86_64__) || defined(__i386__)
#define LFFT_HAVE_AVX 1
// The same pairs of stages on processors with AVX, two entries per register. The products and
// sums are the scalar butterflies' own, operand for operand (no fused multiply-add), so the
// result is again the same to the last bit. Needs a narrow half-width of two entries or more.
__attribute__((target("avx"))) inline __m256d MulAvx(__m256d w, __m256d b)
{
    const __m256d x = _mm256_mul_pd(b, _mm256_movedup_pd(w));
    const __m256d y = _mm256_mul_pd(_mm256_permute_pd(b, 0x5), _mm256_permute_pd(w, 0xF));
    return _mm256_addsub_pd(x, y);
}

__attribute__((target("avx"))) inline void TimeAvx(double* a, double* b, const double* w)
{
    const __m256d t = MulAvx(_mm256_loadu_pd(w), _mm256_loadu_pd(b));
    const __m256d u = _mm256_loadu_pd(a);
    _mm256_storeu_pd(a, _mm256_add_pd(u, t));
    _mm256_storeu_pd(b, _mm256_sub_pd(u, t));
}

__attribute__((target("avx"))) inline void FrequencyAvx(double* a, double* b, const double* w)
{
    const __m256d va = _mm256_loadu_pd(a), vb = _mm256_loadu_pd(b);
    _mm256_storeu_pd(a, _mm256_add_pd(va, vb));
    _mm256_storeu_pd(b, MulAvx(_mm256_loadu_pd(w), _mm256_sub_pd(va, vb)));
}

// The pair of stages above, four doubles (two entries) per butterfly call.
__attribute__((target("avx"))) void TimePairAvx(double* p, size_t n2, size_t h2, const double* wWide,
                                                const double* wNarrow)
{
    StagePair<4>(p, n2, h2, wWide, wNarrow, false, TimeAvx);
}

__attribute__((target("avx"))) void FrequencyPairAvx(double* p, size_t n2, size_t h2, const double* wWide,
                                                     const double* wNarrow)
{
    StagePair<4>(p, n2, h2, wWide, wNarrow, true, FrequencyAvx);
}

__attribute__((target("avx"))) void MultiplyAvx(double* p, const double* pBy, size_t n2)
{
    for (size_t k = 0; k < n2; k += 4)
        _mm256_storeu_pd(p + k, MulAvx(_mm256_loadu_pd(pBy + k), _mm256_loadu_pd(p + k)));
}

bool HaveAvx()
{
    static const bool bAvx = __builtin_cpu_supports("avx");
    return bAvx;
}
#endif

} // namespace

// Decimation in time: bit-reversed input, natural output, narrow stages first.
void LFFT::TimeStages(std::complex<double>* pData, const double* pTwiddles) const
{
    double* p = reinterpret_cast<double*>(pData);
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    size_t h2 = 2; // the half-width in doubles
    if (nSize >= 2 && (__builtin_ctz(static_cast<unsigned>(nSize)) & 1) != 0) {
        Stage(p, n2, h2, pTwiddles + h2, TimeButterfly);
        h2 *= 2;
    }
    for (; 2 * h2 < n2; h2 *= 4) {
#ifdef LFFT_HAVE_AVX
        if (h2 >= 4 && HaveAvx()) {
            TimePairAvx(p, n2, 2 * h2, pTwiddles + 2 * h2, pTwiddles + h2);
            continue;
        }
#endif
        StagePair(p, n2, 2 * h2, pTwiddles + 2 * h2, pTwiddles + h2, false, TimeButterfly);
    }
}

// Decimation in frequency: natural input, bit-reversed output, wide stages first.
void LFFT::FrequencyStages(std::complex<double>* pData, const double* pTwiddles) const
{
    double* p = reinterpret_cast<double*>(pData);
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    size_t h2 = n2 / 2;
    for (; h2 >= 4; h2 /= 4) {
#ifdef LFFT_HAVE_AVX
        if (h2 >= 8 && HaveAvx()) {
            FrequencyPairAvx(p, n2, h2, pTwiddles + h2, pTwiddles + h2 / 2);
            continue;
        }
#endif
        StagePair(p, n2, h2, pTwiddles + h2, pTwiddles + h2 / 2, true, FrequencyButterfly);
    }
    if (h2 == 2)
        Stage(p, n2, h2, pTwiddles + h2, FrequencyButterfly);
}

void LFFT::Multiply(std::complex<double>* pData, const std::complex<double>* pBy, int32_t n)
{
    double* p = reinterpret_cast<double*>(pData);
    const double* q = reinterpret_cast<const double*>(pBy);
    size_t k = 0;
    const size_t n2 = 2 * static_cast<size_t>(std::max(n, 0));
#ifdef LFFT_HAVE_AVX
    if (HaveAvx()) {
        k = n2 & ~static_cast<size_t>(3);
        MultiplyAvx(p, q, k);
    }
#endif
    for (; k < n2; k += 2) {
        const double ar = p[k], ai = p[k + 1], br = q[k], bi = q[k + 1];
        p[k] = ar * br - ai * bi;
        p[k + 1] = ar * bi + ai * br;
    }
}
