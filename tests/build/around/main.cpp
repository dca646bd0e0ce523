#include <tessel/Tessel.h>

int main()
{
    CDeviceManager::releaseInstance(CDeviceManager::getInstance(0, 0));
}
