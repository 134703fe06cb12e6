/// \file
/// How fast pictures are compressed to DXT1 and DXT5, against an encoder that is in wide use, and how much
/// each of three encoders loses.
///
/// The picture is drawn: a landscape with clouds, hills, windows with hard edges, grass and the noise of a
/// sensor.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include <squish.h>
// Behind <cstring>, which it needs.
#define STB_DXT_IMPLEMENTATION
#include <stb/stb_dxt.h>

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGImage.h>
#include <Tessaly/DXTCompressor.h>

#include <foreground/BlockEncoder.h>

namespace
{

constexpr std::size_t side = 2048;
constexpr std::size_t pixelCount = side * side;

using Bytes = std::vector<std::uint8_t>;

/// Seconds that this thread was at work: what else the machine does would count more against long runs than
/// short ones.
double secondsOf(const std::function<void()> &work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
    };
    const double begin = now();
    work();
    return now() - begin;
}

/// A number from 0 to 1 for each point of a grid.
float scatter(int x, int y, std::uint32_t seed)
{
    std::uint32_t h = std::uint32_t(x) * 0x8DA6B343u ^ std::uint32_t(y) * 0xD8163841u ^ seed * 0xCB1AB31Fu;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return float((h ^ h >> 15) >> 8) / 16777216.0f;
}

float smooth(float x, float y, std::uint32_t seed)
{
    const int left = int(std::floor(x)), top = int(std::floor(y));
    float s = x - float(left), t = y - float(top);
    s *= s * (3 - 2 * s);
    t *= t * (3 - 2 * t);
    const float upper = scatter(left, top, seed) * (1 - s) + scatter(left + 1, top, seed) * s;
    const float lower = scatter(left, top + 1, seed) * (1 - s) + scatter(left + 1, top + 1, seed) * s;
    return upper * (1 - t) + lower * t;
}

/// Noise of all sizes from one unit down, 0 to 1.
float clouds(float x, float y, std::uint32_t seed)
{
    float sum = 0, weight = 0.5f;
    for(std::uint32_t octave = 0; octave < 6; ++octave, weight /= 2, x *= 2, y *= 2)
        sum += weight * smooth(x, y, seed + octave);
    return sum;
}

using Colour = std::array<float, 3>;

Colour mixed(const Colour &a, const Colour &b, float share)
{
    Colour colour;
    for(std::size_t i = 0; i < 3; ++i)
        colour[i] = a[i] + (b[i] - a[i]) * std::clamp(share, 0.0f, 1.0f);
    return colour;
}

Colour landscape(float x, float y)
{
    Colour colour = mixed({70, 120, 200}, {205, 220, 235}, y * 1.6f);
    colour = mixed(colour, {250, 248, 244}, (clouds(x * 5, y * 9, 1) - 0.45f) * 4);
    for(int range = 0; range < 3; ++range) {
        const float ridge =
            0.38f + 0.1f * float(range) + 0.16f * (clouds(x * float(3 + range), float(range), 20) - 0.5f);
        if(y > ridge) {
            const float light = clouds(x * 30, y * 45, 30 + std::uint32_t(range));
            colour =
                mixed(mixed({120, 140, 165}, {50, 75, 45}, float(range) / 2), {35, 40, 30}, light * 0.8f);
        }
    }
    if(x > 0.55f && x < 0.85f && y > 0.42f && y < 0.78f) {
        const float u = std::fmod((x - 0.55f) * 30, 1.0f), v = std::fmod((y - 0.42f) * 25, 1.0f);
        const bool isWindow = u > 0.25f && u < 0.75f && v > 0.2f && v < 0.8f;
        colour = isWindow ? mixed({30, 36, 48}, {160, 190, 215}, clouds(x * 9, y * 9, 50) * u)
                          : mixed({176, 92, 66}, {120, 58, 44}, clouds(x * 160, y * 500, 51));
    }
    if(y > 0.74f + 0.02f * smooth(x * 40, 0, 60))
        colour = mixed({44, 70, 20}, {150, 170, 70}, clouds(x * 250, y * 90, 61) * 1.4f - 0.2f);
    return colour;
}

/// RGBA; alpha is a soft mask.
const Bytes &photograph()
{
    static const Bytes picture = [] {
        Bytes pixels(pixelCount * 4);
        for(std::size_t i = 0; i < pixelCount; ++i) {
            const int x = int(i % side), y = int(i / side);
            const float u = float(x) / float(side), v = float(y) / float(side);
            const Colour colour = landscape(u, v);
            for(std::size_t channel = 0; channel < 3; ++channel) {
                const float sensor = scatter(x, y, 100 + std::uint32_t(channel)) +
                                     scatter(x, y, 200 + std::uint32_t(channel)) - 1;
                pixels[i * 4 + channel] =
                    std::uint8_t(std::clamp(colour[channel] + 4 * sensor, 0.0f, 255.0f));
            }
            const float mask = (clouds(u * 6, v * 6, 300) - 0.35f) * 700;
            pixels[i * 4 + 3] = std::uint8_t(std::clamp(mask, 0.0f, 255.0f));
        }
        return pixels;
    }();
    return picture;
}

std::size_t bytesOf(bool isDxt5)
{
    return isDxt5 ? pixelCount : pixelCount / 2;
}

void compressOwn(Bytes &blocks, bool isDxt5)
{
    DXTCompressor::the().compressPixels(blocks.data(), photograph().data(), side, side,
                                        osg::Image::OSG_RGBA_PF,
                                        isDxt5 ? DXTCompressor::DXT5_FORMAT : DXTCompressor::DXT1_FORMAT);
}

