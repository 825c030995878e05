#include "dsp/LSRCEq.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "core/LTrace.h"
#include "dsp/LFFT.h"

namespace {

using Complex = std::complex<double>;

// Transform size: four times a filter long enough for about 10 Hz of resolution at the file's
// rate, so that each transform yields three quarters of its length in new frames.
int32_t TransformSize(int32_t nRate)
{
    int32_t n = 8192;
    while (n < (1 << 16) && n * 5 < nRate)
        n *= 2;
    return 2 * n;
}

// Rounds to nearest, ties to even, as lrint does in the default rounding mode; the conversion
// instruction does it inline where the library call would cost more than the filter per sample.
inline int32_t ToSample(double f)
{
    const double fClamped = std::clamp(f, -2147483648.0, 2147483647.0);
#if defined(__SSE2__)
    return _mm_cvtsd_si32(_mm_set_sd(fClamped));
#else
    return static_cast<int32_t>(std::lrint(fClamped));
#endif
}

} // namespace

// Overlap-save fast convolution: both channels ride in one complex transform, the left in the
// real part and the right in the imaginary part, since the filter is real.
struct LSRCEq::Impl
{
    int32_t nSize = 0;  // transform size
    int32_t nDelay = 0; // the filter's delay, half its length
    int32_t nHop = 0;   // new frames per transform
    LFFT fft{2};
    std::vector<Complex> vFilter; // transform of the filter, divided by the size
    std::vector<Complex> vInput;  // the last nSize input frames
    std::vector<Complex> vWork;
    std::vector<int32_t> vRead;
    int32_t nOutPos = 0;
    int64_t sPosition = 0;
    bool bRestart = true;

    void Design(const LPointList& points, int32_t nRate);
    void Restart(LSoundSourceBase* pIn, uint8_t nChans);
    void Append(LSoundSourceBase* pIn, uint8_t nChans, int32_t nAt, int32_t nFrames);
    void Filter();
};

void LSRCEq::Impl::Design(const LPointList& points, int32_t nRate)
{
    nSize = TransformSize(nRate);
    nDelay = nSize / 8;
    nHop = nSize - 2 * nDelay;
    fft = LFFT(nSize);
    // The curve sampled on every bin is the spectrum of a zero-phase filter ...
    std::vector<Complex> vSpectrum(nSize);
    for (int32_t k = 0; k <= nSize / 2; ++k) {
        const double fGain = std::pow(10.0, CurveDb(points, static_cast<double>(k) * nRate / nSize) / 20.0);
        vSpectrum[k] = fGain;
        if (k > 0 && k < nSize / 2)
            vSpectrum[nSize - k] = fGain;
    }
    fft.Inverse(vSpectrum.data());
    // ... whose impulse, cut to nSize / 4 + 1 taps with a Hann window and delayed to be causal,
    // is what the blocks are convolved with.
    vFilter.assign(nSize, Complex());
    for (int32_t n = -nDelay; n <= nDelay; ++n) {
        const double fWindow = 0.5 + 0.5 * std::cos(M_PI * n / (nDelay + 1));
        vFilter[n + nDelay] = vSpectrum[(n + nSize) % nSize].real() / nSize * fWindow;
    }
    fft.ForwardScrambled(vFilter.data());
    for (Complex& c : vFilter)
        c /= nSize;
}

// Frames of the input from position - delay on: what comes before the start is silence.
void LSRCEq::Impl::Restart(LSoundSourceBase* pIn, uint8_t nChans)
{
    const int64_t sFirst = sPosition - nDelay;
    const int32_t nZeros = static_cast<int32_t>(std::clamp<int64_t>(-sFirst, 0, nSize));
    const int64_t sFrom = std::max<int64_t>(0, sFirst + nZeros);
    if (sFrom != pIn->GetPosition())
        pIn->SetPosition(static_cast<int32_t>(std::min<int64_t>(sFrom, INT32_MAX)));
    std::fill(vInput.begin(), vInput.end(), Complex());
    Append(pIn, nChans, nZeros, nSize - nZeros);
    Filter();
    bRestart = false;
}

