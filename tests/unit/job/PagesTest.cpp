#include <tessel/mocks/Array.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace ovra::tessel;
using testing::_;
using testing::ElementsAre;

namespace {

/** A list of LUNs as some array answers a range of it. */
class PagedList : public testing::Test
{
protected:
    explicit PagedList(unsigned size = 0) { grow(size); }

    void grow(unsigned size)
    {
        while (ids.size() < size) {
            ids.push_back(std::to_string(ids.size()));
        }
    }

    /** Answers the records [start, end), as many as the array gives at once. */
    std::vector<LunMO> answer(unsigned long start, unsigned long end)
    {
        std::vector<LunMO> page;
        for (unsigned long i = start; i < std::min<unsigned long>(end, ids.size()) && page.size() < cap;
             ++i) {
            LunMO lun;
            lun.ID = ids[i];
            page.push_back(lun);
        }
        ranges.push_back(std::to_string(start) + "-" + std::to_string(end));
        return page;
    }

    std::vector<std::string> walk(unsigned long pageSize)
    {
        EXPECT_CALL(array.luns, getLunByHost("5", _))
            .WillRepeatedly([this](const std::string&, LunQuery& query) {
                return ignoresRanges
                           ? answer(0, ids.size())
                           : answer(query.start, query.start + query.count + (countsTheEnd ? 1 : 0));
            });
        std::vector<std::string> found;
        for (const LunMO& lun : Array(array.manager).luns().ofHost("5", LunMO(), pageSize)) {
            found.push_back(lun.ID);
        }
        return found;
    }

    MockArray array;
    std::vector<std::string> ids;
    std::vector<std::string> ranges;
    bool countsTheEnd = false;
    bool ignoresRanges = false;
    unsigned long cap = 1000;
};

TEST_F(PagedList, isWholeForEverySizeHoweverTheArrayTakesARange)
{
    for (const bool inclusive : {false, true}) {
        for (const unsigned long most : {1000ul, 3ul, 1ul}) {
            for (unsigned size = 0; size <= 11; ++size) {
                ids.clear();
                grow(size);
                countsTheEnd = inclusive;
                cap = most;
                EXPECT_EQ(walk(5), ids)
                    << size << " records, at most " << most << (inclusive ? ", end included" : "");
            }
        }
    }
}

TEST_F(PagedList, endsWhereTheArrayIgnoresRanges)
{
    grow(11);
    ignoresRanges = true;
    EXPECT_EQ(walk(5), ids);
    EXPECT_EQ(ranges.size(), 2u);
}

TEST_F(PagedList, asksForNoPageBehindAShortOneOnceAFullOneCame)
{
    grow(12);
    walk(5);
    EXPECT_THAT(ranges, ElementsAre("0-5", "5-10", "10-15"));
}

TEST_F(PagedList, asksOnceMoreWhereTheFirstPageIsShort)
{
    grow(3);
    walk(5);
    EXPECT_THAT(ranges, ElementsAre("0-5", "3-8"));
}

TEST_F(PagedList, isReadNoFurtherThanItIsWalked)
{
    grow(20);
    EXPECT_CALL(array.luns, getLunByHost).WillRepeatedly([this](const std::string&, LunQuery& query) {
        return answer(query.start, query.start + query.count);
    });
    const Pages<LunMO> luns = Array(array.manager).luns().ofHost("5", LunMO(), 5);
    EXPECT_TRUE(ranges.empty());
    auto here = luns.begin();
    EXPECT_EQ((*here++).ID, "0");
    EXPECT_EQ(here->ID, "1");
    EXPECT_EQ(ranges.size(), 1u);
}

TEST_F(PagedList, handsNoRecordOutTwiceWhenTheListShifts)
{
    grow(6);
    EXPECT_CALL(array.luns, getLunByHost).WillRepeatedly([this](const std::string&, LunQuery& query) {
        const std::vector<LunMO> page = answer(query.start, query.start + query.count);
        ids.insert(ids.begin(), "new " + std::to_string(ranges.size()));
        return page;
    });
    std::vector<std::string> found;
    for (const LunMO& lun : Array(array.manager).luns().ofHost("5", LunMO(), 3)) {
        found.push_back(lun.ID);
    }
    std::vector<std::string> once = found;
    std::sort(once.begin(), once.end());
    EXPECT_EQ(std::unique(once.begin(), once.end()), once.end());
}

TEST_F(PagedList, passesTheFilterOnWithEveryPage)
{
    LunMO named;
    named.NAME = "db";
    EXPECT_CALL(array.luns, getLunByLunGroup("9", _))
        .Times(2)
        .WillRepeatedly([](const std::string&, LunQuery& query) {
            EXPECT_EQ(query.filter.NAME, "db");
            return query.start == 0 ? std::vector<LunMO>{query.filter} : std::vector<LunMO>();
        });
    EXPECT_EQ(Array(array.manager).luns().ofLunGroup("9", named).all().size(), 1u);
}

/** Every other list, once: it is the handler's operation of that name that is called. */
TEST(Lists, areThoseOfTheHandlers)
{
    MockArray mocks;
    const Array array(mocks.manager);
    EXPECT_CALL(mocks.snapshots, getSnapshotByHost("1", _));
    array.snapshots().ofHost("1").all();
    EXPECT_CALL(mocks.snapshots, getSnapshotByLunGroup("2", _));
    array.snapshots().ofLunGroup("2").all();
    EXPECT_CALL(mocks.lunGroups, getLunGroupByLun("3", _));
    array.lunGroups().ofLun("3").all();
    EXPECT_CALL(mocks.lunGroups, getLunGroupBySnapshot("4", _));
    array.lunGroups().ofSnapshot("4").all();
    EXPECT_CALL(mocks.hostGroups, getHostGroupByHost("5", _));
    array.hostGroups().ofHost("5").all();
    EXPECT_CALL(mocks.mappingViews, getMappingViewByLunGroup("6", _));
    array.mappingViews().ofLunGroup("6").all();
    EXPECT_CALL(mocks.mappingViews, getMappingViewByHostGroup("7", _));
    array.mappingViews().ofHostGroup("7").all();
    EXPECT_CALL(mocks.fcPorts, getFCPortBatch);
    array.fcPorts().all().all();
    EXPECT_CALL(mocks.fcoePorts, getFCoEPortBatch);
    array.fcoePorts().all().all();
    EXPECT_CALL(mocks.ethPorts, getETHPortBatch);
    array.ethPorts().all().all();
}

} // namespace
