#include "App/DataFolders.h"

#include "base/text.h"

#include <QDir>
#include <QStandardPaths>

#include <cstdlib>
#include <filesystem>

namespace pulsara {

namespace {

std::u16string documentsSubfolder(const char* name)
{
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty())
        documents = QDir::homePath() + "/Documents";
    return (documents + '/' + name).toStdU16String();
}

std::filesystem::path executableFolder()
{
    std::error_code error;
    std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : self.parent_path();
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

std::u16string dataFolder()
{
    if (const char* overridden = std::getenv("PULSARA_DATA_DIR"); overridden && *overridden)
        return fromUtf8(overridden);
    std::filesystem::path folder = executableFolder();
    for (const auto& candidate : { folder / "share/pulsara", folder.parent_path() / "share/pulsara" }) {
        std::error_code error;
        if (std::filesystem::is_directory(candidate, error))
            return fromUtf8(candidate.string());
    }
    return fromUtf8((folder / "share/pulsara").string());
}

} // namespace pulsara
