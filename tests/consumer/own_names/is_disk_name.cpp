// Records of a collection.
#include <string>

bool isDiskName(const std::string& name)
{
    return name.find(" LP") != std::string::npos;
}

bool ownNameWorks()
{
    return isDiskName("Blue LP") && !isDiskName("sda");
}
