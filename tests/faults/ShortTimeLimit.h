#ifndef FAULTS_SHORTTIMELIMIT_H
#define FAULTS_SHORTTIMELIMIT_H

/** While one lives that is short, a request ends after a fraction of a second. */
class ShortTimeLimit
{
public:
    explicit ShortTimeLimit(bool isShort);
    ~ShortTimeLimit();
    ShortTimeLimit(const ShortTimeLimit&) = delete;
    ShortTimeLimit& operator=(const ShortTimeLimit&) = delete;
};

#endif
