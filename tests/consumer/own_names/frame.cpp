// A picture.
#include <vector>

struct Frame
{
    std::vector<unsigned char> pixels;
};

bool ownNameWorks()
{
    std::vector<Frame> film(2);
    film[0].pixels.assign(640, 1);
    const Frame copy = film[0];
    return copy.pixels.size() == 640;
}
