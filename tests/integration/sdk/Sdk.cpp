#include "Sdk.h"

#include <ovra/rest/RestSettings.h>

#include <ctime>
#include <dlfcn.h>
#include <fstream>
#include <ovra/log/LogAPI.h>
#include <sstream>
#include <unistd.h>

Sdk::Sdk(unsigned int retryTimes, unsigned int retrySleepMicroSeconds)
    : m_array(CDeviceManager::getInstance(retryTimes, retrySleepMicroSeconds))
{
}

Sdk::~Sdk()
{
    CDeviceManager::releaseInstance(m_array);
}

std::vector<std::string> logLines(const std::string& filePrefix)
{
    Dl_info info = {};
    dladdr(reinterpret_cast<void*>(&LogInit), &info);
    std::string directory = info.dli_fname;
    directory.resize(directory.rfind('/'));

    char date[16] = {};
    const time_t now = time(nullptr);
    tm local = {};
    strftime(date, sizeof(date), "%Y-%m-%d", localtime_r(&now, &local));
    std::ifstream file(directory + "/logs/" + filePrefix + date + ".log");
    const std::string process = " " + std::to_string(getpid()) + " ";
    std::vector<std::string> lines;
    // Another process may be writing the last line.
    for (std::string line; std::getline(file, line) && !file.eof();) {
        const size_t afterTime = line.find(' ', line.find(' ') + 1);
        if (line.compare(afterTime, process.size(), process) == 0) {
            lines.push_back(line.substr(line.find(' ', afterTime + process.size()) + 1));
        }
    }
    return lines;
}

namespace {

std::string field(const std::string& record, const std::string& name)
{
    const size_t begin = record.find(" " + name + "=\"") + name.size() + 3;
    return record.substr(begin, record.find('"', begin) - begin);
}

std::vector<std::string> runTexts()
{
    std::vector<std::string> texts;
    for (const std::string& line : logLines("Tessel_run_")) {
        const size_t level = line.find(' ');
        texts.push_back(line.substr(0, level) + line.substr(line.find(' ', level + 1)));
    }
    return texts;
}

} // namespace

LogMark::LogMark() : m_run(runTexts().size()), m_records(logLines("Tessel_interface_").size()) {}

std::vector<std::string> LogMark::run() const
{
    const std::vector<std::string> all = runTexts();
    return {all.begin() + static_cast<std::ptrdiff_t>(m_run), all.end()};
}

std::vector<std::string> LogMark::records() const
{
    const std::vector<std::string> all = logLines("Tessel_interface_");
    std::vector<std::string> records;
    for (size_t i = m_records; i < all.size(); ++i) {
        records.push_back(field(all[i], "operation") + " " + field(all[i], "result"));
    }
    return records;
}

std::string thrownBy(const std::function<void()>& call)
{
    try {
        call();
    } catch (const OvraAPIException& e) {
        return e.what();
    } catch (...) {
        return "other";
    }
    return "";
}

void trust(const std::string& caFile, long connectSeconds, long seconds)
{
    RestSettings settings;
    settings.caFile = caFile;
    settings.connectTimeoutSeconds = connectSeconds;
    settings.timeoutSeconds = seconds;
    RestSetSettings(settings);
}
