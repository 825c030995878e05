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
    void Forward(std::complex<double>* pData) const { Transform(pData, false); }
    void Inverse(std::complex<double>* pData) const { Transform(pData, true); }

private:
    void Transform(std::complex<double>* pData, bool bInverse) const;

    int32_t nSize;
    std::vector<std::complex<double>> vTwiddle; // e^(-2 pi i k / n), k < n / 2
    std::vector<int32_t> vReverse;
};
