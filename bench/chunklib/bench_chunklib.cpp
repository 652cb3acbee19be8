// Chunk streams: skipping chunks compared with reading them, a list read at once compared with value by
// value, and writing.

#include "cl_readbuffer.h"
#include "cl_writebuffer.h"

#include <benchmark/benchmark.h>

#include <vector>

using namespace zentrak::chunklib;

namespace {

constexpr size_t VALUES = 1 << 20;

// One chunk of a million values.
const WriteBuffer& list() {
    static const WriteBuffer buffer = [] {
        WriteBuffer result("O3DF", 1, 1, 1);
        const std::vector<float> values(VALUES, 1.0f);
        result.openChunk(0x1000);
        result.store(values.data(), VALUES * 4);
        result.closeChunk();
        return result;
    }();
    return buffer;
}

void readAtOnce(benchmark::State& state) {
    std::vector<float> values(VALUES);
    for (auto _ : state) {
        ReadBuffer buffer(list().mData.data(), int(list().mData.size()));
        buffer.openChunk();
        buffer.loadType(values.data(), VALUES * 4);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations() * VALUES * 4));
}
BENCHMARK(readAtOnce)->Unit(benchmark::kMicrosecond);

void readOneByOne(benchmark::State& state) {
    std::vector<float> values(VALUES);
    for (auto _ : state) {
        ReadBuffer buffer(list().mData.data(), int(list().mData.size()));
        buffer.openChunk();
        for (float& value : values)
            buffer.loadType(&value, 4);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations() * VALUES * 4));
}
BENCHMARK(readOneByOne)->Unit(benchmark::kMicrosecond);

// A thousand chunks of a thousand small ones.
const WriteBuffer& tree() {
    static const WriteBuffer buffer = [] {
        WriteBuffer result("O3DF", 1, 1, 1);
        const float value = 1;
        for (int i = 0; i < 1000; ++i) {
            result.openChunk(0x2000);
            for (int k = 0; k < 1000; ++k) {
                result.openChunk(0xF004);
                result.store(&value, 4);
                result.closeChunk();
            }
            result.closeChunk();
        }
        return result;
    }();
    return buffer;
}

void skipWhole(benchmark::State& state) {
    for (auto _ : state) {
        ReadBuffer buffer(tree().mData.data(), int(tree().mData.size()));
        while (buffer.openChunk() != 0)
            buffer.closeChunk();
        benchmark::DoNotOptimize(buffer.mPosition);
    }
}
BENCHMARK(skipWhole)->Unit(benchmark::kMicrosecond);

// Items are chunks.
void readEveryChunk(benchmark::State& state) {
    for (auto _ : state) {
        ReadBuffer buffer(tree().mData.data(), int(tree().mData.size()));
        float sum = 0;
        while (buffer.openChunk() != 0) {
            while (buffer.openChunk() != 0) {
                float value = 0;
                buffer.loadType(&value, 4);
                sum += value;
                buffer.closeChunk();
            }
            buffer.closeChunk();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * 1001000);
}
BENCHMARK(readEveryChunk)->Unit(benchmark::kMicrosecond);

void writeEveryChunk(benchmark::State& state) {
    for (auto _ : state) {
        WriteBuffer buffer("O3DF", 1, 1, 1);
        const float value = 1;
        for (int i = 0; i < 1000; ++i) {
            buffer.openChunk(0x2000);
            for (int k = 0; k < 1000; ++k) {
                buffer.openChunk(0xF004);
                buffer.store(&value, 4);
                buffer.closeChunk();
            }
            buffer.closeChunk();
        }
        benchmark::DoNotOptimize(buffer.mData.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * 1001000);
}
BENCHMARK(writeEveryChunk)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
