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
    // The component's program, ready to run: the registered path while it is there, else the
    // program found on the PATH, which is then registered (installing the package is how a
    // component is installed here). Empty when there is none.
    static std::string Resolve(const std::string& szName);
    // What the user knows the component as: "the MP3 encoder (lame)".
    static std::string DisplayName(const std::string& szName);
    // For the command line: the component is missing, and which package to install.
    static std::string NotInstalledText(const std::string& szName);
    // A program Sonitra hands work to (a decoder, an encoder): the path registered under its own
    // name when that path is there, else the one found on PATH; empty when it is not installed.
    static std::string Find(const std::string& szProgram);
    // Why a program cannot be used, for the user: what to install, and how.
    static std::string MissingText(const std::string& szProgram, const std::string& szPackage);
    // "The MP3 encoder (lame) has not yet been installed. ...", naming the package to install.
    static std::string NotInstalledMessage(const std::string& szName);
};
