#include "localdisk/WriteWithin.h"

#include "host/Limited.h"

#include <ovra/disk/Files.h>

#include <cerrno>
#include <system_error>

namespace ovra::tessel {

std::function<std::string()> writing(const std::string& file, const std::string& text)
{
    return [=] {
        const int error = disk::writeFile(file, text) ? 0 : errno;
        return error == 0 ? std::string() : file + ": " + std::system_category().message(error);
    };
}

std::string writeWithin(std::chrono::seconds limit, const std::string& file, const std::string& text)
{
    return within<std::string>(limit, writing(file, text)).value_or(file + " does not answer");
}

} // namespace ovra::tessel
