#include "Folder.h"

#include "Require.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace tessel_test {

Folder::Folder()
    : m_path((std::filesystem::temp_directory_path() / "tessel-test-XXXXXX").string()), m_owner(getpid())
{
    require(mkdtemp(m_path.data()) != nullptr, "temporary folder");
}

Folder::~Folder()
{
    std::error_code ignored;
    if (getpid() == m_owner) {
        std::filesystem::remove_all(m_path, ignored);
    }
}

std::string Folder::write(const std::string& name, const std::string& content, unsigned mode) const
{
    const std::filesystem::path path = std::filesystem::path(m_path) / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
    require(chmod(path.c_str(), mode) == 0, path.string());
    return path.string();
}

} // namespace tessel_test
