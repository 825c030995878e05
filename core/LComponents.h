// Install-on-demand components: separately installed programs (the MP3 encoder "mp3el") whose
// executable paths are registered in the settings store, section "Components", as "<name>/Path".
#pragma once

#include <string>

class LComponents
{
public:
    static constexpr const char* kSection = "Components";
    static constexpr const char* kMp3Encoder = "mp3el";

    // The registered path; empty when the component is not installed.
    static std::string GetPath(const std::string& szName);
    static void SetPath(const std::string& szName, const std::string& szPath);
    // The full path of an executable found on PATH; empty when there is none.
    static std::string FindOnPath(const std::string& szProgram);
    // The program that provides a component on this system ("lame" for "mp3el"), which is also
    // the name of its package.
    static std::string ProgramFor(const std::string& szName);
    // A program Sonitra hands work to (a decoder, an encoder): the path registered under its own
    // name when that path is there, else the one found on PATH; empty when it is not installed.
    static std::string Find(const std::string& szProgram);
    // Why a program cannot be used, for the user: what to install, and how.
    static std::string MissingText(const std::string& szProgram, const std::string& szPackage);
    // "The component "mp3el" has not yet been installed. ..."
    static std::string NotInstalledMessage(const std::string& szName);
};
