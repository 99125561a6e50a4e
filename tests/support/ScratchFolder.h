#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace pulsara::test {

// A fresh folder under the system's temporary folder, removed with everything in it. ctest runs
// tests in parallel processes, so every test needs one of its own.
class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "pulsara-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            throw std::system_error(errno, std::generic_category(), "mkdtemp");
        path_ = pattern;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::u16string file(const std::string& name) const { return (path_ / name).u16string(); }
    // Writes the file, and the folders it lies in; returns its path.
    std::u16string write(const std::string& name, const std::vector<uint8_t>& bytes) const
    {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return file(name);
    }
    std::vector<uint8_t> read(const std::string& name) const
    {
        std::ifstream in(path_ / name, std::ios::binary);
        return { std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>() };
    }

private:
    std::filesystem::path path_;
};

} // namespace pulsara::test
