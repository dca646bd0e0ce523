// Runs a fuzz target without a fuzzer: every file of the corpus as it is, and a fixed number of mutations of
// it that are the same in every run.

#include "FuzzTarget.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

#ifndef FUZZ_MUTATIONS // fewer of those that take long
#define FUZZ_MUTATIONS 3000
#endif
constexpr size_t MUTATIONS = FUZZ_MUTATIONS; // of an input
constexpr size_t ALL_MUTATIONS = 36000;      // of all, where there are many

using Bytes = std::vector<uint8_t>;

void run(const Bytes& input)
{
    const Bytes copy(input); // of exactly this size, so that reading beyond it is noticed
    LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

class Mutator
{
public:
    Bytes operator()(Bytes bytes)
    {
        for (size_t changes = 1 + below(4); changes != 0; --changes) {
            change(bytes);
        }
        return bytes;
    }

private:
    void change(Bytes& bytes)
    {
        static const char TELLING[] = " \t\n:;/[]-.$`'\"|&<>\\s0d\x7f\xff";
        const size_t place = below(bytes.size() + 1);
        const auto at = bytes.begin() + static_cast<long>(place);
        const auto end = at + static_cast<long>(below(std::min<size_t>(bytes.size() - place, 64) + 1));
        switch (below(6)) {
        case 0: // a byte becomes any other
            if (at != bytes.end()) {
                *at = static_cast<uint8_t>(m_random());
            }
            break;
        case 1: // a byte that means something is put in, a zero byte now and then
            bytes.insert(at, static_cast<uint8_t>(TELLING[below(sizeof(TELLING))]));
            break;
        case 2: // cut short
            bytes.erase(at, bytes.end());
            break;
        case 3: // a piece is missing
            bytes.erase(at, end);
            break;
        case 4: { // a piece is there twice
            const Bytes piece(at, end);
            bytes.insert(at, piece.begin(), piece.end());
            break;
        }
        default: // a long run of one byte
            bytes.insert(at, below(1200), static_cast<uint8_t>(TELLING[below(sizeof(TELLING) - 1)]));
        }
    }

    size_t below(size_t limit) { return m_random() % limit; }

    std::mt19937 m_random{20240501};
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS\n", argv[0]);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    const size_t mutations = std::min(MUTATIONS, ALL_MUTATIONS / std::max<size_t>(files.size(), 1));
    run(Bytes());
    for (const auto& path : files) {
        std::ifstream file(path, std::ios::binary);
        const Bytes bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        run(bytes);
        Mutator mutate;
        for (size_t i = 0; i < mutations; ++i) {
            run(mutate(bytes));
        }
    }
    std::printf("%zu inputs with %zu mutations each\n", files.size(), mutations);
    return files.empty() ? 1 : 0;
}
