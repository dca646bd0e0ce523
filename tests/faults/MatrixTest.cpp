// Each operation, under each fault, once and lasting: how it ends, what it logs and records, how long it
// takes, what the array gets, and that the next call works.

#include "faults/Matrix.h"

#include <algorithm>
#include <curl/curl.h>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <set>

namespace {

constexpr size_t FEWEST_CASES = 20000;
constexpr double LONGEST_S = 10;
constexpr double LONGEST_HEAVY_S = 60;

/** The operations by which faults that take long are tried: the first of each method. */
bool isFirstOfItsMethod(const Exchange& exchange)
{
    static const std::set<std::string> first = [] {
        std::set<std::string> methods;
        std::set<std::string> names;
        for (const Exchange& one : allExchanges()) {
            if (methods.insert(one.request.substr(0, one.request.find(' '))).second) {
                names.insert(one.name());
            }
        }
        return names;
    }();
    return first.count(exchange.name()) != 0;
}

bool isTried(const Exchange& exchange, const Fault& fault)
{
    return !fault.isHeavy || isFirstOfItsMethod(exchange);
}

Lines withoutRequests(const Lines& lines)
{
    Lines left;
    for (const std::string& line : lines) {
        const std::string word = line.substr(0, line.find(' '));
        if (word != "GET" && word != "POST" && word != "PUT" && word != "DELETE") {
            left.push_back(line);
        }
    }
    return left;
}

/** "GET /lun/7" of "GET /lun/7 BODY=string:x". */
std::string requestLine(const std::string& request)
{
    return request.substr(0, request.find(' ', request.find(' ') + 1));
}

bool isRead(const Exchange& exchange)
{
    return exchange.request.compare(0, 4, "GET ") == 0;
}

size_t openFiles()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

class FaultMatrix : public testing::TestWithParam<Exchange>
{
protected:
    void expectGood() { expectSuccess(matrix.call(GetParam())); }

    void expectSuccess(const Seen& seen) const
    {
        EXPECT_EQ(seen.outcome, Outcome::returned());
        EXPECT_EQ(seen.journal, withoutRequests(GetParam().succeeded()));
    }

    void expectFailure(const Seen& seen, const Outcome& outcome, const std::string& message, int code) const
    {
        EXPECT_EQ(seen.outcome, outcome);
        EXPECT_EQ(seen.journal, withoutRequests(GetParam().failed(message, code)));
    }

    /** What holds however it ends. */
    void expectSound(const Seen& seen) const
    {
        const bool isReturned = seen.outcome.kind == Outcome::RETURNED;
        const auto failedLine = [](const std::string& line) { return line.compare(0, 7, "error: ") == 0; };
        const auto isRecord = [](const std::string& line) { return line.compare(0, 6, "record") == 0; };
        const auto last = std::find_if(seen.journal.rbegin(), seen.journal.rend(), isRecord);
        ASSERT_NE(last, seen.journal.rend());
        EXPECT_EQ(last->compare(0, 7, "record!") == 0, !isReturned) << *last;
        EXPECT_EQ(std::any_of(seen.journal.begin(), seen.journal.end(), failedLine), !isReturned);
    }

    static Fault::Ending endingOf(const Fault& fault, bool isLasting)
    {
        const Exchange& exchange = GetParam();
        if (fault.isRetried && isRead(exchange) && !isLasting) {
            return Fault::SUCCESS;
        }
        if ((fault.port != 0 || fault.isSlow) && !exchange.repliesBefore.empty()) { // may be met before
            return Fault::EITHER;
        }
        if (fault.ending != Fault::SUCCESS_UNLESS_READ) {
            return fault.ending;
        }
        if (exchange.reads) {
            return Fault::NO_ANSWER;
        }
        return isLasting && !exchange.repliesThen.empty() ? Fault::EITHER : Fault::SUCCESS;
    }

