// In-place complex FFT of a power-of-two size, twiddles computed once per size.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

class LFFT
{
public:
    // nSize must be a power of two (at least 2).
    explicit LFFT(int32_t nSize);

    int32_t GetSize() const { return nSize; }
    // Forward transform (e^-i); the inverse is unscaled: divide by the size yourself.
    void Forward(std::complex<double>* pData) const;
    void Inverse(std::complex<double>* pData) const;

    // The same pair with the bins left in bit-reversed order: a convolution that only multiplies
    // bin by bin (with a filter transformed the same way) never needs them sorted.
    void ForwardScrambled(std::complex<double>* pData) const;
    void InverseScrambled(std::complex<double>* pData) const;

    // Multiplies n entries by the other n, entry by entry (a convolution's product of spectra).
    static void Multiply(std::complex<double>* pData, const std::complex<double>* pBy, int32_t n);

private:
    void Permute(std::complex<double>* pData) const;
    void TimeStages(std::complex<double>* pData, const double* pTwiddles) const;
    void FrequencyStages(std::complex<double>* pData, const double* pTwiddles) const;

    int32_t nSize;
    // The butterflies of half-width h read entries h..2h-1: e^(-+i pi k / h), k < h, as re/im
    // pairs, so every stage walks its twiddles contiguously.
    std::vector<double> vForward;
    std::vector<double> vInverse;
    std::vector<int32_t> vReverse;
};
