#include "host/FileContent.h"

#include <cstdio>

namespace ovra::tessel {

std::string contentOf(const std::string& path)
{
    std::string content;
    std::FILE* const file = std::fopen(path.c_str(), "re");
    if (file == nullptr) {
        return content;
    }
    char piece[4096];
    for (size_t size = 1; size != 0;) {
        size = std::fread(piece, 1, sizeof(piece), file);
        content.append(piece, size);
    }
    std::fclose(file);
    return content;
}

} // namespace ovra::tessel
