#include "localdisk/WriteWithin.h"

#include "host/Limited.h"

#include <ovra/disk/Files.h>

#include <cerrno>
#include <system_error>

namespace ovra::tessel {

std::string writeWithin(std::chrono::seconds limit, const std::string& file, const std::string& text)
{
    const std::optional<int> error =
        within<int>(limit, [=] { return disk::writeFile(file, text) ? 0 : errno; });
    if (!error) {
        return file + " does not answer";
    }
    return *error == 0 ? "" : file + ": " + std::system_category().message(*error);
}

} // namespace ovra::tessel