void LSRCEq::Impl::Append(LSoundSourceBase* pIn, uint8_t nChans, int32_t nAt, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    pIn->Read(vRead.data(), nFrames);
    for (int32_t i = 0; i < nFrames; ++i) {
        const int32_t* p = &vRead[static_cast<size_t>(i) * nChans];
        vInput[nAt + i] = Complex(p[0], nChans == 2 ? p[1] : 0);
    }
}

void LSRCEq::Impl::Filter()
{
    vWork = vInput;
    fft.ForwardScrambled(vWork.data());
    LFFT::Multiply(vWork.data(), vFilter.data(), nSize);
    fft.InverseScrambled(vWork.data());
    nOutPos = 0;
}

LSRCEq::LSRCEq(LSoundSourceBase* pIn, const LPointList& points)
    : LSoundSourceBase(pIn->GetSampleRate(), pIn->GetChannels(), pIn->GetMaxAmplitude()), pInput(pIn),
      pImpl(std::make_unique<Impl>())
{
    if (pIn->IsError())
        SetError();
    if (nChans > 2) {
        LTRACE("LSRCEq::LSRCEq %s", kMsgTooManyChannels);
        SetError();
    }
    if (!points.Validate())
        SetError();
    pImpl->sPosition = pIn->GetPosition();
    if (IsError())
        return;
    pImpl->Design(points, nSampleRate);
    pImpl->vInput.assign(pImpl->nSize, Complex());
    pImpl->vRead.assign(static_cast<size_t>(pImpl->nSize) * nChans, 0);
    // Boosts raise the peak the output may reach.
    double fMaxGain = 1.0;
    for (int32_t i = 0; i < points.nPoints; ++i)
        fMaxGain = std::max(fMaxGain, std::pow(10.0, points.aPoints[i].y / 20.0));
    nMaxAmplitude = static_cast<int32_t>(std::min<double>(INT32_MAX, std::ceil(nMaxAmplitude * fMaxGain)));
}

LSRCEq::~LSRCEq() = default;

void LSRCEq::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    Impl& im = *pImpl;
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, nChans);
        im.sPosition += nFrames;
        return;
    }
    if (im.bRestart)
        im.Restart(pInput.Get(), nChans);
    while (nFrames > 0) {
        if (im.nOutPos == im.nHop) {
            // Slide the window on by one hop and convolve again.
            std::copy(im.vInput.begin() + im.nHop, im.vInput.end(), im.vInput.begin());
            im.Append(pInput.Get(), nChans, im.nSize - im.nHop, im.nHop);
            im.Filter();
        }
        const int32_t n = std::min(nFrames, im.nHop - im.nOutPos);
        // The valid part of the circular convolution starts at 2 x delay.
        const Complex* pOut = &im.vWork[2 * im.nDelay + im.nOutPos];
        for (int32_t i = 0; i < n; ++i) {
            pBuffer[i * nChans] = ToSample(pOut[i].real());
            if (nChans == 2)
                pBuffer[i * 2 + 1] = ToSample(pOut[i].imag());
        }
        im.nOutPos += n;
        im.sPosition += n;
        pBuffer += static_cast<size_t>(n) * nChans;
        nFrames -= n;
    }
}

int32_t LSRCEq::GetPosition()
{
    return static_cast<int32_t>(std::clamp<int64_t>(pImpl->sPosition, INT32_MIN, INT32_MAX));
}

void LSRCEq::SetPosition(int32_t sPosition)
{
    pImpl->sPosition = sPosition;
    pImpl->bRestart = true;
}

double LSRCEq::CurveDb(const LPointList& points, double fHz)
{
    const int32_t n = std::min(points.nPoints, POINTLISTMAX);
    if (n <= 0)
        return 0.0;
    const LPoint* p = points.aPoints;
    if (fHz <= p[0].x)
        return p[0].y;
    for (int32_t i = 1; i < n; ++i) {
        if (fHz <= p[i].x) {
            const double fLo = std::log(std::max(1, p[i - 1].x));
            const double fHi = std::log(std::max(1, p[i].x));
            const double t = fHi > fLo ? (std::log(fHz) - fLo) / (fHi - fLo) : 1.0;
            return p[i - 1].y + (p[i].y - p[i - 1].y) * std::clamp(t, 0.0, 1.0);
        }
    }
    return p[n - 1].y;
}
