#include "export/ConfigFs.h"

#include <fstream>
#include <stdexcept>

namespace arraysim {

void ConfigFs::write(const Path& attribute, const std::string& value)
{
    std::ofstream file(attribute);
    if (!(file << value << std::flush)) {
        throw std::runtime_error("the kernel does not take " + value + " in " + attribute.string());
    }
}

std::string ConfigFs::read(const Path& attribute)
{
    std::ifstream file(attribute);
    std::string line;
    std::getline(file, line);
    return line;
}

} // namespace arraysim