/// The peer takes one block at a time; its faster mode.
void compressPeer(Bytes &blocks, bool isDxt5)
{
    std::uint8_t *out = blocks.data();
    for(std::size_t y = 0; y < side; y += 4)
        for(std::size_t x = 0; x < side; x += 4, out += isDxt5 ? 16 : 8) {
            std::uint8_t block[64];
            for(std::size_t row = 0; row < 4; ++row)
                std::memcpy(block + row * 16, &photograph()[((y + row) * side + x) * 4], 16);
            stb_compress_dxt_block(out, block, isDxt5, STB_DXT_NORMAL);
        }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Both in turn, so that what else the machine does meets both.
void speed(benchmark::State &state, bool isDxt5, double atLeast)
{
    Bytes own(bytesOf(isDxt5)), peer(bytesOf(isDxt5));
    compressOwn(own, isDxt5);
    std::vector<double> ratios, ownTimes, peerTimes;
    for([[maybe_unused]] auto round : state) {
        peerTimes.push_back(secondsOf([&] { compressPeer(peer, isDxt5); }));
        // Shorter by far, so the mean of several.
        constexpr int times = 10;
        ownTimes.push_back(secondsOf([&] {
                               for(int i = 0; i < times; ++i) {
                                   compressOwn(own, isDxt5);
                                   benchmark::ClobberMemory();
                               }
                           }) /
                           times);
        ratios.push_back(peerTimes.back() / ownTimes.back());
        state.SetIterationTime(ownTimes.back());
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = median(ratios);
    state.counters["low"] = ratios[ratios.size() / 4];
    state.counters["high"] = ratios[ratios.size() * 3 / 4];
    state.counters["limit"] = atLeast;
    state.counters["Mpixels/s"] = double(pixelCount) / median(ownTimes) / 1e6;
    state.counters["peer Mpixels/s"] = double(pixelCount) / median(peerTimes) / 1e6;
}

/// What each form of the encoder reaches.
void speedOf(benchmark::State &state, tessaly::BlockCode code, tessaly::BlockFormat format)
{
    if(!tessaly::canRun(code)) {
        state.SkipWithError("not on this machine");
        return;
    }
    Bytes blocks(bytesOf(format == tessaly::BlockFormat::Dxt5));
    std::vector<double> times;
    for([[maybe_unused]] auto round : state) {
        times.push_back(secondsOf([&] {
            tessaly::encodeBlocks(photograph().data(), side, side, tessaly::PixelOrder::Rgba, format,
                                  blocks.data(), code);
            benchmark::ClobberMemory();
        }));
        state.SetIterationTime(times.back());
    }
    state.counters["Mpixels/s"] = double(pixelCount) / median(times) / 1e6;
}

/// Decibels between the picture and what squish decodes from the blocks. \param first, end channels
double noiseRatio(const Bytes &blocks, int flags, std::size_t first, std::size_t end)
{
    Bytes decoded(pixelCount * 4);
    squish::DecompressImage(decoded.data(), int(side), int(side), blocks.data(), flags);
    double squares = 0;
    for(std::size_t i = 0; i < pixelCount; ++i)
        for(std::size_t channel = first; channel < end; ++channel) {
            const double difference = double(decoded[i * 4 + channel]) - photograph()[i * 4 + channel];
            squares += difference * difference;
        }
    return 10 * std::log10(255.0 * 255.0 * double(pixelCount * (end - first)) / squares);
}

enum class Encoder
{
    Own,
    Peer,
    SquishRange,
    SquishCluster
};

void quality(benchmark::State &state, Encoder encoder, bool isDxt5)
{
    const int format = isDxt5 ? squish::kDxt5 : squish::kDxt1;
    Bytes blocks(bytesOf(isDxt5));
    for([[maybe_unused]] auto round : state)
        state.SetIterationTime(secondsOf([&] {
            if(encoder == Encoder::Own)
                compressOwn(blocks, isDxt5);
            else if(encoder == Encoder::Peer)
                compressPeer(blocks, isDxt5);
            else {
                // DXT1 of squish would punch holes where alpha is low.
                Bytes opaque = photograph();
                for(std::size_t i = 3; i < opaque.size() && !isDxt5; i += 4)
                    opaque[i] = 255;
                squish::CompressImage(opaque.data(), int(side), int(side), blocks.data(),
                                      format | (encoder == Encoder::SquishRange ? squish::kColourRangeFit
                                                                                : squish::kColourClusterFit));
            }
        }));
    state.counters["colour dB"] = noiseRatio(blocks, format, 0, 3);
    if(isDxt5)
        state.counters["alpha dB"] = noiseRatio(blocks, format, 3, 4);
}

void registerAll()
{
    for(const bool isDxt5 : {false, true}) {
        const std::string format = isDxt5 ? "DXT5" : "DXT1";
        benchmark::RegisterBenchmark(("speed of " + format + " / stb_dxt").c_str(), speed, isDxt5,
                                     isDxt5 ? 15.0 : 25.0)
            ->Iterations(15)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        const char *const codes[] = {"plain loops", "AVX2", "AVX512"};
        for(int code = 0; code < 3; ++code)
            benchmark::RegisterBenchmark(("speed of " + format + ", " + codes[code]).c_str(), speedOf,
                                         tessaly::BlockCode(code),
                                         isDxt5 ? tessaly::BlockFormat::Dxt5 : tessaly::BlockFormat::Dxt1)
                ->Iterations(code == 0 ? 10 : 100)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        const char *const encoders[] = {"this", "stb_dxt", "squish, range fit", "squish, cluster fit"};
        for(int encoder = 0; encoder < 4; ++encoder)
            benchmark::RegisterBenchmark(("quality of " + format + ", " + encoders[encoder]).c_str(), quality,
                                         Encoder(encoder), isDxt5)
                ->Iterations(1)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
    }
}

} // namespace

int main(int argc, char **argv)
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
