// Speech from text through the installed espeak-ng program, written to a WAV file.
#pragma once

#include <string>
#include <vector>

class LTextToSpeech
{
public:
    static constexpr const char* kProgram = "espeak-ng";
    static constexpr int kMinWordsPerMinute = 80;
    static constexpr int kMaxWordsPerMinute = 450;
    static constexpr int kDefaultWordsPerMinute = 175;
    static constexpr const char* kMsgMissing =
        "Text To Speech needs the espeak-ng program, which is not installed.\n"
        "Install it with tools/setup-debian.sh (or: apt-get install espeak-ng).";

    // Voices offered to choose from; any other voice name espeak-ng knows also works.
    static const std::vector<std::string>& CommonVoices();
    // A voice name is letters, digits and "+-_/" (so it can never read as an option).
    static bool IsVoiceName(const std::string& szVoice);

    // Speaks szText with a voice at a speed into szWavPath. The text goes through a file beside
    // the WAV, never through a command line. False with a reason for the user.
    static bool Speak(const std::string& szText, const std::string& szVoice, int nWordsPerMinute,
                      const std::string& szWavPath, std::string& szError);
};
