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
    std::string sz;
    EXPECT_TRUE(Accepts("EchoTime", 2999));
    EXPECT_FALSE(Accepts("EchoTime", 3000, &sz));
    EXPECT_EQ(sz, "Echo time must be between 10 and 3000ms. Please try again.");
    EXPECT_TRUE(Accepts("EchoTime", 10));
    EXPECT_FALSE(Accepts("EchoTime", 9));
    EXPECT_TRUE(Accepts("ReverbTime", 50));
    EXPECT_TRUE(Accepts("ReverbTime", 1000));
    EXPECT_FALSE(Accepts("ReverbTime", 49, &sz));
    EXPECT_EQ(sz, "Reverb time must be between 50 and 1000. Please try again.");
    EXPECT_FALSE(Accepts("ReverbTime", 1001));
    EXPECT_FALSE(Accepts("EchoGain", 100, &sz));
    EXPECT_EQ(sz, "Echo Gain must be less than 100%. Please try again.");
    EXPECT_TRUE(Accepts("ReverbLevel", 100));
    EXPECT_FALSE(Accepts("ReverbLevel", 101, &sz));
    EXPECT_EQ(sz, "Reverb level must be less than 100. Please try again.");
    EXPECT_TRUE(Accepts("AmplifyGain", 400));
    EXPECT_FALSE(Accepts("AmplifyGain", 401, &sz));
    EXPECT_EQ(sz, "Amplify Gain must be less than 400%. Please try again.");
    EXPECT_FALSE(Accepts("NormalizePeakLevel", 101, &sz));
    EXPECT_EQ(sz, "Normailze Peak Level must be less than 100%. Please try again.");
    EXPECT_FALSE(Accepts("PasteMixVolume", 101, &sz));
    EXPECT_EQ(sz, "Mix Volume must be less than 100%. Please try again.");
    EXPECT_FALSE(Accepts("SpSpeedPitch", 301, &sz));
    EXPECT_EQ(sz, "Speed Change Percent must be less than 300.");
    EXPECT_TRUE(Accepts("ConvertSampleRate", 6000));
    EXPECT_TRUE(Accepts("ConvertSampleRate", 96000));
    EXPECT_FALSE(Accepts("ConvertSampleRate", 5999, &sz));
    EXPECT_EQ(sz, "Sample rates must be between 6000 and 96000 samples per second.");
    EXPECT_FALSE(Accepts("ConvertSampleRate", 96001));
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
