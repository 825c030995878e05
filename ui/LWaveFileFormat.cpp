#include "ui/LWaveFileFormat.h"

#include <algorithm>

#include "core/LAtomicFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "formats/LWaveFile.h"
#include "formats/codec/LCodec.h"
#include "formats/codec/LCodecStream.h"
#include "ui/LUiPrompts.h"
#include "ui/LWaveFormatChooseDlg.h"

bool LWaveFileFormat::TestSupportedRecord(const LWaveFormatRecord& record)
{
    const LWaveFormatRecord pcm = LWaveFormatRecord::PCM16(record.nSamplesPerSec, record.nChannels);
    return LCodecStream::Open(nullptr, pcm, record, LCodecStream::kOpenQuery) ||
           LCodecStream::Open(nullptr, pcm, record, LCodecStream::kOpenQuery | LCodecStream::kOpenNonRealtime);
}

std::vector<uint8_t> LWaveFileFormat::DefaultBuffer()
{
    // GSM 6.10: 8000 Hz mono, 65-byte blocks of 320 samples.
    return BufferOf(LWaveFormatRecord::Make(0x31, 1, 8000, 1625, 65, 0, {0x40, 0x01}));
}

std::vector<uint8_t> LWaveFileFormat::ReadRemembered()
{
    std::vector<uint8_t> v(kBufferBytes, 0);
    LFile file;
    const std::string szPath = LSettings::DataFilePath(kFileName);
    if (szPath.empty() || !file.Open(szPath, LFile::ReadExisting) ||
        file.Read(v.data(), kBufferBytes) < static_cast<int64_t>(kBufferBytes))
        return DefaultBuffer();
    return v;
}

bool LWaveFileFormat::WriteRemembered(const std::vector<uint8_t>& vBuffer, std::string* pszError)
{
    std::vector<uint8_t> v = vBuffer;
    v.resize(kBufferBytes, 0);
    if (!LAtomicFile::Write(RememberedPath(), v, pszError, LAtomicFile::MakeFolder)) {
        LTRACE("LWaveFileFormat::WriteRemembered cannot write %s", RememberedPath().c_str());
        return false;
    }
    return true;
}

std::string LWaveFileFormat::RememberedPath()
{
    return LSettings::DataFilePath(kFileName);
}

bool LWaveFileFormat::RecordOf(const std::vector<uint8_t>& vBuffer, LWaveFormatRecord& record)
{
    if (vBuffer.size() < LWaveFormatRecord::kFixedBytes)
        return false;
    const size_t nSize = std::min(vBuffer.size(), LWaveFormatRecord::kFixedBytes + (vBuffer[16] | (vBuffer[17] << 8)));
    return record.Decode(vBuffer.data(), nSize);
}

std::vector<uint8_t> LWaveFileFormat::BufferOf(const LWaveFormatRecord& record)
{
    std::vector<uint8_t> v = record.vBytes;
    v.resize(kBufferBytes, 0);
    return v;
}

std::vector<LWaveFormatRecord> LWaveFileFormat::EncodableRecords(uint8_t nChans)
{
    std::vector<LWaveFormatRecord> v;
    for (const LCodec* pCodec : LCodec::All()) {
        std::vector<LWaveFormatRecord> vOwn;
        bool bStereo = false;
        for (const LWaveFormatRecord& r : pCodec->ListRecords()) {
            if (!TestSupportedRecord(r))
                continue;
            bStereo = bStereo || r.nChannels == 2;
            if (nChans == 0 || r.nChannels == nChans)
                vOwn.push_back(r);
        }
        // A codec of mono only (GSM) still serves a stereo sound: saving makes it one channel.
        if (nChans == 2 && !bStereo)
            for (const LWaveFormatRecord& r : pCodec->ListRecords())
                if (r.nChannels == 1 && TestSupportedRecord(r))
                    vOwn.push_back(r);
        v.insert(v.end(), vOwn.begin(), vOwn.end());
    }
    return v;
}

QString LWaveFileFormat::Describe(const LWaveFormatRecord& record)
{
    const QString szChans = record.nChannels == 1   ? QString("Mono")
                            : record.nChannels == 2 ? QString("Stereo")
                                                    : QString("%1 channels").arg(record.nChannels);
    return QString("%1, %2 Hz, %3")
        .arg(QString::fromStdString(LWaveFile::DescribeEncoding(record)))
        .arg(record.nSamplesPerSec)
        .arg(szChans);
}

bool LWaveFileFormat::Choose(QWidget* pParent, std::vector<uint8_t>& vBuffer, uint8_t nChans, const QString& szTitle)
{
    LWaveFormatRecord current;
    const bool bHaveCurrent = RecordOf(vBuffer, current);
    while (true) {
        LWaveFormatChooseDlg dlg(pParent, szTitle, EncodableRecords(nChans), bHaveCurrent ? &current : nullptr, nChans);
        if (dlg.exec() != QDialog::Accepted)
            return false;
        current = dlg.GetChoice();
        if (TestSupportedRecord(current)) {
            vBuffer = BufferOf(current);
            return true;
        }
        LUiPrompts::Get().Inform(pParent, "Format Not Available", kNotAvailable, LUiPrompts::IconError);
    }
}
