#ifndef UNIT_HANDLERS_FILTERTEST_H
#define UNIT_HANDLERS_FILTERTEST_H

#include "unit/handlers/HandlerTest.h"

/** Lists with a filter and a page; shows the path that was asked for. */
struct Listing
{
    std::string name;
    std::function<void(CDeviceManagerImpl&)> list;
    std::string path;
};

inline void PrintTo(const Listing& listing, std::ostream* out)
{
    *out << listing.path;
}

inline std::string listingName(const testing::TestParamInfo<Listing>& info)
{
    return info.param.name;
}

class EveryFilter : public HandlerTest, public testing::WithParamInterface<Listing>
{
};

template <class MO>
using Set = void (*)(MO&);

/** The calls of one kind of list, with one filter each. */
template <class MO, class Query>
struct Kind
{
    std::string prefix;
    std::string suffix;
    std::function<void(CDeviceManagerImpl&, Query&)> ask;

    Listing with(const std::string& name, Set<MO> set, const std::string& filter, unsigned long start = 0,
                 unsigned long count = 0, const std::string& range = "") const
    {
        const auto call = ask;
        return {name,
                [call, set, start, count](CDeviceManagerImpl& m) {
                    MO mo;
                    set(mo);
                    Query query(mo, start, count);
                    call(m, query);
                },
                prefix + filter + suffix + range};
    }
};

#endif
