#include "DemoKit.h"

#include <cmath>
#include <numbers>

namespace demo {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

// Deterministic white noise, so that every build writes the same bytes.
class Noise {
public:
    float next()
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return static_cast<float>(state_) / 2147483648.0f - 1.0f;
    }

private:
    uint32_t state_ = 0x9E3779B9u;
};

// A one-pole filter pair: lowPass follows the input, highPass is what the low pass leaves out.
class OnePole {
public:
    explicit OnePole(double cutoffHz, double sampleRate)
        : coefficient_(1.0 - std::exp(-kTwoPi * cutoffHz / sampleRate))
    {
    }
    float lowPass(float input)
    {
        state_ += coefficient_ * (input - state_);
        return static_cast<float>(state_);
    }
    float highPass(float input) { return input - lowPass(input); }

private:
    double coefficient_;
    double state_ = 0.0;
};

std::vector<float> render(double seconds, uint32_t rate, auto&& voice)
{
    std::vector<float> samples(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = voice(static_cast<double>(i) / rate);
    return samples;
}

void normalise(std::vector<float>& samples, float peak)
{
    float largest = 0.0f;
    for (float sample : samples)
        largest = std::max(largest, std::abs(sample));
    if (largest > 0.0f) {
        for (float& sample : samples)
            sample *= peak / largest;
    }
}

KitSound kick()
{
    constexpr uint32_t rate = 44100;
    double phase = 0.0;
    auto samples = render(0.5, rate, [&](double t) {
        double frequency = 45.0 + 110.0 * std::exp(-t * 28.0);
        phase += kTwoPi * frequency / rate;
        double body = std::sin(phase) * std::exp(-t * 7.0);
        double click = std::exp(-t * 400.0) * 0.6;
        return static_cast<float>(std::tanh(1.6 * (body + click)));
    });
    normalise(samples, 0.95f);
    return { "Kick1.wav", "Kick", rate, 16, samples };
}

KitSound snare()
{
    constexpr uint32_t rate = 22050;
    Noise noise;
    OnePole tone(5000.0, rate);
    auto samples = render(0.3, rate, [&](double t) {
        double body = std::sin(kTwoPi * 185.0 * t) * std::exp(-t * 25.0) * 0.6;
        double rattle = tone.lowPass(noise.next()) * std::exp(-t * 14.0);
        return static_cast<float>(body + rattle * 1.4);
    });
    normalise(samples, 0.9f);
    return { "Snare.wav", "Snare", rate, 16, samples };
}

KitSound clap()
{
    constexpr uint32_t rate = 44100;
    Noise noise;
    OnePole low(2500.0, rate);
    OnePole high(900.0, rate);
    auto samples = render(0.35, rate, [&](double t) {
        // Three quick bursts and a tail, like hands that do not quite meet at once.
        double envelope = 0.0;
        for (double start : { 0.0, 0.011, 0.023 }) {
            if (t >= start)
                envelope = std::max(envelope, std::exp(-(t - start) * 180.0));
        }
        if (t >= 0.03)
            envelope = std::max(envelope, 0.5 * std::exp(-(t - 0.03) * 16.0));
        return static_cast<float>(high.highPass(low.lowPass(noise.next())) * envelope);
    });
    normalise(samples, 0.85f);
    return { "Clap.wav", "Clap", rate, 16, samples };
}

KitSound hat(const char* file, const char* name, double seconds, double decay, uint16_t bits)
{
    constexpr uint32_t rate = 44100;
    Noise noise;
    OnePole high(7000.0, rate);
    auto samples = render(seconds, rate, [&](double t) {
        double metal = std::sin(kTwoPi * 6100.0 * t) * 0.25 + std::sin(kTwoPi * 8300.0 * t) * 0.2;
        return static_cast<float>((high.highPass(noise.next()) + metal * 0.3) * std::exp(-t * decay));
    });
    normalise(samples, 0.6f);
    return { file, name, rate, bits, samples };
}

KitSound bass()
{
    constexpr uint32_t rate = 44100;
    constexpr double frequency = 55.0; // A1; notes are played at other pitches through the rate
    OnePole filter(400.0, rate);
    auto samples = render(0.9, rate, [&](double t) {
        double saw = 2.0 * std::fmod(frequency * t, 1.0) - 1.0;
        double sub = std::sin(kTwoPi * frequency * t);
        double envelope = std::min(1.0, t * 400.0) * std::exp(-t * 2.2);
        return static_cast<float>((filter.lowPass(static_cast<float>(saw)) * 0.8 + sub * 0.7) * envelope);
    });
    normalise(samples, 0.9f);
    return { "Bass.wav", "Reese bass", rate, 16, samples };
}

KitSound stab()
{
    constexpr uint32_t rate = 44100;
    OnePole filter(1800.0, rate);
    // A minor seventh chord on A3, two slightly detuned saws per note.
    const double notes[] = { 220.0, 261.63, 329.63, 392.0 };
    auto samples = render(0.7, rate, [&](double t) {
        double sum = 0.0;
        for (double note : notes) {
            for (double detune : { 0.997, 1.003 })
                sum += 2.0 * std::fmod(note * detune * t, 1.0) - 1.0;
        }
        double envelope = std::min(1.0, t * 300.0) * std::exp(-t * 5.0);
        return static_cast<float>(filter.lowPass(static_cast<float>(sum / 8.0)) * envelope);
    });
    normalise(samples, 0.8f);
    return { "Stab.wav", "Chord stab", rate, 16, samples };
}

KitSound rim()
{
    constexpr uint32_t rate = 44100;
    auto samples = render(0.08, rate, [&](double t) {
        double tone = std::sin(kTwoPi * 1650.0 * t) * 0.6 + std::sin(kTwoPi * 820.0 * t) * 0.4;
        return static_cast<float>(tone * std::exp(-t * 70.0));
    });
    normalise(samples, 0.7f);
    return { "Rim.wav", "Rim", rate, 8, samples };
}

} // namespace

std::vector<KitSound> synthesiseKit()
{
    return {
        kick(),
        snare(),
        clap(),
        hat("HatClosed.wav", "Closed hat", 0.08, 60.0, 8),
        hat("HatOpen.wav", "Open hat", 0.45, 7.0, 16),
        bass(),
        stab(),
        rim(),
    };
}

} // namespace demo