    void tryFault(const Fault& fault, bool isLasting)
    {
        const Exchange& exchange = GetParam();
        const bool isSentAgain = fault.isRetried && isRead(exchange);
        const Seen seen = matrix.call(exchange, fault, isLasting);
        EXPECT_LT(seen.seconds, fault.isHeavy ? LONGEST_HEAVY_S : LONGEST_S);

        const Fault::Ending ending = endingOf(fault, isLasting);
        // What is no read died on a connection in use: libcurl wanted to send it again.
        const int code =
            fault.isRetried && !isRead(exchange) ? static_cast<int>(CURLE_GOT_NOTHING) : fault.code;
        switch (ending) {
        case Fault::SUCCESS:
            expectSuccess(seen);
            break;
        case Fault::NO_ANSWER: {
            const std::string message = journal::noAnswer(exchange.errorsNamed);
            expectFailure(seen, Outcome::failed(message), message, code);
            break;
        }
        case Fault::ERROR_ANSWER: {
            const std::string message =
                journal::errorAnswer(fault.code, fault.description, exchange.errorsNamed);
            expectFailure(seen, Outcome::errorAnswer(fault.code, message), message, fault.code);
            break;
        }
        default:
            expectSound(seen);
        }
        if (ending != Fault::EITHER) {
            EXPECT_EQ(seen.warnings, ending == Fault::NO_ANSWER && fault.isNoticedByRest() ? 1U : 0U);
            EXPECT_EQ(seen.isFailureKept, ending != Fault::SUCCESS);
        }
        expectArrivals(seen, fault.port != 0 ? 0 : isSentAgain ? 2 : 1, ending);
    }

    void expectArrivals(const Seen& seen, size_t most, Fault::Ending ending) const
    {
        const auto itself = static_cast<size_t>(
            std::count(seen.arrived.begin(), seen.arrived.end(), requestLine(GetParam().request)));
        EXPECT_LE(itself, most) << testing::PrintToString(seen.arrived);
        if (ending == Fault::NO_ANSWER || ending == Fault::ERROR_ANSWER) {
            EXPECT_LE(seen.arrived.size(), GetParam().repliesBefore.size() + most)
                << "nothing comes after a failure";
        }
    }

    Matrix matrix;
};

} // namespace

TEST_P(FaultMatrix, EndsEachAsDeclaredOnceAndLastingAndGoesOn)
{
    const std::vector<Fault> all = faultsOf(GetParam());
    expectGood();
    const size_t files = openFiles();
    size_t cases = 0;
    for (const Fault& fault : all) {
        for (const bool isLasting : {false, true}) {
            if (!isTried(GetParam(), fault)) {
                continue;
            }
            SCOPED_TRACE(fault.name + (isLasting ? ", lasting" : ", once"));
            ++cases;
            tryFault(fault, isLasting);
            if (fault.isClosedAfterwards) {
                matrix.closeConnections();
            }
            expectGood();
            if (HasFatalFailure()) {
                return;
            }
        }
    }
    EXPECT_LE(openFiles(), files);
    std::cout << GetParam().name() << ": " << cases << " cases\n";
}

INSTANTIATE_TEST_SUITE_P(Of, FaultMatrix, testing::ValuesIn(allExchanges()), exchangeName);

TEST(FaultMatrixItself, IsAsLargeAsItIsToBe)
{
    size_t cases = 0;
    size_t fields = 0;
    const std::vector<Exchange> all = allExchanges();
    for (const Exchange& exchange : all) {
        fields += 2 * fieldFaults(exchange).size();
        for (const Fault& fault : faultsOf(exchange)) {
            cases += isTried(exchange, fault) ? 2 : 0;
        }
    }
    std::cout << "fault matrix: " << all.size() << " exchanges, " << faults().size()
              << " faults of any request, once and lasting; with " << fields << " cases of fields " << cases
              << " cases\n";
    EXPECT_GE(cases, FEWEST_CASES);
}
