#ifndef FUZZ_FUZZTARGET_H
#define FUZZ_FUZZTARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/** One input of the fuzzer; a process that does not come back from it has found a defect. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/** Ends the process unless what must hold for any input does. */
inline void mustHold(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}

inline std::string textOf(const uint8_t* data, size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

/** The pieces between newlines. */
inline std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    size_t begin = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    lines.push_back(text.substr(begin));
    return lines;
}

/** True for a text that a shell takes for nothing but a word. */
inline bool isPlain(const std::string& text)
{
    return !text.empty() &&
           text.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                  "/.:-_") == std::string::npos;
}

#endif
