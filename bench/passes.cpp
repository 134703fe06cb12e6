/// \file
/// What setting a volume, or its transfer function, costs, in units of moving its voxels through memory once.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include <OpenSG/OSGConfig.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGTextureChunk.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/Tessaly.h>

#include <volume/BlockReduction.h>
#include <volume/VolumeNodeHandler.h>

#include "Quiet.h"

using namespace osg;

namespace
{

constexpr std::uint32_t side = 512;
constexpr std::size_t voxelBytes = std::size_t(side) * side * side;
constexpr std::uint32_t blockEdge = 8;

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Work>
double secondsOf(Work &&work)
{
    const double begin = now();
    work();
    return now() - begin;
}

/// Values that rise and fall along every axis, with some noise; never 0 nor 255.
void fillVoxels(std::uint8_t *voxels)
{
    std::uint32_t noise = 1;
    for(std::uint32_t z = 0; z < side; ++z)
        for(std::uint32_t y = 0; y < side; ++y)
            for(std::uint32_t x = 0; x < side; ++x) {
                noise = noise * 1664525u + 1013904223u;
                *voxels++ = std::uint8_t(16 + ((x * 3 / 2 + y + z / 2) & 127) + (noise >> 28));
            }
}

const std::vector<std::uint8_t> &plainVoxels()
{
    static const std::vector<std::uint8_t> voxels = [] {
        std::vector<std::uint8_t> values(voxelBytes);
        fillVoxels(values.data());
        return values;
    }();
    return voxels;
}

/// Written to before it is timed, so that every page is there.
std::vector<std::uint8_t> &copyTarget()
{
    static std::vector<std::uint8_t> target(voxelBytes, 1);
    return target;
}

double secondsOfCopy(const std::uint8_t *voxels)
{
    return secondsOf([&] {
        std::memcpy(copyTarget().data(), voxels, voxelBytes);
        benchmark::ClobberMemory();
    });
}

#if defined(__x86_64__)
/// Reads as fast as loads of 32 bytes go; the result is of no use but to keep them.
__attribute__((target("avx2"))) std::uint64_t readWide(const std::uint8_t *voxels, std::size_t count)
{
    __m256i sums[4];
    for(__m256i &sum : sums)
        sum = _mm256_setzero_si256();
    for(std::size_t i = 0; i + 128 <= count; i += 128)
        for(std::size_t part = 0; part < 4; ++part) {
            const __m256i *const from = reinterpret_cast<const __m256i *>(voxels + i + part * 32);
            sums[part] = _mm256_or_si256(sums[part], _mm256_loadu_si256(from));
        }
    std::uint64_t words[4];
    const __m256i all = _mm256_or_si256(_mm256_or_si256(sums[0], sums[1]), _mm256_or_si256(sums[2], sums[3]));
    std::memcpy(words, &all, sizeof(words));
    return words[0] | words[1] | words[2] | words[3];
}
#endif

std::uint64_t readPlain(const std::uint8_t *voxels, std::size_t count)
{
    std::uint64_t all = 0;
    for(std::size_t i = 0; i + 8 <= count; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, voxels + i, 8);
        all |= word;
    }
    return all;
}

std::uint64_t readOnce(const std::uint8_t *voxels, std::size_t count)
{
#if defined(__x86_64__)
    if(__builtin_cpu_supports("avx2"))
        return readWide(voxels, count);
#endif
    return readPlain(voxels, count);
}

/// Ratios of one piece of work to a yardstick, which is measured on either side of the work.
class Ratios
{
public:
    template <class Yardstick, class Work>
    double measure(Yardstick &&yardstick, Work &&work)
    {
        const double before = yardstick();
        const double taken = work();
        const double behind = yardstick();
        _ratios.push_back(2.0 * taken / (before + behind));
        return taken;
    }

    /// Median, quartiles and the limit that the work is held to.
    void report(benchmark::State &state, double limit)
    {
        std::sort(_ratios.begin(), _ratios.end());
        const double last = double(_ratios.size() - 1);
        const auto at = [&](double share) { return _ratios[std::size_t(share * last + 0.5)]; };
        state.counters["ratio"] = at(0.5);
        state.counters["low"] = at(0.25);
        state.counters["high"] = at(0.75);
        state.counters["limit"] = limit;
    }

private:
    std::vector<double> _ratios;
};

