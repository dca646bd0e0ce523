// Long lists: what comes when, and what they hold in memory.

#include "Cli.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using ::testing::HasSubstr;

namespace {

/** A fifo that holds a few lines: who writes a page into it waits for its reader. */
class NarrowFifo
{
public:
    NarrowFifo()
    {
        EXPECT_EQ(mkfifo(path().c_str(), 0600), 0);
        m_both = open(path().c_str(), O_RDWR | O_CLOEXEC); // a reader that waits for no writer
        m_read = open(path().c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_GT(fcntl(m_both, F_SETPIPE_SZ, 4096), 0);
    }
    ~NarrowFifo() { close(m_read); }
    NarrowFifo(const NarrowFifo&) = delete;
    NarrowFifo& operator=(const NarrowFifo&) = delete;

    std::string path() const { return m_folder.path() + "/fifo"; }

    /** The next line, its end too; waits for it. */
    std::string line()
    {
        std::string text;
        for (char c = 0; c != '\n' && read(m_read, &c, 1) == 1;) {
            text += c;
        }
        return text;
    }
    /** Everything else until the writer is gone. */
    std::string rest()
    {
        close(m_both);
        std::string all;
        for (std::string next = line(); !next.empty(); next = line()) {
            all += next;
        }
        return all;
    }

private:
    Folder m_folder;
    int m_both = -1;
    int m_read = -1;
};

TEST_F(MappingTest, TheFirstPageOfAListIsOutBeforeTheSecondIsAskedFor)
{
    array.bulkLuns(250, lunGroup);
    for (const std::string form : {"text", "json"}) {
        array.resetCounters();
        NarrowFifo fifo;
        Outcome outcome;
        std::thread writer([&] {
            outcome = cli.shell("tesselctl lun list --columns all --group " + lunGroup + " --output " + form +
                                " > " + fifo.path());
        });
        const std::string first = fifo.line();
        EXPECT_EQ(array.requests("GET", "/lun/associate"), 1UL) << form;
        EXPECT_EQ(array.requests("GET", "/lun/{id}"), 100UL) << form;
        const std::string rest = fifo.rest();
        writer.join();
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(array.requests("GET", "/lun/{id}"), 250UL) << form;
        EXPECT_THAT(first + rest, HasSubstr("bulk_251")) << form;
    }
}

TEST_F(MappingTest, AListOfTenThousandHoldsNoMoreMemoryThanOneOfAThousand)
{
    array.bulkLuns(1000, lunGroup);
    const std::string measured = "exec " TESSELCTL " lun list --group " + lunGroup + " > /dev/null";
    const Outcome few = cli.shell(measured);
    array.bulkLuns(9000, lunGroup);
    array.resetCounters();
    const Outcome many = cli.shell(measured);
    ASSERT_EQ(few.exitCode, 0) << few;
    ASSERT_EQ(many.exitCode, 0) << many;
    EXPECT_EQ(array.requests("GET", "/lun/{id}"), 10000UL);
    RecordProperty("kibibytesOfAThousand", static_cast<int>(few.peakKib));
    RecordProperty("kibibytesOfTenThousand", static_cast<int>(many.peakKib));
    EXPECT_LT(many.peakKib, few.peakKib * 6 / 5);
}

TEST_F(MappingTest, AnArrayThatGivesLessThanAPageIsListedToTheEnd)
{
    const auto ids = array.bulkLuns(160, lunGroup);
    std::string records;
    for (size_t i = 0; i < 50; ++i) {
        records += (i == 0 ? "" : ",") + (R"({"ID":")" + ids[i] + R"("})");
    }
    Json::Value fault(Json::objectValue);
    fault["method"] = "GET";
    fault["path"] = "/lun/associate";
    fault["action"] = "answer";
    fault["body"] = R"({"data":[)" + records + R"(],"error":{"code":0}})";
    array.addFault(fault);
    EXPECT_EQ(cli.json({"lun", "list", "--group", lunGroup}).json().size(), ids.size());
}

} // namespace
