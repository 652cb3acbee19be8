// Runs a libFuzzer target without libFuzzer: fuzz_NAME [--changes N] FILE-OR-FOLDER...
// feeds the empty input, every file, every file cut short in N places at most, and N mutations of each. The
// mutations depend only on the file, so failures are reproducible. An input that ends the program is saved as
// "fuzz-failure" in the current folder; run that file with --changes 0 to see it again.

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));

namespace {

using Bytes = std::vector<uint8_t>;

const unsigned int hangSeconds = 120; // per input; longer counts as a hang

const uint8_t* currentData;
size_t currentSize;
char failurePath[PATH_MAX]; // absolute: a target may work in another folder

// Saves the current input, with async-signal-safe calls only.
void leaveCurrentInput() {
    const int file = open(failurePath, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file >= 0) {
        const ssize_t written = write(file, currentData, currentSize);
        const char text[] = "fuzz: the input is in fuzz-failure\n";
        if (written >= 0 && write(2, text, sizeof(text) - 1) < 0) {
            close(file);
            return;
        }
        close(file);
    }
}

void onSignal(int number) {
    leaveCurrentInput();
    signal(number, SIG_DFL);
    raise(number);
}

void watchForTheEnd() {
    snprintf(failurePath, sizeof(failurePath), "%s",
             (std::filesystem::current_path() / "fuzz-failure").c_str());
    signal(SIGABRT, onSignal);
    signal(SIGALRM, onSignal);
    if (__sanitizer_set_death_callback) {
        __sanitizer_set_death_callback(leaveCurrentInput);
        return;
    }
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        signal(number, onSignal);
}

// The bytes are in a block of exactly their size, so that sanitizers see a read past the end.
void feed(const Bytes& input) {
    uint8_t* const block = static_cast<uint8_t*>(malloc(input.size()));
    std::copy(input.begin(), input.end(), block);
    currentData = block;
    currentSize = input.size();
    alarm(hangSeconds);
    LLVMFuzzerTestOneInput(block, input.size());
    alarm(0);
    free(block);
}

class Random {
public:
    explicit Random(const Bytes& seed) {
        for (const uint8_t byte : seed)
            mState = (mState ^ byte) * 0x100000001b3u;
    }
    size_t below(size_t limit) {
        mState ^= mState << 13;
        mState ^= mState >> 7;
        mState ^= mState << 17;
        return limit ? size_t((mState >> 16) % limit) : 0;
    }

private:
    uint64_t mState = 0xcbf29ce484222325u;
};

size_t position(const Bytes& input, Random& random) {
    return random.below(input.size() + 1);
}

// Copies a piece of `from` into `input`.
void splice(Bytes& input, const Bytes& from, Random& random) {
    const size_t start = random.below(from.size());
    const size_t length = std::min(from.size() - start, 1 + random.below(64));
    const Bytes piece(from.begin() + static_cast<ptrdiff_t>(start),
                      from.begin() + static_cast<ptrdiff_t>(start + length));
    input.insert(input.begin() + static_cast<ptrdiff_t>(position(input, random)), piece.begin(), piece.end());
}

// A critical value for a field of 1, 2 or 4 bytes.
void overwriteNumber(Bytes& input, Random& random) {
    static const uint32_t numbers[] = {0,      1,      0x7f,       0x80,       0xff,       0x7fff,
                                       0x8000, 0xffff, 0x7fffffff, 0x80000000, 0xffffffff, 0x10000};
    const uint32_t number = numbers[random.below(std::size(numbers))];
    const bool bigEndian = random.below(2) == 1;
    const size_t width = size_t(1) << random.below(3);
    const size_t at = position(input, random);
    for (size_t i = 0; i < width && at + i < input.size(); ++i)
        input[at + i] = uint8_t(number >> 8 * (bigEndian ? width - 1 - i : i));
}

void change(Bytes& input, const Bytes& other, Random& random) {
    const size_t at = random.below(input.size());
    switch (input.empty() ? 3 : random.below(7)) {
    case 0:
        input[at] ^= uint8_t(1u << random.below(8));
        break;
    case 1:
        input[at] = uint8_t(random.below(256));
        break;
    case 2: {
        const size_t length = std::min(input.size() - at, 1 + random.below(16));
        input.erase(input.begin() + static_cast<ptrdiff_t>(at),
                    input.begin() + static_cast<ptrdiff_t>(at + length));
        break;
    }
    case 3:
        input.insert(input.begin() + static_cast<ptrdiff_t>(position(input, random)),
                     uint8_t(random.below(256)));
        break;
    case 4:
        overwriteNumber(input, random);
        break;
    case 5:
        if (!other.empty())
            splice(input, other, random);
        break;
    case 6:
        splice(input, Bytes(input), random);
        break;
    }
}

void feedAround(const Bytes& file, const Bytes& other, size_t changes) {
    feed(file);
    if (changes == 0)
        return;
    const size_t step = file.size() / changes + 1;
    for (size_t length = 0; length < file.size(); length += step)
        feed(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(length)));
    Random random(file);
    for (size_t i = 0; i < changes; ++i) {
        Bytes input = file;
        for (size_t count = 1 + random.below(6); count > 0; --count)
            change(input, other, random);
        feed(input);
    }
}

Bytes readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        fprintf(stderr, "fuzz: can't read %s\n", path.c_str());
        exit(2);
    }
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    size_t changes = 1000;
    std::vector<std::filesystem::path> paths;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--changes") == 0 && i + 1 < argc)
            changes = size_t(atol(argv[++i]));
        else if (std::filesystem::is_directory(argv[i]))
            for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
                paths.push_back(entry.path());
        else
            paths.push_back(argv[i]);
    }
    if (paths.empty()) {
        fprintf(stderr, "fuzz: no input files\n");
        return 2;
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> files;
    for (const std::filesystem::path& path : paths)
        files.push_back(readBytes(path));
    if (!freopen("/dev/null", "w", stdout)) // the program logs every failure
        return 2;
    watchForTheEnd();
    feed(Bytes());
    for (size_t i = 0; i < files.size(); ++i)
        feedAround(files[i], files[(i + 1) % files.size()], changes);
    fprintf(stderr, "fuzz: %zu files, %zu changed copies of each\n", files.size(), changes);
    return 0;
}
