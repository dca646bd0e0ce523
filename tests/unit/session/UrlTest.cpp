// Values in the filter of a list, whose grammar knows no quoting.

#include "session/Url.h"

#include <gtest/gtest.h>

namespace ovra::tessel {
namespace {

TEST(FilterValues, AddAConditionWhereAFieldsNameAndAColonFollowAnAnd)
{
    for (const char* value : {"a and ID:7", " and a:", "a and   NAME:x", "a and _1: ", "a and and b:c",
                              "a and 7:x and ID:7", "a and b and ID:7"}) {
        EXPECT_TRUE(addsCondition(value)) << value;
    }
    for (const char* value : {"", "a", " and ", "a and b", "and ID:7", "aand ID:7", "a andID:7", "a and 7:x",
                              "a and :x", "a and b :c", "a and b-c:d", "a AND ID:7"}) {
        EXPECT_FALSE(addsCondition(value)) << value;
    }
}

TEST(FilterValues, MayBeAsLongAsTheyLike)
{
    EXPECT_FALSE(addsCondition("a and " + std::string(10000000, 'n')));
}

} // namespace
} // namespace ovra::tessel
