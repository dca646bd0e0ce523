// What the SDK costs beside what stands below it: rows and curves, a line of JSON each. See scripts/bench.
//   tessel_bench [--short] [GROUP...]

#include "Rounds.h"

int main(int count, char** arguments)
{
    return bench::runGroups({{"calls", &bench::callRows},
                             {"arrays", &bench::arrayRows},
                             {"threads", &bench::threadRows},
                             {"lists", &bench::listRows},
                             {"logs", &bench::logRows}},
                            count, arguments);
}
