#ifndef SUPPORT_FOLDER_H
#define SUPPORT_FOLDER_H

#include <string>

namespace tessel_test {

/** A temporary folder of a test's own, which goes with it; a forked child leaves it alone. */
class Folder
{
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return m_path; }
    /** A file in it; folders on the way are made. Returns its path. */
    std::string write(const std::string& name, const std::string& content, unsigned mode = 0600) const;

private:
    std::string m_path;
    int m_owner; ///< process that made it
};

} // namespace tessel_test

#endif
