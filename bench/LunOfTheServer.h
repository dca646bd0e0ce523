#ifndef BENCH_LUNOFTHESERVER_H
#define BENCH_LUNOFTHESERVER_H

namespace bench {

/** What the benchmarks' server answers. */
constexpr const char* LUN =
    R"({"ID":"7","NAME":"db","PARENTID":"0","PARENTNAME":"pool","HEALTHSTATUS":"1","RUNNINGSTATUS":"27",)"
    R"("DESCRIPTION":"","ALLOCTYPE":"1","CAPACITY":"131072","SECTORSIZE":"512","ALLOCCAPACITY":"2048",)"
    R"("THINCAPACITYUSAGE":"1","EXPOSEDTOINITIATOR":"true","WWN":"6001405000000000000000000000007",)"
    R"("OWNINGCONTROLLER":"0A","WORKINGCONTROLLER":"0A","ISADD2LUNGROUP":"true"})";

} // namespace bench

#endif
