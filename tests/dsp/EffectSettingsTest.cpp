#include <gtest/gtest.h>

#include "core/LSettings.h"
#include "dsp/effects/LEffectCatalog.h"
#include "dsp/effects/LStoredValues.h"

namespace {
class EffectSettings : public ::testing::Test
{
protected:
    void SetUp() override { LSettings::SetStore(&store); }
    void TearDown() override { LSettings::SetStore(nullptr); }
    LMemorySettings store;
};

bool Accepts(const char* szKey, int32_t n, std::string* pMsg = nullptr)
{
    std::string sz;
    bool b = LStoredValues::Accept(szKey, n, &sz);
    if (pMsg)
        *pMsg = sz;
    return b;
}
} // namespace

TEST_F(EffectSettings, EmptyStoreGivesTheDefaults)
{
    EXPECT_EQ(LStoredValues::Get("EchoTime"), 800);
    EXPECT_EQ(LStoredValues::Get("EchoGain"), 50);
    EXPECT_EQ(LStoredValues::Get("ReverbTime"), 50);
    EXPECT_EQ(LStoredValues::Get("NoiseGateLevel"), -30);
    EXPECT_EQ(LStoredValues::Get("CompressorLimit"), 3);
    EXPECT_EQ(LStoredValues::Get("FadeOutTime"), 250);
    EXPECT_EQ(LStoredValues::Get("ConvertSampleRate"), 44100);
    EXPECT_EQ(LStoredValues::AutoTrimThreshold(), -20);
    LSettings::SetInt("Settings", "AutoTrimThreshold", -500);
    EXPECT_EQ(LStoredValues::AutoTrimThreshold(), -127);
}

TEST_F(EffectSettings, AcceptanceKeepsItsAsymmetries)
{
    // Each limit as accepted and refused, with the message of the refusal ("" when not checked).
    const struct
    {
        const char* szKey;
        int32_t nIn, nOut;
        const char* szMessage;
    } aLimits[] = {
        {"EchoTime", 2999, 3000, "Echo time must be between 10 and 3000ms. Please try again."},
        {"EchoTime", 10, 9, ""},
        {"ReverbTime", 50, 49, "Reverb time must be between 50 and 1000. Please try again."},
        {"ReverbTime", 1000, 1001, ""},
        {"EchoGain", 99, 100, "Echo Gain must be less than 100%. Please try again."},
        {"ReverbLevel", 100, 101, "Reverb level must be less than 100. Please try again."},
        {"AmplifyGain", 400, 401, "Amplify Gain must be less than 400%. Please try again."},
        {"NormalizePeakLevel", 100, 101, "Normailze Peak Level must be less than 100%. Please try again."},
        {"PasteMixVolume", 100, 101, "Mix Volume must be less than 100%. Please try again."},
        {"SpSpeedPitch", 300, 301, "Speed Change Percent must be less than 300."},
        {"ConvertSampleRate", 6000, 5999, "Sample rates must be between 6000 and 96000 samples per second."},
        {"ConvertSampleRate", 96000, 96001, ""},
    };
    for (const auto& k : aLimits) {
        SCOPED_TRACE(std::string(k.szKey) + " " + std::to_string(k.nIn) + "/" + std::to_string(k.nOut));
        std::string sz;
        EXPECT_TRUE(Accepts(k.szKey, k.nIn));
        EXPECT_FALSE(Accepts(k.szKey, k.nOut, &sz));
        if (*k.szMessage)
            EXPECT_EQ(sz, k.szMessage);
    }
}

TEST_F(EffectSettings, RefusedValueIsNotStored)
{
    std::string sz;
    EXPECT_FALSE(LStoredValues::AcceptAndStore("EchoTime", 5000, &sz));
    EXPECT_EQ(LStoredValues::Get("EchoTime"), 800);
    EXPECT_TRUE(LStoredValues::AcceptAndStore("EchoTime", 1200, &sz));
    EXPECT_EQ(LSettings::GetString("StoredValues", "EchoTime"), "1200");
}

TEST_F(EffectSettings, CatalogNamesAndDescriptions)
{
    auto Name = [](int nCmd) { return LEffectCatalog::CliName(*LEffectCatalog::ByCommand(nCmd)); };
    EXPECT_EQ(Name(4001), "amplify");
    EXPECT_EQ(Name(4011), "high-pass-filter");
    EXPECT_EQ(Name(4012), "dynamic-range-compressor");
    EXPECT_EQ(Name(4017), "dcoffset-correction");
    EXPECT_EQ(Name(4013), "fade-out-and-trim");
    EXPECT_EQ(LEffectCatalog::ByCliName("echo")->nCommandId, 4004);
    EXPECT_EQ(LEffectCatalog::ByCliName("Echo"), nullptr);
    EXPECT_STREQ(LEffectCatalog::ByCommand(4017)->szUndoLabel, "DC Offset Correction");

    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("echo")), "Echo Time (ms) = 800, Echo Gain (%) = 50");
    LStoredValues::Set("CompressorRatio", 6);
    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("dynamic-range-compressor")), "Threshold (db) = -20, Ratio = Limit, Limit (db) = 3");
    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("high-pass-filter")), "Frequency (Hz) = 250");
    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("equalizer")), "Click on Settings to view or change.");
    // The description reads the conversion target from the older section only.
    LStoredValues::Set("ConvertSampleRate", 22050);
    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("convert-sample-rate")), "Convert Sample Rate = 44100");
    LSettings::SetInt("StoreValues", "ConvertSampleRate", 8000);
    EXPECT_EQ(LEffectCatalog::Describe(*LEffectCatalog::ByCliName("convert-sample-rate")), "Convert Sample Rate = 8000");
}
