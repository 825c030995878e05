#include "dsp/LFFT.h"

#include <cmath>
#include <utility>

LFFT::LFFT(int32_t n) : nSize(n), vTwiddle(n / 2), vReverse(n)
{
    for (int32_t k = 0; k < n / 2; ++k)
        vTwiddle[k] = std::polar(1.0, -2.0 * M_PI * k / n);
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

void LFFT::Transform(std::complex<double>* p, bool bInverse) const
{
    for (int32_t i = 0; i < nSize; ++i)
        if (i < vReverse[i])
            std::swap(p[i], p[vReverse[i]]);
    for (int32_t nHalf = 1; nHalf < nSize; nHalf *= 2) {
        const int32_t nStride = nSize / (2 * nHalf);
        for (int32_t nStart = 0; nStart < nSize; nStart += 2 * nHalf) {
            for (int32_t k = 0; k < nHalf; ++k) {
                const std::complex<double> w = vTwiddle[k * nStride];
                const double wr = w.real(), wi = bInverse ? -w.imag() : w.imag();
                const std::complex<double> x = p[nStart + k + nHalf];
                // Written out: the library's complex product checks for infinities on every call.
                const std::complex<double> t(wr * x.real() - wi * x.imag(), wr * x.imag() + wi * x.real());
                p[nStart + k + nHalf] = p[nStart + k] - t;
                p[nStart + k] += t;
            }
        }
    }
}
