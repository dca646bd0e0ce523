#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

/** Names that a shared object defines for others, in C++ form. */
std::vector<std::string> exportsOf(const std::string& library)
{
    std::vector<std::string> names;
    FILE* listing = popen(("nm -DC --defined-only '" + library + "'").c_str(), "re");
    std::array<char, 4096> line;
    while (listing != nullptr && fgets(line.data(), line.size(), listing) != nullptr) {
        std::string text = line.data();
        text.erase(text.find_last_not_of('\n') + 1);
        names.push_back(text.substr(text.find(' ') + 3)); // behind address and type
    }
    if (listing != nullptr) {
        pclose(listing);
    }
    return names;
}

bool beginsWithOneOf(const std::string& name, const std::vector<std::string>& beginnings)
{
    for (const std::string& beginning : beginnings) {
        if (name.rfind(beginning, 0) == 0) {
            return true;
        }
    }
    return false;
}

TEST(SharedObjects, TheRestLibraryShowsItsHeadersAlone)
{
    const std::vector<std::string> names = exportsOf(REST_LIBRARY);
    EXPECT_GT(names.size(), 20U);
    for (const std::string& name : names) {
        EXPECT_TRUE(beginsWithOneOf(name, {"RestGetSettings", "RestKeepMember", "RestLastFailure",
                                           "RestSetCall", "RestSetSettings", "RestRequest::",
                                           "RestResponse::", "void RestRequest::BodyAddProperty<",
                                           "CUserManager::", "OvraTool::", "typeinfo for CUserManager",
                                           "typeinfo name for CUserManager"}) &&
                    name.find("Impl") == std::string::npos)
            << name;
    }
}

TEST(SharedObjects, TheLogLibraryShowsItsHeaderAlone)
{
    const std::vector<std::string> names = exportsOf(LOG_LIBRARY);
    EXPECT_EQ(11U, names.size());
    for (const std::string& name : names) {
        EXPECT_TRUE(beginsWithOneOf(name, {"LogInit", "LogFini", "Log_Run_", "Log_Interface_", "Log_Audit",
                                           "Log_Directory", "Log_Dropped_Count"}))
            << name;
    }
}

} // namespace
