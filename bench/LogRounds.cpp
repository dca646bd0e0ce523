// A line of the logs beside the same text in one of spdlog's file sink that is flushed.

#include "Folder.h"
#include "Rounds.h"

#include <ovra/log/LogAPI.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace {

constexpr const char* PRODUCT = "bench";
constexpr const char* BEGIN = "2026-01-01 10:20:30 045";
constexpr const char* END = "2026-01-01 10:20:30 046";

void ourLine()
{
    Log_Run_Info(PRODUCT, "enter getLun successfully!");
}

void ourRecord()
{
    Log_Interface_Info(PRODUCT, "1", "", "getLun", "", "", "", BEGIN, END, "0", "");
}

} // namespace

void bench::logRows(bool isShort)
{
    const tessel_test::Folder folder;
    int level = -1;
    LogInit(PRODUCT, (folder.path() + "/none.ini").c_str(), &level, (folder.path() + "/logs/").c_str());
    const auto sink = spdlog::basic_logger_mt("beside", folder.path() + "/beside.log");
    sink->flush_on(spdlog::level::info);
    const auto line = [&] { sink->info("{} enter getLun successfully!", PRODUCT); };
    const auto record = [&] {
        sink->info(
            R"(product="{}" type="1" protocol="" operation="getLun" source="" target="" transaction="" )"
            R"(start="{}" end="{}" result="0" extension="")",
            PRODUCT, BEGIN, END);
    };

    const unsigned lines = isShort ? 2000 : 10000;
    const auto repeated = [lines](const std::function<void()>& one) {
        return [lines, one] {
            for (unsigned i = 0; i < lines; ++i) {
                one();
            }
        };
    };
    const unsigned rounds = isShort ? 6 : 40;
    const Rounds ofLines(rounds, repeated(ourLine), repeated(line));
    tellRow("run line, wall against spdlog's file sink with flush", ofLines.wall(), 1.2);
    tellRow("run line, CPU against spdlog's file sink with flush", ofLines.cpu(), 1.2);
    const Rounds ofRecords(rounds, repeated(ourRecord), repeated(record));
    tellRow("interface record, wall against spdlog's file sink with flush", ofRecords.wall(), 1.2);
    tellRow("interface record, CPU against spdlog's file sink with flush", ofRecords.cpu(), 1.2);
    spdlog::drop("beside");
    LogFini(PRODUCT);
}
