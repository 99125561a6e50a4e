#pragma once

#include "App/MessageFilter.h"
#include "Sound/WaveOutStream.h"

#include <atomic>
#include <cstdint>

namespace pulsara {

class Song;

// Receives the meter values of every filled buffer. Called on the device's callback thread:
// store the values and repaint on the GUI thread.
class MeterListener {
public:
    virtual ~MeterListener() = default;
    virtual void onPeaks(float left, float right) = 0;
    virtual void onCpuLoad(float load) = 0;
};

// The playback transport: the application's output stream, playing the song's player. The play
// button starts it and its release stops the song while the queued sound plays out; the device is
// then let go when the user shares it (documentFlags bit 3), unless live play keeps the stream
// running. As a message filter it turns the live keys into triggers of the tracks.
//
// Everything here runs on the GUI thread except the meter notifications. The GUI thread owns
// the document flags and the live mode flag.
class Transport : public WaveOutStream, public MessageFilter {
public:
    static constexpr uint32_t kReleaseDeviceFlag = 8; // documentFlags bit 3
    static constexpr uint32_t kKeyDownMessage = 256;

    // The device is not owned; the song outlives the transport.
    Transport(WaveDevice&, Song&);
    ~Transport() override;

    // Hands the song's format and player to the stream, and the latency in milliseconds.
    void open(int latencyMs);
    // The play button pressed: the song plays from where it stands, starting the stream if it
    // was not running. 1 on success, 0 when the device could not be opened.
    int play();
    // The play button released.
    void stopPlaying();
    // Stops at once and lets go of the device.
    void close();
    // The rulers: playing goes on from step `step` of song position `position`. While the
    // stream runs the move is handed to its next render; otherwise it is made at once. The song
    // player's songPosition() shows the new position at once either way.
    void moveToSongPosition(int32_t position, uint32_t step = 0);
    // With background draining (the window), letting go of the device after playing does not
    // wait for the queued sound: the owner calls finishDrain from a timer. Without it (the
    // command line), the stop waits until the sound has played.
    void setDrainsInBackground(bool on) { drainsInBackground_ = on; }
    // The Settings dialog's output format: a stream that is not closed is stopped, the song takes
    // the format (its samples are loaded again for it) and a running stream starts again.
    void changeFormat(AudioFormat);

    // The stream is running (playing the song, live notes or silence).
    bool isRunning() const { return state() == StreamState::Playing; }
    // The song is playing.
    bool isPlaying() const;

    // Only bit 3 (kReleaseDeviceFlag) is read: let go of the device whenever playing stops.
    void setDocumentFlags(uint32_t flags) { documentFlags_ = flags; }
    // Live play keeps the stream running while the song is stopped.
    void setLiveMode(bool);
    bool liveMode() const { return liveMode_; }
    // Plays the track's instrument from the next rendered block (0 to 39), starting the stream
    // if needed. 1 on success, 0 when the device could not be opened.
    int triggerLive(int32_t track);
    // The track of a live key: 1-9 and 0, then the letter rows Q..P, A..L and Z..M, as upper-case
    // key codes; -1 for any other key.
    static int32_t liveTrackForKey(uint32_t key);

    // The listener is not owned; nullptr stops the notifications.
    void setMeterListener(MeterListener* listener) { meterListener_.store(listener, std::memory_order_release); }

    // In live mode a key-down of a live key triggers its track and is consumed.
    int filterMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override;

protected:
    void onPeaks(float left, float right) override;
    void onCpuLoad(float load) override;

private:
    bool releasesDevice() const { return (documentFlags_ & kReleaseDeviceFlag) != 0; }
    void drain();

    Song& song_;
    std::atomic<MeterListener*> meterListener_ { nullptr };
    uint32_t documentFlags_ = kReleaseDeviceFlag;
    bool liveMode_ = false;
    bool drainsInBackground_ = false;
};

} // namespace pulsara
