#include "App/DataFolders.h"

#include "support/ScratchFolder.h"

#include <QDir>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

using namespace pulsara;

namespace {

// Sets an environment variable for the test's lifetime, or unsets it (nullopt).
struct ScopedVariable {
    ScopedVariable(const char* name, std::optional<std::string> value) : name(name)
    {
        if (const char* was = std::getenv(name))
            old = was;
        value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
    }
    ~ScopedVariable() { old ? ::setenv(name, old->c_str(), 1) : ::unsetenv(name); }
    const char* name;
    std::optional<std::string> old;
};

} // namespace

// The command line finds the documents folder without Qt; the window must keep finding the same
// folder through it as Qt would give: the desktop's user-dirs.dirs, "$HOME" in it, quotes, a
// trailing separator, the last line winning, Windows line ends and an untidy HOME. (A relative
// XDG_CONFIG_HOME is left out: Qt 6.4 reads it against the working folder, later Qt ignores it
// as the XDG rules say, and so does the command line.)
TEST(DataFolders, SamplesFolderIsInTheDocumentsFolderQtNames)
{
    test::ScratchFolder folder;
    const std::string home = folder.path().string() + "/home";
    const struct {
        std::string home;
        std::optional<std::string> configHome, userDirs;
    } cases[] = {
        { home, std::nullopt, std::nullopt },
        { home, std::nullopt, "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n" },
        { home, std::nullopt, "# written by xdg-user-dirs-update\nXDG_DOCUMENTS_DIR=/data/docs/\n" },
        { home, std::nullopt, "XDG_DOCUMENTS_DIR=\"$HOME/First\"\r\nXDG_MUSIC_DIR=\"$HOME/Music\"\r\nXDG_DOCUMENTS_DIR=\"$HOME/Last\"\r\n" },
        { home, std::nullopt, "XDG_DOCUMENTS_DIR=\nXDG_TEMPLATES_DIR=\"$HOME/T\"" },
        { home, home + "/elsewhere", "XDG_DOCUMENTS_DIR=\"/srv/papers\"\n" },
        { folder.path().string() + "//home/./", std::nullopt, "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.userDirs.value_or("no user-dirs.dirs"));
        std::filesystem::remove_all(home);
        std::string config = c.configHome && c.configHome->front() == '/' ? *c.configHome : home + "/.config";
        if (c.userDirs) {
            std::filesystem::create_directories(config);
            std::ofstream(config + "/user-dirs.dirs") << *c.userDirs;
        }
        ScopedVariable homeVariable("HOME", c.home);
        ScopedVariable configVariable("XDG_CONFIG_HOME", c.configHome);
        QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        if (documents.isEmpty())
            documents = QDir::homePath() + "/Documents";
        EXPECT_EQ(samplesFolder(), (documents + "/Pulsara").toStdU16String());
        EXPECT_EQ(templatesFolder(), (documents + "/Templates").toStdU16String());
    }
}
