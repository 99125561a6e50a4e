#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pulsara {

class ByteSource;
class Sample;

// Reads a plain RIFF WAVE file (8- or 16-bit PCM, mono or stereo, or 32-bit float already in the
// output format) into a sample, converting it to the sample's output format: its rate, its
// channel count and float values. Every refusal is a recoverable report from "Sound/file".
//
// GUI thread: the frames are built apart from the sample and handed to it whole (Sample's
// publish), so a stream that plays the sample meanwhile never sees them half-made.
class WavReader {
public:
    explicit WavReader(Sample&);

    // Returns 1 after a direct load (the file already holds the output format), 0 otherwise:
    // after a failure and after a good converting load alike. On failure the sample's path and
    // display name are cleared; its length is 0.
    int load(std::u16string_view path);
    // Loads the bytes of a WAV file from the source, with the same results and reports as the
    // load of a file; `path` is not opened, it only names the sample (path and display name).
    int load(ByteSource&, std::u16string_view path);

private:
    // Drops the old sound and checks the output format (fatal when there is none).
    bool begin(const std::u16string& path);
    // Everything after the opening of the file.
    int read(ByteSource&, const std::u16string& path);
    // Reports a recoverable fault of the file and leaves the sample without a path.
    int fail(int line, std::u16string_view message);
    void forgetPath();
    void keepPath(std::u16string_view path);
    int loadDirect(ByteSource&, uint32_t dataSize, uint32_t channels);
    int loadConverted(ByteSource&, uint32_t dataSize, uint32_t channels, uint32_t rate, uint32_t bits);

    Sample& sample_;
};

} // namespace pulsara
