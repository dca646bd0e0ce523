// A process in which something fails from its first moment on. Usage: cold IP PORT USER PASSWORD
// RESULT-DESCRIPTOR MODE
#include "Trial.h"

int main(int count, char** arguments)
{
    if (count == 7) {
        torture::runColdTrial(arguments);
    }
    return 2;
}
