#ifndef SESSION_RESTADDITIONS_H
#define SESSION_RESTADDITIONS_H

#include <ovra/rest/RestCall.h>
#include <ovra/rest/RestFailure.h>
#include <ovra/rest/RestSettings.h>

// What another build of the REST library may lack: null then.
extern __attribute__((weak)) RestSettings RestGetSettings();
extern __attribute__((weak)) const RestFailure& RestLastFailure() noexcept;
extern __attribute__((weak)) const RestCall* RestSetCall(const RestCall* call) noexcept;
extern __attribute__((weak)) const char* RestKeepMember(const char* member) noexcept;

#endif
