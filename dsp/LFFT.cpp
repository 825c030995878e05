#include "dsp/LFFT.h"

#include <cmath>
#include <utility>

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

} // namespace

// Decimation in time: bit-reversed input, natural output, twiddle applied before the butterfly.
void LFFT::TimeStages(std::complex<double>* pData, const double* pTwiddles) const
{
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    for (size_t h2 = 2; h2 < n2; h2 *= 2) // h2: the half-width in doubles
        Stage(reinterpret_cast<double*>(pData), n2, h2, pTwiddles + h2, [](double* a, double* b, const double* w) {
            const double tr = w[0] * b[0] - w[1] * b[1];
            const double ti = w[0] * b[1] + w[1] * b[0];
            const double ur = a[0], ui = a[1];
            a[0] = ur + tr;
            a[1] = ui + ti;
            b[0] = ur - tr;
            b[1] = ui - ti;
        });
}

// Decimation in frequency: natural input, bit-reversed output, twiddle applied after.
void LFFT::FrequencyStages(std::complex<double>* pData, const double* pTwiddles) const
{
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    for (size_t h2 = n2 / 2; h2 >= 2; h2 /= 2)
        Stage(reinterpret_cast<double*>(pData), n2, h2, pTwiddles + h2, [](double* a, double* b, const double* w) {
            const double dr = a[0] - b[0], di = a[1] - b[1];
            a[0] += b[0];
            a[1] += b[1];
            b[0] = w[0] * dr - w[1] * di;
            b[1] = w[0] * di + w[1] * dr;
        });
}
