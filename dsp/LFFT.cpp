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

// Complex numbers are laid out as re/im pairs; plain doubles let the compiler keep the
// butterflies in registers instead of going through the library's checked product.
// Decimation in time: bit-reversed input, natural output, twiddle applied before the butterfly.
void LFFT::TimeStages(std::complex<double>* pData, const double* pTwiddles) const
{
    double* p = reinterpret_cast<double*>(pData);
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    for (size_t h2 = 2; h2 < n2; h2 *= 2) { // h2: the half-width in doubles
        const double* w = pTwiddles + h2;
        for (size_t nStart = 0; nStart < n2; nStart += 2 * h2) {
            double* a = p + nStart;
            double* b = a + h2;
            for (size_t k = 0; k < h2; k += 2) {
                const double wr = w[k], wi = w[k + 1];
                const double xr = b[k], xi = b[k + 1];
                const double tr = wr * xr - wi * xi;
                const double ti = wr * xi + wi * xr;
                const double ur = a[k], ui = a[k + 1];
                a[k] = ur + tr;
                a[k + 1] = ui + ti;
                b[k] = ur - tr;
                b[k + 1] = ui - ti;
            }
        }
    }
}

// Decimation in frequency: natural input, bit-reversed output, twiddle applied after.
void LFFT::FrequencyStages(std::complex<double>* pData, const double* pTwiddles) const
{
    double* p = reinterpret_cast<double*>(pData);
    const size_t n2 = 2 * static_cast<size_t>(nSize);
    for (size_t h2 = n2 / 2; h2 >= 2; h2 /= 2) {
        const double* w = pTwiddles + h2;
        for (size_t nStart = 0; nStart < n2; nStart += 2 * h2) {
            double* a = p + nStart;
            double* b = a + h2;
            for (size_t k = 0; k < h2; k += 2) {
                const double ur = a[k], ui = a[k + 1];
                const double vr = b[k], vi = b[k + 1];
                const double dr = ur - vr, di = ui - vi;
                const double wr = w[k], wi = w[k + 1];
                a[k] = ur + vr;
                a[k + 1] = ui + vi;
                b[k] = wr * dr - wi * di;
                b[k + 1] = wr * di + wi * dr;
            }
        }
    }
}