/// A volume of 512 x 512 x 512 bytes that is made once and set again and again.
class Scene
{
public:
    Scene()
    {
        _image = Image::create();
        addRefCP(_image);
        beginEditCP(_image);
        _image->set(Image::OSG_L_PF, Int32(side), Int32(side), Int32(side));
        fillVoxels(_image->editData());
        endEditCP(_image);
    }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;
    ~Scene()
    {
        dropNode();
        subRefCP(_image);
    }

    const std::uint8_t *voxels() const { return _image->getData(); }

    /// From the end of the edit, which calls changed, to the volume's first initVolume.
    double setVolume()
    {
        dropNode();
        // Nothing may be known of the image from the time before.
        beginEditCP(_image);
        endEditCP(_image);
        const TextureChunkPtr chunk = TextureChunk::create();
        beginEditCP(chunk);
        chunk->setImage(_image);
        endEditCP(chunk);
        _node = VolumeNode::create();
        addRefCP(_node);
        beginEditCP(_node);
        _node->setVoxels(chunk);
        return secondsOf([&] {
            endEditCP(_node);
            _node->initVolume();
        });
    }

    double setTransferFunction()
    {
        ++_edition;
        std::vector<std::uint8_t> entries(256 * 4);
        for(std::size_t value = 0; value < 256; ++value) {
            std::memset(&entries[value * 4], int(value), 3);
            entries[value * 4 + 3] = std::uint8_t(value > 64 + _edition % 64 ? value / 4 : 0);
        }
        const ImagePtr table = Image::create();
        beginEditCP(table);
        table->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, entries.data());
        endEditCP(table);
        const TextureChunkPtr chunk = TextureChunk::create();
        beginEditCP(chunk);
        chunk->setImage(table);
        endEditCP(chunk);
        return secondsOf([&] {
            beginEditCP(_node, VolumeNode::TransferFuncFieldMask);
            _node->setTransferFunc(chunk);
            endEditCP(_node, VolumeNode::TransferFuncFieldMask);
            _node->initVolume();
        });
    }

private:
    void dropNode()
    {
        if(_node == NullFC)
            return;
        _node->setVolume(nullptr);
        subRefCP(_node);
        _node = NullFC;
    }

    ImagePtr _image;
    VolumeNodePtr _node;
    std::size_t _edition = 0;
};

void setVolume(benchmark::State &state)
{
    const Hush hush;
    Scene scene;
    Ratios ratios;
    scene.setVolume();
    for([[maybe_unused]] auto round : state)
        state.SetIterationTime(ratios.measure([&] { return secondsOfCopy(scene.voxels()); },
                                              [&] { return scene.setVolume(); }));
    ratios.report(state, 15.0);
}

void setTransferFunction(benchmark::State &state)
{
    const Hush hush;
    Scene scene;
    Ratios ratios;
    scene.setVolume();
    scene.setTransferFunction();
    for([[maybe_unused]] auto round : state)
        state.SetIterationTime(ratios.measure([&] { return secondsOfCopy(scene.voxels()); },
                                              [&] { return scene.setTransferFunction(); }));
    ratios.report(state, 2.0);
}

void reduceBlocksOnce(benchmark::State &state)
{
    const std::uint8_t *const voxels = plainVoxels().data();
    const tessaly::Sides sides = {side, side, side};
    std::vector<std::uint8_t> ranges(2 * tessaly::voxelCount(tessaly::blockSides(sides, blockEdge)));
    Ratios ratios;
    const auto read = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(readOnce(voxels, voxelBytes)); });
    };
    const auto reduce = [&] {
        return secondsOf([&] {
            tessaly::reduceBlocks(voxels, sides, blockEdge, ranges.data());
            benchmark::ClobberMemory();
        });
    };
    read();
    reduce();
    for([[maybe_unused]] auto round : state)
        state.SetIterationTime(ratios.measure(read, reduce));
    ratios.report(state, 1.3);
}

BENCHMARK(reduceBlocksOnce)
    ->Name("one block reduction / reading the voxels once")
    ->Iterations(101)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(setTransferFunction)
    ->Name("a new transfer function / one memcpy of the voxels")
    ->Iterations(21)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(setVolume)
    ->Name("setting a volume / one memcpy of the voxels")
    ->Iterations(15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv) || !osgInit(argc, argv))
        return 1;
    initTessalyExtention();
    const QuietLog quiet;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return osgExit() ? 0 : 1;
}
