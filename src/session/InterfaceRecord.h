#ifndef SESSION_INTERFACERECORD_H
#define SESSION_INTERFACERECORD_H

#include <string>
#include <sys/time.h>

namespace ovra::tessel {

/** Result codes that the SDK itself gives; the others are the REST library's and the array's. */
constexpr int RESULT_SUCCESS = 0;
constexpr int RESULT_BAD_ARGUMENT = 1;

/** The record that a call leaves in the interface log; its start time is taken when it is made. */
class InterfaceRecord
{
public:
    explicit InterfaceRecord(std::string operation);

    /** Writes the record with the time of now as its end. */
    void write(int result) const;

private:
    std::string m_operation;
    timeval m_start;
};

} // namespace ovra::tessel

#endif
