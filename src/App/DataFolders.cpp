#include "App/DataFolders.h"

#include "base/text.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace pulsara {

namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// $HOME without doubled separators, "." or ".." parts and a trailing separator; "/" when unset.
std::string homeFolder()
{
    std::string home = environment("HOME");
    if (home.empty())
        return "/";
    home = std::filesystem::path(home).lexically_normal().string();
    if (home.size() > 1 && home.back() == '/')
        home.pop_back();
    return home;
}

// The user's documents folder as the desktop names it: the last XDG_DOCUMENTS_DIR line of
// user-dirs.dirs in the configuration folder, where "$HOME" at the start stands for the home
// folder; else <home>/Documents. This is the folder Qt's QStandardPaths gives the window, found
// without loading Qt, so that the command line starts fast.
std::string documentsFolder()
{
    const std::string home = homeFolder();
    std::string config = environment("XDG_CONFIG_HOME");
    if (config.empty() || config.front() != '/')
        config = home + "/.config";
    std::ifstream file(config + "/user-dirs.dirs");
    std::string documents;
    std::string line;
    while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        // Lines read XDG_DOCUMENTS_DIR="$HOME/Documents"; the name runs up to the last "_DIR=".
        constexpr std::string_view kPrefix = "XDG_", kSuffix = "_DIR=", kName = "DOCUMENTS";
        std::size_t end = line.rfind(kSuffix);
        if (line.rfind(kPrefix, 0) != 0 || end == std::string::npos || end < kPrefix.size()
            || std::string_view(line).substr(kPrefix.size(), end - kPrefix.size()) != kName)
            continue;
        std::string value = line.substr(end + kSuffix.size());
        if (value.size() > 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        if (value.rfind("$HOME", 0) == 0)
            value = home + value.substr(5);
        if (value.size() > 1 && value.back() == '/')
            value.pop_back();
        documents = value;
    }
    return documents.empty() ? home + "/Documents" : documents;
}

std::u16string documentsSubfolder(const char* name)
{
    return fromUtf8(documentsFolder() + '/' + name);
}

} // namespace

std::u16string samplesFolder()
{
    return documentsSubfolder("Pulsara");
}

std::u16string templatesFolder()
{
    return documentsSubfolder("Templates");
}

std::string programFolder()
{
    std::error_code error;
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : self.parent_path().string();
}

std::u16string dataFolder()
{
    if (const char* overridden = std::getenv("PULSARA_DATA_DIR"); overridden && *overridden)
        return fromUtf8(overridden);
    std::filesystem::path folder = programFolder();
    for (const auto& candidate : { folder / "share/pulsara", folder.parent_path() / "share/pulsara" }) {
        std::error_code error;
        if (std::filesystem::is_directory(candidate, error))
            return fromUtf8(candidate.string());
    }
    return fromUtf8((folder / "share/pulsara").string());
}

} // namespace pulsara
